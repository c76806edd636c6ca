#include "tivra/async.hpp"

namespace tivra {

void AsyncMiddleware::onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                               const DispatchFunction& next) {
    if (const auto* async = actionAs<AsyncAction>(action)) {
        async->execute(getState, dispatch);
        return;
    }
    next(action);
}

} // namespace tivra
