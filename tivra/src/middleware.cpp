#include "tivra/middleware.hpp"

#include "tivra/detail/store_next.hpp"

namespace tivra {

// What one run of the chain was given; shared by its continuations, which may be called late.
struct CombinedMiddleWare::Call {
    std::weak_ptr<CombinedMiddleWare> chain;
    GetState getState;
    DispatchFunction dispatch;
    DispatchFunction next;
};

namespace {
bool sameStore(const DispatchFunction& a, const DispatchFunction& b) {
    const auto* left = a.target<detail::StoreNext>();
    const auto* right = b.target<detail::StoreNext>();
    return left && right && !left->store.owner_before(right->store) && !right->store.owner_before(left->store);
}
} // namespace

void CombinedMiddleWare::onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                                  const DispatchFunction& next) {
    if (middlewares.empty()) return;
    if (middlewares.size() == 1) {
        middlewares.front()->onAction(action, getState, dispatch, next);
        return;
    }
    if (next.target<detail::StoreNext>()) {
        // Held for the call: a nested dispatch may rebuild the cache.
        const auto continuations = cacheFor(getState, dispatch, next).continuations;
        middlewares.front()->onAction(action, getState, dispatch, (*continuations)[1]);
        return;
    }
    auto call = std::make_shared<const Call>(Call{weak_from_this(), getState, dispatch, next});
    const DispatchFunction continuation = [call](const Action& forwarded) { runElement(call, 1, forwarded); };
    middlewares.front()->onAction(action, getState, dispatch, continuation);
}

const CombinedMiddleWare::Cache& CombinedMiddleWare::cacheFor(const GetState& getState,
                                                              const DispatchFunction& dispatch,
                                                              const DispatchFunction& next) {
    const bool valid = cache_.call && sameStore(cache_.call->next, next) &&
                       cache_.continuations->size() == middlewares.size();
    if (valid) return cache_;
    auto call = std::make_shared<const Call>(Call{weak_from_this(), getState, dispatch, next});
    auto continuations = std::make_shared<Continuations>(middlewares.size());
    for (std::size_t index = 1; index < middlewares.size(); ++index)
        (*continuations)[index] = [call, index](const Action& forwarded) { runElement(call, index, forwarded); };
    cache_ = {std::move(call), std::move(continuations)};
    return cache_;
}

void CombinedMiddleWare::runElement(const std::shared_ptr<const Call>& call, std::size_t index, const Action& action) {
    const auto chain = call->chain.lock();
    if (!chain || index >= chain->middlewares.size()) return;
    const auto element = chain->middlewares[index];
    if (index + 1 >= chain->middlewares.size()) {
        element->onAction(action, call->getState, call->dispatch, call->next);
        return;
    }
    if (chain->cache_.call == call && chain->cache_.continuations->size() == chain->middlewares.size()) {
        const auto continuations = chain->cache_.continuations;
        element->onAction(action, call->getState, call->dispatch, (*continuations)[index + 1]);
        return;
    }
    const DispatchFunction continuation = [call, index](const Action& forwarded) {
        runElement(call, index + 1, forwarded);
    };
    element->onAction(action, call->getState, call->dispatch, continuation);
}

std::shared_ptr<Middleware> operator+(const std::shared_ptr<Middleware>& left,
                                      const std::shared_ptr<Middleware>& right) {
    auto combinedLeft = std::dynamic_pointer_cast<CombinedMiddleWare>(left);
    auto combinedRight = std::dynamic_pointer_cast<CombinedMiddleWare>(right);
    if (combinedLeft && !combinedRight) {
        combinedLeft->middlewares.push_back(right);
        return combinedLeft;
    }
    auto result = std::make_shared<CombinedMiddleWare>();
    if (combinedLeft && combinedRight) {
        const auto appended = combinedRight->middlewares;
        combinedLeft->middlewares.insert(combinedLeft->middlewares.end(), appended.begin(), appended.end());
        result->middlewares = {left, right};
    } else if (combinedRight) {
        result->middlewares.push_back(left);
        result->middlewares.insert(result->middlewares.end(), combinedRight->middlewares.begin(),
                                   combinedRight->middlewares.end());
    } else {
        result->middlewares = {left, right};
    }
    return result;
}

} // namespace tivra
