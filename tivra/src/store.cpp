#include "tivra/store.hpp"

#include "tivra/detail/store_next.hpp"

#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"

#include <algorithm>

namespace tivra {

namespace detail {

void StoreNext::operator()(const Action& action) const {
    if (store.expired()) return;
    // Within the store's own middleware run the store is held up the stack; called later, it
    // is held here.
    if (raw->middlewareDepth_ > 0) {
        raw->reduceAndNotify(action);
        return;
    }
    if (auto strong = store.lock()) strong->reduceAndNotify(action);
}

std::string newListenerId() { return platform::uuidString(); }

void removeListener(Store& store, const std::string& id) {
    auto remaining = std::make_shared<std::vector<Store::Registered>>();
    std::copy_if(store.listeners_->begin(), store.listeners_->end(), std::back_inserter(*remaining),
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
      combined_(reducer_.target<CombinedReducer::Erased>() ? reducer_.target<CombinedReducer::Erased>()->reducer.get()
                                                          : nullptr),
      listeners_(std::make_shared<const std::vector<Registered>>()),
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
            ++strong->middlewareDepth_;
            middleware->onAction(action, strong->getState_, strong->dispatch_, strong->next_);
            --strong->middlewareDepth_;
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
            changed.push_back(&keyStorage.emplace_back(key));
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
    for (const std::string& key : keyStorage) changed.push_back(&key);
}

void Store::notifyListeners(const ChangedKeys& changedKeys, const std::any& oldWhole) {
    const State& oldState = *std::any_cast<State>(&oldWhole);
    boost::container::small_vector<std::size_t, 8> changedHashes;
    for (const std::string* key : changedKeys) changedHashes.push_back(std::hash<std::string>{}(*key));
    const auto isChanged = [&](const Registered& entry) {
        for (std::size_t i = 0; i < changedKeys.size(); ++i)
            if (changedHashes[i] == entry.keyHash && *changedKeys[i] == *entry.listener.stateKey) return true;
        return false;
    };

    // The snapshot: a listener added or removed during the pass replaces `listeners_`, and the
    // list replaced is kept until the pass is over.
    const std::vector<Registered>& snapshot = *listeners_;
    const NotifyingPass pass(*this);
    // The current state, boxed once for the whole-state listeners. Holding it keeps the slices
    // a listener is given alive while it runs, since its nested dispatch may replace the state.
    // Taken again only when the state did change.
    std::any currentWhole(state_);
    const State* current = std::any_cast<State>(&currentWhole);
    // Listeners of one key tend to stand together: while the state holds still, their slices are
    // looked up once.
    const Registered* lastKeyed = nullptr;
    const std::any* lastOld = nullptr;
    const std::any* lastNew = nullptr;
    for (const Registered& entry : snapshot) {
        const Listener& listener = entry.listener;
        if (listener.stateKey && !isChanged(entry)) continue;
        // Read afresh, since an earlier listener's nested dispatch may have changed the state.
        if (!current->isSameInstance(state_)) {
            currentWhole = state_;
            current = std::any_cast<State>(&currentWhole);
            lastKeyed = nullptr;
        }
        const std::any* oldValue = nullptr;
        const std::any* newValue = nullptr;
        if (listener.stateKey) {
            const bool sameSlice = lastKeyed && lastKeyed->keyHash == entry.keyHash &&
                                   *lastKeyed->listener.stateKey == *listener.stateKey;
            if (!sameSlice) {
                lastKeyed = &entry;
                lastOld = oldState.value(*listener.stateKey);
                lastNew = current->value(*listener.stateKey);
            }
            oldValue = lastOld;
            newValue = lastNew;
        }
        if (!oldValue) oldValue = &oldWhole;
        if (!newValue) newValue = &currentWhole;
        if (listener.filterBlock(*oldValue, *newValue)) listener.notify(*newValue);
    }
}

void Store::replaceListeners(std::shared_ptr<const std::vector<Registered>> listeners) {
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

Listener Store::appendListener(Listener listener) {
    listener.id = detail::newListenerId();
    auto updated = std::make_shared<std::vector<Registered>>(*listeners_);
    const std::size_t keyHash = listener.stateKey ? std::hash<std::string>{}(*listener.stateKey) : 0;
    updated->push_back({listener, keyHash});
    replaceListeners(std::move(updated));
    return listener;
}

Subscription<State> Store::addListener(Filter<State> filter, std::function<void(const State&)> callback) {
    Listener listener;
    listener.notify = [callback = std::move(callback)](const std::any& value) {
        if (const State* state = std::any_cast<State>(&value)) callback(*state);
    };
    listener.filterBlock = detail::wrapFilter<State>(std::move(filter));
    return Subscription<State>{shared_from_this(), appendListener(std::move(listener))};
}

std::vector<Listener> Store::listeners() const {
    std::vector<Listener> out;
    for (const auto& entry : *listeners_) out.push_back(entry.listener);
    return out;
}

void Store::reset(std::any state, const std::string& forKey) { state_.set(forKey, std::move(state)); }

void Store::resetFullState(const State::Dictionary& dictionary) { state_ = State(dictionary); }

} // namespace tivra
