#include "tivra/tivra.hpp"

namespace tivra {

std::shared_ptr<Store> Tivra::createStore(const std::shared_ptr<AnyReducer>& reducer,
                                          std::shared_ptr<Middleware> middleware) {
    State initial;
    if (auto combined = std::dynamic_pointer_cast<CombinedReducer>(reducer)) {
        initial = State(combined->states());
    } else {
        const ReducerEntry entry = reducer->entries().front();
        initial.set(entry.stateKey, entry.initialState);
    }
    return Store::make(std::move(initial), reducer->erased(), std::move(middleware));
}

std::shared_ptr<Store> Tivra::createStore(const std::shared_ptr<AnyReducer>& reducer,
                                          const State::Dictionary& state, std::shared_ptr<Middleware> middleware) {
    return Store::make(State(state), reducer->erased(), std::move(middleware));
}

} // namespace tivra
