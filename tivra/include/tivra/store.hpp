#pragma once

#include "tivra/action.hpp"
#include "tivra/detail/listener_body.hpp"
#include "tivra/detail/store_next.hpp"
#include "tivra/filters.hpp"
#include "tivra/listener.hpp"
#include "tivra/middleware.hpp"
#include "tivra/reducer.hpp"
#include "tivra/state.hpp"
#include "tivra/subscription.hpp"

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tivra {

template <class T>
using Filter = std::function<bool(const T&, const T&)>;

// The state container. All of its work happens on the main thread: `dispatch` from another
// thread hands itself to the main queue and waits. There is no action queue and no
// re-entrancy guard: an action dispatched during a dispatch runs to its end, nested.
class Store final : public std::enable_shared_from_this<Store> {
public:
    using ActionListenerFunction = std::function<void(const Action&)>;

    // Use the factories of `Tivra`; the middleware is optional.
    static std::shared_ptr<Store> make(State state, ReducingFunction reducer,
                                       std::shared_ptr<Middleware> middleware);

    void dispatch(const Action& action);

    ActionSubscription addActionListener(ActionListenerFunction actionListener);

    // Listener on one slice. An absent key means T's own key; an absent filter means
    // `alwaysFilter`. The callback is not called on registration.
    template <class T>
    Subscription<T> addListener(std::optional<std::string> stateKey, Filter<T> filter,
                                std::function<void(const T&)> callback);
    template <class T>
    Subscription<T> addListener(std::function<void(const T&)> callback) {
        return addListener<T>(std::nullopt, nullptr, std::move(callback));
    }
    // Listener on a value selected from the whole State; called only when the selector gives one.
    template <class T>
    Subscription<T> addListener(Filter<State> filter, std::function<std::optional<T>(const State&)> stateSelector,
                                std::function<void(const T&)> callback);
    // Listener on the whole State.
    Subscription<State> addListener(Filter<State> filter, std::function<void(const State&)> callback);

    const State& state() const { return state_; }
    void setState(State state) { state_ = std::move(state); }

    // The three resets notify nobody.
    template <class T>
    void reset(T state) {
        reset(std::any(std::move(state)), stateKeyOf<T>());
    }
    // A dynamic value goes under the key of the type it holds; an empty one changes nothing.
    void reset(std::any state);
    void reset(std::any state, const std::string& forKey);
    void resetFullState(const State::Dictionary& dictionary);

    // True only while the reducer runs. A flag, never a guard.
    bool isDispatching() const { return isDispatching_; }

    // In order of adding.
    std::vector<Listener> listeners() const;
    std::size_t actionListenerCount() const { return actionListeners_->size(); }

private:
    friend void detail::removeListener(Store&, const std::string&);
    friend void detail::removeActionListener(Store&, const std::string&);
    friend struct detail::StoreNext;

    explicit Store(State state, ReducingFunction reducer);
    // Gives the listener an id and its filter and notification, appends it and returns the
    // stored copy.
    Listener appendListener(Listener listener, std::shared_ptr<const detail::ListenerCall> call);
    void dispatchOnMain(const Action& action);
    void reduceAndNotify(const Action& action);
    // Reduces `current`, the state as the dispatch found it. `keyStorage` owns the changed keys
    // that neither the state nor the reducer does.
    void apply(const Action& action, const State& current, ChangedKeys& changed, std::vector<std::string>& keyStorage);
    // `oldWhole` holds the state as the dispatch found it.
    void notifyListeners(const ChangedKeys& changedKeys, const std::any& oldWhole);

    State state_;
    ReducingFunction reducer_;
    // The reducer when it is a combination, called without boxing the state or its result.
    const CombinedReducer* combined_ = nullptr;
    struct Registered {
        Listener listener;
        std::shared_ptr<const detail::ListenerCall> call;
    };
    // The listeners in order of adding, with the positions of their keys in one key set, so that
    // a pass skips a listener on an unchanged slice by one bit test.
    struct ListenerList {
        static constexpr std::int32_t wholeState = -1;
        static constexpr std::int32_t missingKey = -2;

        std::vector<Registered> entries;
        // Per entry, the position of its key in `layout`, the key set numbered `generation`.
        // Good until a nested pass over another key set asks again: see `holdsFor`.
        const std::int32_t* positionsIn(const State::Layout& layout, std::uint64_t generation) const;
        bool holdsFor(std::uint64_t generation) const { return generation_ == generation; }

    private:
        // For the key set last asked about. Main thread only, like the list.
        mutable std::vector<std::int32_t> positions_;
        mutable std::uint64_t generation_ = 0;
    };
    // Copied on write, so a notification pass keeps its own snapshot.
    std::shared_ptr<const ListenerList> listeners_;
    // The key set of the last notification pass, numbered anew at each change, so that a
    // list's remembered positions can tell whether they still hold.
    State::Layout layout_;
    std::uint64_t layoutGeneration_ = 0;
    // Lists replaced while a notification pass was walking them, kept until no pass is.
    struct NotifyingPass {
        explicit NotifyingPass(Store& passing);
        ~NotifyingPass();
        NotifyingPass(const NotifyingPass&) = delete;
        NotifyingPass& operator=(const NotifyingPass&) = delete;
        Store& store;
    };
    std::vector<std::shared_ptr<const ListenerList>> replacedListeners_;
    int notifyingPasses_ = 0;
    void replaceListeners(std::shared_ptr<const ListenerList> listeners);
    std::shared_ptr<const std::map<std::string, ActionListenerFunction>> actionListeners_;
    std::function<void(const Action&)> dispatchingFunction_;
    bool isDispatching_ = false;
    // What a middleware is given; they hold the store weakly.
    GetState getState_;
    DispatchFunction dispatch_;
    DispatchFunction next_;
};

template <class T>
Subscription<T> Store::addListener(std::optional<std::string> stateKey, Filter<T> filter,
                                   std::function<void(const T&)> callback) {
    Listener listener;
    listener.stateKey = stateKey.has_value() ? *stateKey : stateKeyOf<T>();
    return Subscription<T>{shared_from_this(),
                           appendListener(std::move(listener), std::make_shared<detail::TypedListenerCall<T>>(
                                                                   std::move(filter), std::move(callback)))};
}

template <class T>
Subscription<T> Store::addListener(Filter<State> filter, std::function<std::optional<T>(const State&)> stateSelector,
                                   std::function<void(const T&)> callback) {
    auto deliver = [selector = std::move(stateSelector), callback = std::move(callback)](const State& state) {
        if (std::optional<T> selected = selector(state)) callback(*selected);
    };
    return Subscription<T>{shared_from_this(),
                           appendListener(Listener{}, std::make_shared<detail::TypedListenerCall<State>>(
                                                          std::move(filter), std::move(deliver)))};
}

} // namespace tivra
