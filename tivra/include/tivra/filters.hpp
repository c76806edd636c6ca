#pragma once

#include <concepts>

namespace tivra {

// A type is dynamically equatable when it can be compared with ==; every such type gets it.
template <class T>
concept TivraDynamicEquatable = std::equality_comparable<T>;

struct AlwaysFilter {
    template <class T>
    bool operator()(const T&, const T&) const {
        return true;
    }
};

// Notifies when the value changed; values that cannot be compared count as changed.
struct EqualsFilterFunction {
    template <class T>
    bool operator()(const T& oldValue, const T& newValue) const {
        if constexpr (TivraDynamicEquatable<T>)
            return !(oldValue == newValue);
        else
            return true;
    }
};

inline constexpr AlwaysFilter alwaysFilter{};
inline constexpr EqualsFilterFunction EqualsFilter{};

} // namespace tivra
