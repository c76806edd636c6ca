#pragma once

#include <functional>
#include <string>

namespace tivra {

class State;
class AsyncAction;

// Marker of everything dispatched.
class Action {
public:
    virtual ~Action() = default;
    // Printed form for logs; the type's unqualified name unless an action says more.
    virtual std::string description() const;
    // Every dispatch asks this; a virtual call is cheaper than a cast that walks the hierarchy.
    virtual const AsyncAction* asAsyncAction() const { return nullptr; }
};

using GetState = std::function<State()>;
using DispatchFunction = std::function<void(const Action&)>;

// An action that carries its own work; `AsyncMiddleware` runs it instead of reducing it.
class AsyncAction : public Action {
public:
    virtual void execute(const GetState& getState, const DispatchFunction& dispatch) const = 0;
    const AsyncAction* asAsyncAction() const final { return this; }
};

// The action as T, or null when it is of another type.
template <class T>
const T* actionAs(const Action& action) {
    return dynamic_cast<const T*>(&action);
}

} // namespace tivra
