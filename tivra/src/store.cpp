#include "tivra/store.hpp"

#include "tivra/detail/store_next.hpp"

#include "platform/main_queue.hpp"
#include "platform/type_name.hpp"
#include "platform/uuid.hpp"

#include <algorithm>
#include <utility>

namespace tivra {

namespace detail {

namespace {
// The store whose middleware runs innermost on this thread; that run holds it up the stack.
thread_local const Store* middlewareRunningFor = nullptr;

class MiddlewareRun {
public:
    explicit MiddlewareRun(const Store* store) : previous_(std::exchange(middlewareRunningFor, store)) {}
    ~MiddlewareRun() { middlewareRunningFor = previous_; }
    MiddlewareRun(const MiddlewareRun&) = delete;
    MiddlewareRun& operator=(const MiddlewareRun&) = delete;

private:
    const Store* previous_;
};
} // namespace

void StoreNext::operator()(const Action& action) const {
    // Only a live store can be running, and two live stores never share an address.
    if (middlewareRunningFor == raw && !store.expired()) {
        raw->reduceAndNotify(action);
        return;
    }
    // Called later or from elsewhere: held here for the whole pass, which runs on the main thread.
    const auto strong = store.lock();
    if (!strong) return;
    auto& mainQueue = platform::MainQueue::shared();
    if (mainQueue.isMainThread())
        strong->reduceAndNotify(action);
    else
        mainQueue.sync([&] { strong->reduceAndNotify(action); });
}

std::string newListenerId() { return platform::uuidString(); }

void removeListener(Store& store, const std::string& id) {
    auto remaining = std::make_shared<Store::ListenerList>();
    const auto& entries = store.listeners_->entries;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(remaining->entries),
                 [&](const Store::Registered& entry) { return entry.listener.id != id; });
    store.replaceListeners(std::move(remaining));
}

void removeActionListener(Store& store, const std::string& id) {
    if (!store.actionListeners_->contains(id)) return;
    auto remaining = std::make_shared<std::map<std::string, Store::ActionListenerFunction>>(*store.actionListeners_);
    remaining->erase(id);
    store.actionListeners_ = std::move(remaining);
}

void informWithCurrentState(const Store& store, const Listener& listener,
                            const std::any* (*valueAt)(const State&, const std::string&)) {
    const State& state = store.state();
    if (!listener.stateKey) {
        listener.notify(std::any(state));
        return;
    }
    if (const std::any* value = valueAt(state, *listener.stateKey)) listener.notify(*value);
}

} // namespace detail

Store::Store(State state, ReducingFunction reducer)
    : state_(std::move(state)),
      reducer_(std::move(reducer)),
      combined_(reducer_.target<ErasedReducer>()
                    ? dynamic_cast<const CombinedReducer*>(reducer_.target<ErasedReducer>()->reducer.get())
                    : nullptr),
      listeners_(std::make_shared<const ListenerList>()),
      actionListeners_(std::make_shared<const std::map<std::string, ActionListenerFunction>>()) {}

std::shared_ptr<Store> Store::make(State state, ReducingFunction reducer, std::shared_ptr<Middleware> middleware) {
    std::shared_ptr<Store> store(new Store(std::move(state), std::move(reducer)));
    std::weak_ptr<Store> weak = store;
    store->getState_ = [weak] {
        auto strong = weak.lock();
        return strong ? strong->state_ : State();
    };
    store->dispatch_ = [weak](const Action& action) {
        if (auto strong = weak.lock()) strong->dispatch(action);
    };
    store->next_ = detail::StoreNext{weak, store.get()};
    if (middleware) {
        store->dispatchingFunction_ = [weak, middleware = std::move(middleware)](const Action& action) {
            auto strong = weak.lock();
            if (!strong) return;
            const detail::MiddlewareRun run(strong.get());
            middleware->onAction(action, strong->getState_, strong->dispatch_, strong->next_);
        };
    } else {
        // Held weakly as well: a store nobody refers to has nothing left to dispatch.
        store->dispatchingFunction_ = store->next_;
    }
    return store;
}

void Store::dispatch(const Action& action) {
    auto& mainQueue = platform::MainQueue::shared();
    if (mainQueue.isMainThread())
        dispatchOnMain(action);
    else
        mainQueue.sync([&] { dispatchOnMain(action); });
}

void Store::dispatchOnMain(const Action& action) {
    if (!actionListeners_->empty()) {
        const auto actionListeners = actionListeners_;
        for (const auto& entry : *actionListeners) entry.second(action);
    }
    if (dispatchingFunction_) dispatchingFunction_(action);
}

void Store::reduceAndNotify(const Action& action) {
    // Boxed from the start, as whole-state listeners are given it.
    const std::any oldWhole(state_);
    const State& oldState = *std::any_cast<State>(&oldWhole);
    ChangedKeys changed;
    std::vector<std::string> keyStorage;
    isDispatching_ = true;
    apply(action, oldState, changed, keyStorage);
    isDispatching_ = false;
    notifyListeners(changed, oldWhole);
}

void Store::apply(const Action& action, const State& current, ChangedKeys& changed,
                  std::vector<std::string>& keyStorage) {
    if (current.count() == 1) {
        current.forEach([&](const std::string& key, const std::any& slice) {
            std::optional<std::any> result = reducer_(slice, action);
            if (!result) return;
            state_.set(key, std::move(*result));
            changed.push_back({&keyStorage.emplace_back(key), std::nullopt});
        });
        return;
    }
    if (combined_) {
        std::optional<State> reduced;
        combined_->reduce(current, reduced, action, changed);
        if (reduced) state_ = std::move(*reduced);
        return;
    }
    std::optional<std::any> result = reducer_(std::any(current), action);
    if (!result) return;
    auto* combined = std::any_cast<CombinedReducer::Result>(&*result);
    if (!combined) return;
    state_ = std::move(combined->first);
    keyStorage = std::move(combined->second);
    for (const std::string& key : keyStorage) changed.push_back({&key, std::nullopt});
}

namespace {
// Which keys changed, as bits by position in the state the pass begins with when that serves
// (every changed key still there, few slices), else by text.
class ChangedSet {
public:
    ChangedSet(const ChangedKeys& keys, const State& state) : keys_(keys) {
        if (state.count() > 64) return;
        for (const ChangedKey& changed : keys) {
            const auto position = changed.position ? changed.position : state.indexOf(*changed.key);
            if (!position) return;
            bits_ |= std::uint64_t{1} << *position;
        }
        byPosition_ = true;
    }

    // `position` is the key's place in the pass's first state, negative when it is not there.
    bool contains(const std::string& key, std::int32_t position) const {
        if (byPosition_) return position >= 0 && (bits_ >> position & 1U);
        return std::any_of(keys_.begin(), keys_.end(), [&](const ChangedKey& changed) { return *changed.key == key; });
    }

private:
    const ChangedKeys& keys_;
    std::uint64_t bits_ = 0;
    bool byPosition_ = false;
};

// The slice at `key`, found by `position` when the state has the layout the position belongs to.
const std::any* sliceAt(const State& state, const State::Layout& layout, const std::string& key,
                        std::int32_t position) {
    if (state.hasLayout(layout)) return position >= 0 ? &state.valueAt(static_cast<std::size_t>(position)) : nullptr;
    return state.value(key);
}
} // namespace

const std::int32_t* Store::ListenerList::positionsIn(const State::Layout& layout, std::uint64_t generation) const {
    if (generation_ != generation) {
        positions_.clear();
        for (const Registered& entry : entries) {
            const auto& key = entry.listener.stateKey;
            const auto position = key ? layout.indexOf(*key) : std::nullopt;
            positions_.push_back(!key ? wholeState : position ? static_cast<std::int32_t>(*position) : missingKey);
        }
        generation_ = generation;
    }
    return positions_.data();
}

void Store::notifyListeners(const ChangedKeys& changedKeys, const std::any& oldWhole) {
    const State& oldState = *std::any_cast<State>(&oldWhole);
    // Positions of the listeners' keys are found once per key set, not once per pass. A nested
    // pass may move the store on to another key set; this pass keeps its own.
    if (!state_.hasLayout(layout_)) {
        layout_ = state_.layout();
        ++layoutGeneration_;
    }
    const State::Layout layout = layout_;
    const std::uint64_t generation = layoutGeneration_;
    const ChangedSet changed(changedKeys, state_);

    // The snapshot: a listener added or removed during the pass replaces `listeners_`, and the
    // list replaced is kept until the pass is over.
    const ListenerList& snapshot = *listeners_;
    const NotifyingPass pass(*this);
    // The current state, boxed once for the whole-state listeners. Holding it keeps the slices
    // a listener is given alive while it runs, since its nested dispatch may replace the state.
    // Taken again only when the state did change.
    std::any currentWhole(state_);
    const State* current = std::any_cast<State>(&currentWhole);
    const std::int32_t* positions = snapshot.positionsIn(layout, generation);
    for (std::size_t index = 0; index < snapshot.entries.size(); ++index) {
        const std::int32_t position = positions[index];
        const Registered& entry = snapshot.entries[index];
        const auto& key = entry.listener.stateKey;
        if (position != ListenerList::wholeState && !changed.contains(*key, position)) continue;
        // Read afresh, since an earlier listener's nested dispatch may have changed the state.
        if (!current->isSameInstance(state_)) {
            currentWhole = state_;
            current = std::any_cast<State>(&currentWhole);
        }
        const std::any* oldValue = key ? sliceAt(oldState, layout, *key, position) : nullptr;
        const std::any* newValue = key ? sliceAt(*current, layout, *key, position) : nullptr;
        entry.call->filterAndNotify(oldValue ? *oldValue : oldWhole, newValue ? *newValue : currentWhole);
        // A nested pass over another key set may have taken the positions over.
        if (!snapshot.holdsFor(generation)) positions = snapshot.positionsIn(layout, generation);
    }
}

void Store::replaceListeners(std::shared_ptr<const ListenerList> listeners) {
    if (notifyingPasses_ > 0) replacedListeners_.push_back(std::move(listeners_));
    listeners_ = std::move(listeners);
}

Store::NotifyingPass::NotifyingPass(Store& passing) : store(passing) { ++store.notifyingPasses_; }

Store::NotifyingPass::~NotifyingPass() {
    if (--store.notifyingPasses_ == 0) store.replacedListeners_.clear();
}

ActionSubscription Store::addActionListener(ActionListenerFunction actionListener) {
    std::string id = detail::newListenerId();
    auto updated = std::make_shared<std::map<std::string, ActionListenerFunction>>(*actionListeners_);
    updated->emplace(id, std::move(actionListener));
    actionListeners_ = std::move(updated);
    return ActionSubscription{shared_from_this(), std::move(id)};
}

Listener Store::appendListener(Listener listener, std::shared_ptr<const detail::ListenerCall> call) {
    listener.id = detail::newListenerId();
    listener.notify = [call](const std::any& value) { call->notify(value); };
    listener.filterBlock = [call](const std::any& oldValue, const std::any& newValue) {
        return call->filter(oldValue, newValue);
    };
    auto updated = std::make_shared<ListenerList>();
    updated->entries = listeners_->entries;
    updated->entries.push_back({listener, std::move(call)});
    replaceListeners(std::move(updated));
    return listener;
}

Subscription<State> Store::addListener(Filter<State> filter, std::function<void(const State&)> callback) {
    return Subscription<State>{shared_from_this(),
                               appendListener(Listener{}, std::make_shared<detail::TypedListenerCall<State>>(
                                                              std::move(filter), std::move(callback)))};
}

std::vector<Listener> Store::listeners() const {
    std::vector<Listener> out;
    for (const auto& entry : listeners_->entries) out.push_back(entry.listener);
    return out;
}

void Store::reset(std::any state, const std::string& forKey) { state_.set(forKey, std::move(state)); }

void Store::reset(std::any state) {
    if (!state.has_value()) return;
    const std::string key = platform::unqualifiedName(state.type());
    reset(std::move(state), key);
}

void Store::resetFullState(const State::Dictionary& dictionary) { state_ = State(dictionary); }

} // namespace tivra
