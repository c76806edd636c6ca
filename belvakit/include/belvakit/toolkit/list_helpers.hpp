#pragma once

#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

namespace belvakit {

namespace list_detail {
template <class> struct IsOptional : std::false_type {};
template <class U> struct IsOptional<std::optional<U>> : std::true_type {};
template <class T> struct Nullable : std::bool_constant<std::is_pointer_v<T>> {};
template <class U> struct Nullable<std::shared_ptr<U>> : std::true_type {};
} // namespace list_detail

// True at the first element the predicate accepts.
template <class T, class Predicate>
bool exists(const std::vector<T>& items, Predicate&& accepts) {
    for (const auto& item : items)
        if (accepts(item)) return true;
    return false;
}

// The transform's results in order, without the empty ones: an optional result is unwrapped, a
// null pointer left out.
template <class T, class Transform>
auto map(const std::vector<T>& items, Transform&& transform) {
    using Result = std::invoke_result_t<Transform&, const T&>;
    if constexpr (list_detail::IsOptional<Result>::value) {
        std::vector<typename Result::value_type> out;
        for (const auto& item : items)
            if (auto result = transform(item)) out.push_back(std::move(*result));
        return out;
    } else if constexpr (list_detail::Nullable<Result>::value) {
        std::vector<Result> out;
        for (const auto& item : items)
            if (auto result = transform(item)) out.push_back(std::move(result));
        return out;
    } else {
        std::vector<Result> out;
        out.reserve(items.size());
        for (const auto& item : items) out.push_back(transform(item));
        return out;
    }
}

template <class T, class Predicate>
std::vector<T> filter(const std::vector<T>& items, Predicate&& accepts) {
    std::vector<T> out;
    for (const auto& item : items)
        if (accepts(item)) out.push_back(item);
    return out;
}

} // namespace belvakit
