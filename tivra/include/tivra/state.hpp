#pragma once

#include <boost/container/small_vector.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <any>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tivra {

// The store's state: a map from state key to a dynamically typed slice. Copies share the map
// until one of them writes, and each slice is shared too, so a copy never copies a slice.
// A State is one pointer wide, so a std::any holds it without allocating.
class State {
    struct Keys;

public:
    using Dictionary = std::map<std::string, std::any>;

    // The set of keys of a state. Versions written without adding or removing a key share it,
    // and a key keeps its position within it, so a position found once serves every such version.
    class Layout {
    public:
        Layout() = default;
        bool operator==(const Layout&) const = default;
        // The position of `key`, or nothing when it is missing.
        std::optional<std::size_t> indexOf(const std::string& key) const;

    private:
        friend class State;
        explicit Layout(boost::intrusive_ptr<const Keys> keys) : keys_(std::move(keys)) {}
        boost::intrusive_ptr<const Keys> keys_;
    };

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

    Layout layout() const { return Layout(slices_->keys); }
    bool hasLayout(const Layout& layout) const { return slices_->keys == layout.keys_; }
    // The position of `key` in key order, or nothing when it is missing.
    std::optional<std::size_t> indexOf(const std::string& key) const;

    // By position in key order, for a caller walking every slice.
    const std::string& keyAt(std::size_t index) const { return slices_->keys->names[index]; }
    const std::any& valueAt(std::size_t index) const { return *slices_->values[index]; }
    // Replaces the value at a position; an empty value is ignored.
    void setValueAt(std::size_t index, std::any value);

    // Setting an empty value removes the key.
    void set(const std::string& key, std::any value);
    void remove(const std::string& key);

    Dictionary dictionary() const;

    // A copy with its own table of slices from the start (the slices themselves stay shared),
    // for a writer that knows it will write: its first write then copies nothing.
    static State detachedCopy(const State& other);

    // Whether both are copies of one state that neither has written to since.
    bool isSameInstance(const State& other) const { return slices_ == other.slices_; }

    // Calls `visit(key, value)` for every slice, in key order.
    template <class Visit>
    void forEach(Visit&& visit) const {
        const auto& names = slices_->keys->names;
        for (std::size_t index = 0; index < names.size(); ++index) visit(names[index], *slices_->values[index]);
    }

private:
    // The keys change far less often than the values: copies written to share one table.
    struct Keys final : boost::intrusive_ref_counter<Keys, boost::thread_safe_counter> {
        std::vector<std::string> names;  // sorted
    };
    // Few slices: sorted arrays beat a tree for lookups and for the copy on write, and the
    // values of a usual state fit the copy's own allocation.
    struct Slices : boost::intrusive_ref_counter<Slices, boost::thread_safe_counter> {
        boost::intrusive_ptr<const Keys> keys;
        boost::container::small_vector<std::shared_ptr<const std::any>, 8> values;
    };

    explicit State(boost::intrusive_ptr<const Slices> slices) : slices_(std::move(slices)) {}

    // The index of `key`, or of where it would go, and whether it is there.
    std::pair<std::size_t, bool> find(const std::string& key) const;
    Slices& mutableSlices();

    boost::intrusive_ptr<const Slices> slices_;
};

} // namespace tivra

#include "tivra/state_key.hpp"

template <class T>
const T* tivra::State::valueOfType() const {
    return value<T>(stateKeyOf<T>());
}
