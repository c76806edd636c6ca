#pragma once

#include "tivra/action.hpp"

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
class CombinedMiddleWare final : public Middleware, public std::enable_shared_from_this<CombinedMiddleWare> {
public:
    using MiddlewareFunction = BlockMiddleware::MiddlewareFunction;

    void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                  const DispatchFunction& next) override;

    // Declared for hosts that keep one; the chain does not use it.
    MiddlewareFunction dispatchingFunction;
    std::vector<std::shared_ptr<Middleware>> middlewares;

private:
    struct Call;
    using Continuations = std::vector<DispatchFunction>;
    // Continuations built once for the store that last ran this chain, so that a dispatch does
    // not allocate them anew. Each holds its Call; the Call holds the chain weakly.
    struct Cache {
        std::shared_ptr<const Call> call;
        std::shared_ptr<const Continuations> continuations;
    };

    const Cache& cacheFor(const GetState& getState, const DispatchFunction& dispatch, const DispatchFunction& next);
    static void runElement(const std::shared_ptr<const Call>& call, std::size_t index, const Action& action);

    Cache cache_;
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
