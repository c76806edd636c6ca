#include "tivra/reducer.hpp"

namespace tivra {

std::optional<std::any> CombinedReducer::reduce(const std::any& state, const Action& action) const {
    const State* incoming = std::any_cast<State>(&state);
    // Not a State: hand the value back with no changed keys; the store sees no known shape.
    if (!incoming) return std::any(std::pair<std::any, std::vector<std::string>>{state, {}});
    std::optional<State> reduced;
    ChangedKeys changed;
    reduce(*incoming, reduced, action, changed);
    State working = reduced ? std::move(*reduced) : *incoming;
    std::vector<std::string> keys;
    keys.reserve(changed.size());
    for (const std::string* key : changed) keys.push_back(*key);
    return std::any(Result{std::move(working), std::move(keys)});
}

void CombinedReducer::reduce(const State& incoming, std::optional<State>& reduced, const Action& action,
                             ChangedKeys& changed) const {
    // Both are in key order, so one walk pairs each slice with its reducer. A reducer whose slice
    // is missing is not called: a slice is never created by reducing, only by the initial state.
    auto reducer = reducers_.begin();
    incoming.forEach([&](const std::string& key, const std::any& slice) {
        while (reducer != reducers_.end() && reducer->first < key) ++reducer;
        if (reducer == reducers_.end() || reducer->first != key) return;
        std::optional<std::any> result = reducer->second(slice, action);
        if (!result) return;
        if (!reduced) reduced.emplace(State::detachedCopy(incoming));
        reduced->set(key, std::move(*result));
        changed.push_back(&reducer->first);
    });
}

std::vector<ReducerEntry> CombinedReducer::entries() const {
    std::vector<ReducerEntry> out;
    for (const auto& [key, reduceSlice] : reducers_) out.push_back({key, states_.at(key), reduceSlice});
    return out;
}

ReducingFunction CombinedReducer::erased() const {
    return Erased{shared_from_this()};
}

std::shared_ptr<CombinedReducer> operator+(const AnyReducer& left, const AnyReducer& right) {
    std::vector<ReducerEntry> entries = left.entries();
    for (auto& entry : right.entries()) entries.push_back(std::move(entry));
    std::shared_ptr<CombinedReducer> combined(new CombinedReducer());
    for (auto& entry : entries) {
        // The first operand wins on a duplicate key.
        if (combined->reducers_.contains(entry.stateKey)) continue;
        combined->states_.emplace(entry.stateKey, std::move(entry.initialState));
        combined->reducers_.emplace(std::move(entry.stateKey), std::move(entry.reduce));
    }
    return combined;
}

} // namespace tivra
