#pragma once

#include "tivra/reducer.hpp"
#include "tivra/store.hpp"

#include <concepts>
#include <memory>

namespace tivra {

// Factories of stores. A type with no instances.
class Tivra {
public:
    Tivra() = delete;

    // The initial state comes from the reducer: every slice of a combination, or the one slice.
    static std::shared_ptr<Store> createStore(const std::shared_ptr<AnyReducer>& reducer,
                                              std::shared_ptr<Middleware> middleware = nullptr);
    // The reducer's initial state is ignored.
    static std::shared_ptr<Store> createStore(const std::shared_ptr<AnyReducer>& reducer,
                                              const State::Dictionary& state,
                                              std::shared_ptr<Middleware> middleware = nullptr);
    // One slice, under the printed name of the value's type.
    template <class T>
        requires(!std::convertible_to<T, std::shared_ptr<Middleware>> && !std::convertible_to<T, State::Dictionary>)
    static std::shared_ptr<Store> createStore(const std::shared_ptr<AnyReducer>& reducer, T state,
                                              std::shared_ptr<Middleware> middleware = nullptr) {
        State initial;
        initial.set(stateKeyOf<T>(), std::any(std::move(state)));
        return Store::make(std::move(initial), reducer->erased(), std::move(middleware));
    }

    static bool enableDebugLogging();
    static void setEnableDebugLogging(bool enabled);
};

} // namespace tivra
