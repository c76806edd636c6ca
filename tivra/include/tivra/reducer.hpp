#pragma once

#include "tivra/action.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

#include <boost/container/small_vector.hpp>

#include <any>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tivra {

// A reducer with its slice type erased: the incoming value is the slice as a dynamic value.
// An absent result means the slice did not change.
using ReducingFunction = std::function<std::optional<std::any>(const std::any&, const Action&)>;

// A key a dispatch changed, pointing at a key the reducer owns, with its position in the new
// state when the reducer knows it.
struct ChangedKey {
    const std::string* key = nullptr;
    std::optional<std::size_t> position;
};
// Few per dispatch: no heap.
using ChangedKeys = boost::container::small_vector<ChangedKey, 8>;

// One slice as a reducer contributes it to a combination.
struct ReducerEntry {
    std::string stateKey;
    std::any initialState;
    ReducingFunction reduce;
};

// What every reducer is, whatever its slice type.
class AnyReducer {
public:
    virtual ~AnyReducer() = default;
    // The slices this reducer covers, in order.
    virtual std::vector<ReducerEntry> entries() const = 0;
    // The whole reducer over a dynamic value, as `erased()` calls it.
    virtual std::optional<std::any> reduceErased(const std::any& state, const Action& action) const = 0;
    // The whole reducer, type erased, as the store and a combination hold it.
    virtual ReducingFunction erased() const = 0;
};

// The reducer's own owner when a shared pointer owns it; otherwise a pointer that borrows it, and
// then whoever owns it keeps it alive for as long as what is built on it.
template <class R>
std::shared_ptr<const AnyReducer> selfOrBorrowed(const R& reducer) {
    if (auto owned = reducer.weak_from_this().lock()) return owned;
    return std::shared_ptr<const AnyReducer>(std::shared_ptr<const AnyReducer>(), &reducer);
}

// What `erased()` gives. Whoever recognises it may call the reducer without the function object.
struct ErasedReducer {
    std::shared_ptr<const AnyReducer> reducer;
    std::optional<std::any> operator()(const std::any& state, const Action& action) const {
        return reducer->reduceErased(state, action);
    }
};

template <class S>
class Reducer : public AnyReducer, public std::enable_shared_from_this<Reducer<S>> {
public:
    using StateType = S;

    virtual S initialState() const = 0;
    // Defaults to the printed name of the slice type.
    virtual std::string stateKey() const { return stateKeyOf<S>(); }
    virtual std::optional<S> reduce(const S& state, const Action& action) const = 0;

    std::vector<ReducerEntry> entries() const override {
        return {ReducerEntry{stateKey(), std::any(initialState()), erased()}};
    }

    std::optional<std::any> reduceErased(const std::any& state, const Action& action) const override {
        return reduceWith(state, [&](const S& typed) { return reduce(typed, action); });
    }
    ReducingFunction erased() const override { return ErasedReducer{selfOrBorrowed(*this)}; }

protected:
    // A slice of another type passes through unchanged, but counts as changed.
    template <class Reduce>
    static std::optional<std::any> reduceWith(const std::any& state, Reduce&& reduceTyped) {
        const S* typed = std::any_cast<S>(&state);
        if (!typed) return state;
        std::optional<S> result = reduceTyped(*typed);
        if (!result) return std::nullopt;
        return std::any(std::move(*result));
    }
};

template <class T>
class BlockReducer final : public Reducer<T> {
public:
    using ReduceFunction = std::function<std::optional<T>(const T&, const Action&)>;

    BlockReducer(T initialState, ReduceFunction reduce)
        : initialState_(std::move(initialState)), stateKey_(stateKeyOf<T>()), reduceFunction_(std::move(reduce)) {}
    BlockReducer(T initialState, std::string stateKey, ReduceFunction reduce)
        : initialState_(std::move(initialState)), stateKey_(std::move(stateKey)), reduceFunction_(std::move(reduce)) {}

    T initialState() const override { return initialState_; }
    std::string stateKey() const override { return stateKey_; }
    std::optional<T> reduce(const T& state, const Action& action) const override {
        return reduceFunction_(state, action);
    }
    // Straight to the function, without the virtual `reduce`.
    std::optional<std::any> reduceErased(const std::any& state, const Action& action) const override {
        return this->reduceWith(state, [&](const T& typed) { return reduceFunction_(typed, action); });
    }

private:
    T initialState_;
    std::string stateKey_;
    ReduceFunction reduceFunction_;
};

// Several slices under one reducer. Made only by `+`.
class CombinedReducer final : public AnyReducer, public std::enable_shared_from_this<CombinedReducer> {
public:
    // What `reduce` returns inside its dynamic value: the new state and the keys that changed.
    using Result = std::pair<State, std::vector<std::string>>;

    // A combination of no slices, to build a chain on with `+`.
    static std::shared_ptr<CombinedReducer> empty() { return std::shared_ptr<CombinedReducer>(new CombinedReducer()); }

    CombinedReducer(const CombinedReducer&) = delete;
    CombinedReducer& operator=(const CombinedReducer&) = delete;

    const std::map<std::string, ReducingFunction>& reducers() const { return reducers_; }
    const std::map<std::string, std::any>& states() const { return states_; }
    std::any initialState() const { return states_; }

    // Never absent: an action no slice cares about gives the same state and no keys.
    std::optional<std::any> reduce(const std::any& state, const Action& action) const;
    // The same without boxing, as a store calls it, on the main thread: `reduced` takes the new
    // state, and stays absent when no slice changed; the changed keys are appended. The keys
    // live as long as this reducer.
    void reduce(const State& incoming, std::optional<State>& reduced, const Action& action,
                ChangedKeys& changed) const;

    std::optional<std::any> reduceErased(const std::any& state, const Action& action) const override {
        return reduce(state, action);
    }
    std::vector<ReducerEntry> entries() const override;
    ReducingFunction erased() const override;

    friend std::shared_ptr<CombinedReducer> combined(const AnyReducer* left, const AnyReducer* right);

private:
    using Entry = std::map<std::string, ReducingFunction>::value_type;

    CombinedReducer() = default;
    // The reducer of one slice; `direct`, when known, is what `entry`'s function calls.
    struct Slot {
        const Entry* entry = nullptr;
        const AnyReducer* direct = nullptr;
    };
    // The reducer of each slice of `state`, by position; none where a slice has none.
    const std::vector<Slot>& slotsFor(const State& state) const;

    std::map<std::string, ReducingFunction> reducers_;
    std::map<std::string, std::any> states_;
    // Paired once per key set, which a dispatch seldom changes. Touched on the main thread only.
    mutable State::Layout slotsLayout_;
    mutable std::vector<Slot> slots_;
};

// On a duplicate key the left operand wins; operands are never changed. Never throws but for want
// of memory.
std::shared_ptr<CombinedReducer> operator+(const AnyReducer& left, const AnyReducer& right);
// A null operand adds no slices.
std::shared_ptr<CombinedReducer> combined(const AnyReducer* left, const AnyReducer* right);

template <class L, class R>
    requires std::derived_from<L, AnyReducer> && std::derived_from<R, AnyReducer>
std::shared_ptr<CombinedReducer> operator+(const std::shared_ptr<L>& left, const std::shared_ptr<R>& right) {
    return combined(left.get(), right.get());
}

} // namespace tivra
