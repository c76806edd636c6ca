#pragma once

#include "tivra/action.hpp"
#include "tivra/detail/store_next.hpp"

#include <memory>
#include <vector>

namespace tivra {

class Middleware {
public:
    virtual ~Middleware() = default;
    // `next` hands the action on down the chain and in the end to the reducer; `dispatch`
    // sends an action from the top again. Not calling `next` stops the action.
    virtual void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                          const DispatchFunction& next) = 0;
};

class BlockMiddleware final : public Middleware {
public:
    using MiddlewareFunction =
        std::function<void(const Action&, const GetState&, const DispatchFunction&, const DispatchFunction&)>;

    explicit BlockMiddleware(MiddlewareFunction actionFunction) : middlewareFunction(std::move(actionFunction)) {}
    void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                  const DispatchFunction& next) override {
        middlewareFunction(action, getState, dispatch, next);
    }

    MiddlewareFunction middlewareFunction;
};

// Runs its middlewares in order on the way down; code after `next` runs on the way back up.
// Like the store, it is used on the main thread only.
class CombinedMiddleWare final : public Middleware, public std::enable_shared_from_this<CombinedMiddleWare> {
public:
    using MiddlewareFunction = BlockMiddleware::MiddlewareFunction;

    CombinedMiddleWare() = default;
    CombinedMiddleWare(const CombinedMiddleWare&) = delete;
    CombinedMiddleWare& operator=(const CombinedMiddleWare&) = delete;
    ~CombinedMiddleWare() override;

    void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                  const DispatchFunction& next) override;

    // Declared for hosts that keep one; the chain does not use it.
    MiddlewareFunction dispatchingFunction;
    std::vector<std::shared_ptr<Middleware>> middlewares;

private:
    struct Link;
    struct Running;
    // Continuations built once for the store that last ran this chain, so that a dispatch
    // allocates none. Slot i runs middleware i.
    struct Cache {
        std::shared_ptr<Link> link;
        std::vector<DispatchFunction> continuations;
        // The store's own `next`, which stays put while the store lives: a dispatch of the same
        // store is known by its address.
        const DispatchFunction* storeNext = nullptr;
        const detail::StoreNext* storeNextTarget = nullptr;
    };

    // Whether the cache was built for the store whose `next` this is.
    bool cacheServes(const DispatchFunction& next) const;
    const Cache& cacheFor(const GetState& getState, const DispatchFunction& dispatch, const DispatchFunction& next);
    static void runElement(const std::shared_ptr<Link>& link, std::size_t index, const Action& action);
    // Runs element `index` while a frame up the stack holds this chain.
    void runHeld(const std::shared_ptr<Link>& link, std::size_t index, const Action& action);
    // Runs element `index` from a continuation called when nothing may hold the chain.
    static void runUnheld(const std::shared_ptr<Link>& link, std::size_t index, const Action& action);

    Cache cache_;
    // Caches replaced while the chain was running: a frame up the stack may still be in one.
    std::vector<Cache> retired_;
    // Frames of this chain on the stack. While there are any, something up the stack holds the
    // chain, so a hop needs no hold of its own.
    int running_ = 0;
};

// Builds chains. Left-built chains (the first two rows) are what the system uses:
// plain + plain       -> new chain [left, right]
// combined + plain    -> right appended to left in place; returns left
// plain + combined    -> new chain [left, right's elements...]
// combined + combined -> right's elements appended to left in place; returns new chain [left, right],
//                        so right's middlewares run twice.
std::shared_ptr<Middleware> operator+(const std::shared_ptr<Middleware>& left,
                                      const std::shared_ptr<Middleware>& right);

} // namespace tivra
