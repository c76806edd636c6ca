#pragma once

#include "tivra/action.hpp"
#include "tivra/middleware.hpp"

namespace tivra {

class BlockAsyncAction final : public AsyncAction {
public:
    using ExecutionBlock = std::function<void(const GetState&, const DispatchFunction&)>;

    explicit BlockAsyncAction(ExecutionBlock block) : executionBlock(std::move(block)) {}
    void execute(const GetState& getState, const DispatchFunction& dispatch) const override {
        executionBlock(getState, dispatch);
    }

    ExecutionBlock executionBlock;
};

// Runs async actions in place of reducing them: they never reach later middlewares,
// reducers or state listeners. Any other action goes on down the chain.
class AsyncMiddleware final : public Middleware {
public:
    void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                  const DispatchFunction& next) override;
};

} // namespace tivra
