#pragma once

#include <concepts>
#include <memory>

namespace belvakit {

// What a state machine asks before a change and tells after it.
template <class Delegate>
concept StateMachineDelegate = requires(Delegate& delegate, const typename Delegate::StateType& state) {
    typename Delegate::StateType;
    { delegate.shouldTransition(state, state) } -> std::convertible_to<bool>;
    delegate.didTransition(state, state);
};

// Where a state machine's first state comes from.
template <class DataSource, class State>
concept StateMachineDataSource = requires(const DataSource& source) {
    { source.initialState() } -> std::convertible_to<State>;
};

// A state with a gatekeeper: a change happens only when the delegate allows it, and the delegate is
// told of each change made. Without a delegate nothing changes. `StateType` is named when the
// delegate is not yet complete (a delegate that holds its own machine).
template <class Delegate, class StateType = typename Delegate::StateType>
class StateMachine {
public:
    explicit StateMachine(StateType initial) : _state(std::move(initial)) {}
    template <StateMachineDataSource<StateType> DataSource>
    explicit StateMachine(const DataSource& dataSource) : _state(dataSource.initialState()) {}

    std::weak_ptr<Delegate> delegate;

    const StateType& state() const { return _state; }
    void setState(StateType next)
        requires StateMachineDelegate<Delegate>
    {
        const auto told = delegate.lock();
        if (!told || !told->shouldTransition(_state, next)) return;
        StateType previous = std::move(_state);
        _state = next;
        told->didTransition(previous, next);
    }

private:
    StateType _state;
};

} // namespace belvakit
