#pragma once

#include "tivra/filters.hpp"

#include <any>
#include <functional>

namespace tivra::detail {

// What a state listener does with a change. `Listener`'s `filterBlock` and `notify` call it, and
// a notification pass calls both steps at once, converting each value only once.
class ListenerCall {
public:
    virtual ~ListenerCall() = default;
    virtual bool filter(const std::any& oldValue, const std::any& newValue) const = 0;
    virtual void notify(const std::any& value) const = 0;
    // `filter`, then `notify` when it passes.
    virtual void filterAndNotify(const std::any& oldValue, const std::any& newValue) const = 0;
};

// A listener on values of type V: its slice, or the whole State. Without a filter it always
// passes, whatever the values; a given filter sees only values of type V and fails on others.
template <class V>
class TypedListenerCall final : public ListenerCall {
public:
    using FilterFunction = std::function<bool(const V&, const V&)>;
    using Deliver = std::function<void(const V&)>;

    TypedListenerCall(FilterFunction filter, Deliver deliver)
        : filter_(std::move(filter)),
          equals_(filter_ && filter_.template target<EqualsFilterFunction>()),
          deliver_(std::move(deliver)) {}

    bool filter(const std::any& oldValue, const std::any& newValue) const override {
        if (!filter_) return true;
        const V* typedOld = std::any_cast<V>(&oldValue);
        const V* typedNew = std::any_cast<V>(&newValue);
        return typedOld && typedNew && passes(*typedOld, *typedNew);
    }

    void notify(const std::any& value) const override {
        if (const V* typed = std::any_cast<V>(&value)) deliver_(*typed);
    }

    void filterAndNotify(const std::any& oldValue, const std::any& newValue) const override {
        const V* typedNew = std::any_cast<V>(&newValue);
        if (filter_) {
            const V* typedOld = std::any_cast<V>(&oldValue);
            if (!typedOld || !typedNew || !passes(*typedOld, *typedNew)) return;
        }
        if (typedNew) deliver_(*typedNew);
    }

private:
    // The common comparison is made here rather than through the function object.
    bool passes(const V& oldValue, const V& newValue) const {
        return equals_ ? EqualsFilter(oldValue, newValue) : filter_(oldValue, newValue);
    }

    FilterFunction filter_;
    bool equals_;
    Deliver deliver_;
};

} // namespace tivra::detail
