#pragma once

#include "tivra/deinit_callback.hpp"
#include "tivra/listener.hpp"
#include "tivra/state.hpp"

#include <memory>

namespace platform {
class Object;
}

namespace tivra {

class Store;

namespace detail {
void removeListener(Store& store, const std::string& id);
void removeActionListener(Store& store, const std::string& id);
void informWithCurrentState(const Store& store, const Listener& listener,
                            const std::any* (*valueAt)(const State&, const std::string&));
} // namespace detail

// A state listener's handle. Dropping it removes nothing: call `removeListener` or link it
// to the lifetime of an object.
template <class T>
struct Subscription {
    std::shared_ptr<Store> store;
    Listener listener;

    void removeListener() const { detail::removeListener(*store, listener.id); }

    void linkLifeCycleTo(platform::Object& object) const {
        deinitCallbackOf(object).callbacks.push_back([copy = *this] { copy.removeListener(); });
    }

    // Calls the listener once with the current value, ignoring its filter.
    void informWithCurrentState() const {
        detail::informWithCurrentState(*store, listener, [](const State& state, const std::string& key) {
            const std::any* value = state.value(key);
            return value && std::any_cast<T>(value) ? value : nullptr;
        });
    }
};

struct ActionSubscription {
    std::shared_ptr<Store> store;
    std::string listenerId;

    void removeListener() const { detail::removeActionListener(*store, listenerId); }

    void linkLifeCycleTo(platform::Object& object) const {
        deinitCallbackOf(object).callbacks.push_back([copy = *this] { copy.removeListener(); });
    }
};

} // namespace tivra
