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
    for (const ChangedKey& key : changed) keys.push_back(*key.key);
    return std::any(Result{std::move(working), std::move(keys)});
}

void CombinedReducer::reduce(const State& incoming, std::optional<State>& reduced, const Action& action,
                             ChangedKeys& changed) const {
    const std::vector<Slot>& slots = slotsFor(incoming);
    std::size_t removed = 0;  // an empty result removes its slice, moving the later ones up
    for (std::size_t index = 0; index < slots.size(); ++index) {
        const auto [entry, direct] = slots[index];
        if (!entry) continue;
        const std::any& slice = incoming.valueAt(index);
        std::optional<std::any> result = direct ? direct->reduceErased(slice, action) : entry->second(slice, action);
        if (!result) continue;
        if (!reduced) reduced.emplace(State::detachedCopy(incoming));
        if (result->has_value()) {
            reduced->setValueAt(index - removed, std::move(*result));
            changed.push_back({&entry->first, removed == 0 ? std::optional(index) : std::nullopt});
        } else {
            reduced->remove(entry->first);
            ++removed;
            changed.push_back({&entry->first, std::nullopt});
        }
    }
}

const std::vector<CombinedReducer::Slot>& CombinedReducer::slotsFor(const State& state) const {
    if (state.hasLayout(slotsLayout_)) return slots_;
    // Both are in key order, so one walk pairs each slice with its reducer. A slice without one
    // gets none; a reducer whose slice is missing is never called, since reducing never creates
    // a slice.
    slots_.assign(state.count(), Slot{});
    auto reducer = reducers_.begin();
    for (std::size_t index = 0; index < state.count() && reducer != reducers_.end(); ++index) {
        int order = 0;
        while (reducer != reducers_.end() && (order = reducer->first.compare(state.keyAt(index))) < 0) ++reducer;
        if (reducer == reducers_.end() || order != 0) continue;
        const auto* erased = reducer->second.target<ErasedReducer>();
        slots_[index] = {&*reducer, erased ? erased->reducer.get() : nullptr};
    }
    slotsLayout_ = state.layout();
    return slots_;
}

std::vector<ReducerEntry> CombinedReducer::entries() const {
    std::vector<ReducerEntry> out;
    for (const auto& [key, reduceSlice] : reducers_) out.push_back({key, states_.at(key), reduceSlice});
    return out;
}

ReducingFunction CombinedReducer::erased() const { return ErasedReducer{selfOrBorrowed(*this)}; }

std::shared_ptr<CombinedReducer> operator+(const AnyReducer& left, const AnyReducer& right) {
    return combined(&left, &right);
}

std::shared_ptr<CombinedReducer> combined(const AnyReducer* left, const AnyReducer* right) {
    std::vector<ReducerEntry> entries;
    for (const auto* operand : {left, right}) {
        if (!operand) continue;
        for (auto& entry : operand->entries()) entries.push_back(std::move(entry));
    }
    std::shared_ptr<CombinedReducer> result(new CombinedReducer());
    for (auto& entry : entries) {
        // The first operand wins on a duplicate key.
        if (result->reducers_.contains(entry.stateKey)) continue;
        result->states_.emplace(entry.stateKey, std::move(entry.initialState));
        result->reducers_.emplace(std::move(entry.stateKey), std::move(entry.reduce));
    }
    return result;
}

} // namespace tivra
