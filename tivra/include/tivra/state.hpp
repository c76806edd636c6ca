#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <any>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tivra {

// The store's state: a map from state key to a dynamically typed slice. Copies share the map
// until one of them writes, and each slice is shared too, so a copy never copies a slice.
// A State is one pointer wide, so a std::any holds it without allocating.
class State {
public:
    using Dictionary = std::map<std::string, std::any>;

    State();
    explicit State(const Dictionary& dictionary);
    State(std::initializer_list<std::pair<const std::string, std::any>> pairs);

    // In key order.
    std::vector<std::string> keys() const;
    std::size_t count() const;
    bool contains(const std::string& key) const;

    // The slice at `key`, or null.
    const std::any* value(const std::string& key) const;
    // The slice at `key` as T, or null when it is missing or of another type.
    template <class T>
    const T* value(const std::string& key) const {
        const std::any* found = value(key);
        return found ? std::any_cast<T>(found) : nullptr;
    }
    // The slice under T's own key, as T.
    template <class T>
    const T* valueOfType() const;

    // Setting an empty value removes the key.
    void set(const std::string& key, std::any value);
    void remove(const std::string& key);

    Dictionary dictionary() const;

    // Whether both are copies of one state that neither has written to since.
    bool isSameInstance(const State& other) const { return slices_ == other.slices_; }

    // Calls `visit(key, value)` for every slice, in key order.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (const auto& entry : slices_->entries) visit(*entry.key, *entry.value);
    }

private:
    struct Entry {
        std::shared_ptr<const std::string> key;
        std::shared_ptr<const std::any> value;
    };
    // Few slices: a sorted vector beats a tree for lookups and for the copy on write.
    struct Slices : boost::intrusive_ref_counter<Slices, boost::thread_safe_counter> {
        std::vector<Entry> entries;
    };

    const Entry* find(const std::string& key) const;
    Slices& mutableSlices();

    boost::intrusive_ptr<const Slices> slices_;
};

} // namespace tivra

#include "tivra/state_key.hpp"

template <class T>
const T* tivra::State::valueOfType() const {
    return value<T>(stateKeyOf<T>());
}
