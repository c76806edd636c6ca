#include "tivra/middleware.hpp"

#include "tivra/detail/store_next.hpp"

namespace tivra {

// What one run of the chain was given; shared by its continuations, which may be called late.
struct CombinedMiddleWare::Link {
    std::weak_ptr<CombinedMiddleWare> chain;
    // Set while the link is the chain's cache; the chain clears it before it goes.
    CombinedMiddleWare* cachedBy = nullptr;
    GetState getState;
    DispatchFunction dispatch;
    DispatchFunction next;
};

struct CombinedMiddleWare::Running {
    explicit Running(CombinedMiddleWare& running) : chain(running) { ++chain.running_; }
    ~Running() {
        if (--chain.running_ == 0) chain.retired_.clear();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    CombinedMiddleWare& chain;
};

CombinedMiddleWare::~CombinedMiddleWare() {
    if (cache_.link) cache_.link->cachedBy = nullptr;
    for (const Cache& retired : retired_) retired.link->cachedBy = nullptr;
}

void CombinedMiddleWare::onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                                  const DispatchFunction& next) {
    if (middlewares.empty()) return;
    const Running running(*this);
    if (middlewares.size() == 1) {
        middlewares.front()->onAction(action, getState, dispatch, next);
        return;
    }
    if (cacheServes(next) || next.target<detail::StoreNext>()) {
        middlewares.front()->onAction(action, getState, dispatch, cacheFor(getState, dispatch, next).continuations[1]);
        return;
    }
    auto link = std::make_shared<Link>(Link{weak_from_this(), nullptr, getState, dispatch, next});
    const DispatchFunction continuation = [link](const Action& forwarded) { runElement(link, 1, forwarded); };
    middlewares.front()->onAction(action, getState, dispatch, continuation);
}

const CombinedMiddleWare::Cache& CombinedMiddleWare::cacheFor(const GetState& getState,
                                                              const DispatchFunction& dispatch,
                                                              const DispatchFunction& next) {
    if (cacheServes(next)) return cache_;
    if (cache_.link) {
        cache_.link->cachedBy = nullptr;
        retired_.push_back(std::move(cache_));
    }
    auto link = std::make_shared<Link>(Link{weak_from_this(), this, getState, dispatch, next});
    std::vector<DispatchFunction> continuations(middlewares.size());
    for (std::size_t index = 1; index < middlewares.size(); ++index)
        continuations[index] = [link, index](const Action& forwarded) { runElement(link, index, forwarded); };
    const auto* target = link->next.target<detail::StoreNext>();
    cache_ = {std::move(link), std::move(continuations), &next, target};
    return cache_;
}

bool CombinedMiddleWare::cacheServes(const DispatchFunction& next) const {
    return cache_.storeNext == &next && !cache_.storeNextTarget->store.expired() &&
           cache_.continuations.size() == middlewares.size();
}

void CombinedMiddleWare::runElement(const std::shared_ptr<Link>& link, std::size_t index, const Action& action) {
    CombinedMiddleWare* chain = link->cachedBy;
    if (chain && chain->running_ > 0)
        chain->runHeld(link, index, action);
    else
        runUnheld(link, index, action);
}

void CombinedMiddleWare::runHeld(const std::shared_ptr<Link>& link, std::size_t index, const Action& action) {
    if (index >= middlewares.size()) return;
    const Running running(*this);
    Middleware& element = *middlewares[index];
    if (index + 1 == middlewares.size()) {
        element.onAction(action, link->getState, link->dispatch, link->next);
    } else if (cache_.link == link && cache_.continuations.size() == middlewares.size()) {
        element.onAction(action, link->getState, link->dispatch, cache_.continuations[index + 1]);
    } else {
        const DispatchFunction continuation = [link, index](const Action& forwarded) {
            runElement(link, index + 1, forwarded);
        };
        element.onAction(action, link->getState, link->dispatch, continuation);
    }
}

void CombinedMiddleWare::runUnheld(const std::shared_ptr<Link>& link, std::size_t index, const Action& action) {
    // Called after its dispatch returned, or from a link the chain no longer keeps: hold the
    // chain and the element for the call.
    const std::shared_ptr<CombinedMiddleWare> chain = link->chain.lock();
    if (!chain || index >= chain->middlewares.size()) return;
    const std::shared_ptr<Middleware> element = chain->middlewares[index];
    chain->runHeld(link, index, action);
}

std::shared_ptr<Middleware> operator+(const std::shared_ptr<Middleware>& left,
                                      const std::shared_ptr<Middleware>& right) {
    // A null operand adds nothing.
    if (!left || !right) return left ? left : right;
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
