#include "belvakit/Request/requestlist/request_list_refresh_action_handler.hpp"

#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "corvane/corvane.hpp"

namespace belvakit {

void RequestListRefreshActionHandler::handle(const std::map<std::string, std::any>&) {
    if (!corvane::Corvane::instance()) return;
    auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
    if (!cache) return;
    Actions::FetchRequests fetch;
    fetch.isRefreshing = true;
    fetch.service = RequestListService::shared();
    fetch.provider = makeRequestProvider();
    fetch.cache = std::move(cache);
    sharedStore()->dispatch(fetch);
}

bool RequestListRefreshActionHandler::isEqual(const corvane::ActionHandler& other) const {
    const auto* handler = dynamic_cast<const RequestListRefreshActionHandler*>(&other);
    return handler && handler->actionName == actionName;
}

} // namespace belvakit
