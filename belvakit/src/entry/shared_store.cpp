#include "belvakit/entry/shared_store.hpp"

#include "belvakit/Request/conversation/input_field_state.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "belvakit/Request/createrequest/create_request_middleware.hpp"
#include "belvakit/Request/createrequest/create_request_reducer.hpp"
#include "belvakit/Request/queue/request_queue_middleware.hpp"
#include "belvakit/Request/requestlist/request_list_middleware.hpp"
#include "belvakit/Request/requestlist/request_list_reducer.hpp"
#include "belvakit/entry/request_container_state.hpp"
#include "tivra/async.hpp"
#include "tivra/tivra.hpp"

namespace belvakit {

namespace {

// The slices, in this order: InputFieldState, RequestTableState, RequestListState,
// RequestContainerState, CreateRequestState. Each subsystem adds its reducer at its place.
std::shared_ptr<tivra::CombinedReducer> makeReducer() {
    auto reducer = tivra::CombinedReducer::empty();
    reducer = reducer + std::make_shared<InputFieldReducer>();
    reducer = reducer + std::make_shared<RequestTableReducer>();
    reducer = reducer + std::make_shared<RequestListReducer>();
    reducer = reducer + std::make_shared<RequestContainerReducer>();
    reducer = reducer + std::make_shared<CreateRequestReducer>();
    return reducer;
}

// Every action meets the middlewares in this order: AsyncMiddleware, RequestControllerMiddleware,
// RequestContainerMiddleware, RequestQueueMiddleWare, CreateRequestMiddleware,
// RequestListMiddleware. Each subsystem adds its middleware at its place; the chain is built
// from the left, so each `+` appends to the one chain.
std::shared_ptr<tivra::Middleware> makeMiddleware() {
    std::shared_ptr<tivra::Middleware> chain = std::make_shared<tivra::CombinedMiddleWare>();
    chain = chain + std::make_shared<tivra::AsyncMiddleware>();
    chain = chain + std::make_shared<RequestControllerMiddleware>();
    chain = chain + std::make_shared<RequestContainerMiddleware>();
    chain = chain + RequestQueueMiddleWare::make({}, RequestQueueState::initial(), RequestUiConfiguration());
    chain = chain + std::make_shared<CreateRequestMiddleware>();
    chain = chain + std::make_shared<RequestListMiddleware>();
    return chain;
}

} // namespace

std::shared_ptr<tivra::Store> sharedStore() {
    // A function-local static: made once, safely from any thread.
    static const std::shared_ptr<tivra::Store> store = tivra::Tivra::createStore(makeReducer(), makeMiddleware());
    return store;
}

std::shared_ptr<tivra::CombinedReducer> sharedStoreReducer() { return makeReducer(); }

std::shared_ptr<tivra::Middleware> sharedStoreMiddleware() { return makeMiddleware(); }

std::any initialSharedSlice(const std::string& key) {
    static const std::map<std::string, std::any> initial = makeReducer()->states();
    const auto found = initial.find(key);
    return found == initial.end() ? std::any() : found->second;
}

} // namespace belvakit
