#pragma once

#include <boost/json.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Typed reads of one field of a JSON object: nothing when the field is missing or of another type.
namespace dastrel::json_fields {

inline const boost::json::value* field(const boost::json::object& object, std::string_view key) {
    return object.if_contains(key);
}

// The values of many keys in one pass over the object, null where a key is missing: cheaper than
// a lookup per key, and the same, since an object holds each key once.
template <std::size_t N>
std::array<const boost::json::value*, N> fields(const boost::json::object& object,
                                                const std::array<std::string_view, N>& keys) {
    std::array<const boost::json::value*, N> values{};
    for (const auto& member : object)
        for (std::size_t index = 0; index < N; ++index)
            if (member.key() == keys[index]) {
                values[index] = &member.value();
                break;
            }
    return values;
}

// Each read below takes the field's value, or null when the field is missing.

inline std::optional<std::string> string(const boost::json::value* value) {
    if (!value || !value->is_string()) return std::nullopt;
    return std::string(value->get_string());
}

inline std::optional<std::int64_t> integer(const boost::json::value* value) {
    if (!value) return std::nullopt;
    if (value->is_int64()) return value->get_int64();
    if (value->is_uint64() && value->get_uint64() <= static_cast<std::uint64_t>(INT64_MAX))
        return static_cast<std::int64_t>(value->get_uint64());
    return std::nullopt;
}

inline std::optional<double> number(const boost::json::value* value) {
    if (!value || !value->is_number()) return std::nullopt;
    return value->to_number<double>();
}

inline std::optional<bool> boolean(const boost::json::value* value) {
    if (!value || !value->is_bool()) return std::nullopt;
    return value->get_bool();
}

inline std::optional<std::string> string(const boost::json::object& object, std::string_view key) {
    return string(field(object, key));
}

inline std::optional<std::int64_t> integer(const boost::json::object& object, std::string_view key) {
    return integer(field(object, key));
}

inline std::optional<double> number(const boost::json::object& object, std::string_view key) {
    return number(field(object, key));
}

inline std::optional<bool> boolean(const boost::json::object& object, std::string_view key) {
    return boolean(field(object, key));
}

template <class T>
void putOptional(boost::json::object& object, std::string_view key, const std::optional<T>& value) {
    if (value) object[key] = *value;
}

} // namespace dastrel::json_fields
