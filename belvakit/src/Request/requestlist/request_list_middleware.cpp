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
        auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        if (!cache) {
            // Nothing can be fetched: the loading the settings start ends at once, as a failure.
            next(action);
            dispatch(Actions::RequestsFetchedFailed{});
            return;
        }
        Actions::FetchRequests fetch;
        fetch.service = service;
        fetch.provider = std::move(provider);
        fetch.cache = std::move(cache);
        dispatch(fetch);
        next(action);
        return;
    }
    if (const auto* fetched = tivra::actionAs<Actions::RequestsFetched>(action)) {
        auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        const tivra::State current = getState();
        const auto* state = current.value<RequestListState>(tivra::stateKeyOf<RequestListState>());
        if (!cache || !state) return dispatch(Actions::RequestsFetchedFailed{});
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
        if (!cache) {
            // Without a place for avatars the rows still show, without them.
            Actions::RequestsWithAvatarsFetched rows;
            rows.requests = merged->mergedLocalAndRemoteRequestDatums;
            rows.requestListStateType = merged->remoteRequestsFromCache ? RequestListStateType::LoadedFromCache
                                                                        : RequestListStateType::LoadedFromNetwork;
            return dispatch(rows);
        }
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
