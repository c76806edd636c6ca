#include "tivra/async.hpp"

namespace tivra {

void AsyncMiddleware::onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                               const DispatchFunction& next) {
    if (const auto* async = action.asAsyncAction()) {
        async->execute(getState, dispatch);
        return;
    }
    next(action);
}

} // namespace tivra
