#include "belvakit/Request/requestlist/request_list_middleware.hpp"

#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

namespace belvakit {

void RequestListMiddleware::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                     const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    if (tivra::actionAs<Actions::FetchRequestListSettingsSuccess>(action)) {
        // The fetch starts before the reducer sees the settings.
        auto provider = makeRequestProvider();
        if (auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory)) {
            Actions::FetchRequests fetch;
            fetch.service = service;
            fetch.provider = std::move(provider);
            fetch.cache = std::move(cache);
            dispatch(fetch);
        }
        next(action);
        return;
    }
    if (const auto* fetched = tivra::actionAs<Actions::RequestsFetched>(action)) {
        auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        if (!cache) return;
        const auto* state = getState().value<RequestListState>(tivra::stateKeyOf<RequestListState>());
        if (!state) return;
        Actions::FetchLocalOnlyRequests local;
        local.cache = std::move(cache);
        local.requestDataFetchedFromNetwork = fetched->requests;
        local.remoteRequestsFromCache = fetched->isFromCache;
        local.showClosedRequests = state->showClosedRequests;
        dispatch(local);
        return;
    }
    if (const auto* merged = tivra::actionAs<Actions::LocalRequestsFetched>(action)) {
        auto cache = ConcreteCache::named(ConcreteCache::avatarsDirectory);
        if (!cache) return;
        Actions::FetchAgentAvatars avatars;
        avatars.requestDatums = merged->mergedLocalAndRemoteRequestDatums;
        avatars.cache = std::move(cache);
        avatars.service = service;
        avatars.requestsFromCache = merged->remoteRequestsFromCache;
        dispatch(avatars);
        return;
    }
    next(action);
}

} // namespace belvakit
