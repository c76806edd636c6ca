#pragma once

#include <boost/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

// Typed reads of one field of a JSON object: nothing when the field is missing or of another type.
namespace dastrel::json_fields {

inline const boost::json::value* field(const boost::json::object& object, std::string_view key) {
    return object.if_contains(key);
}

inline std::optional<std::string> string(const boost::json::object& object, std::string_view key) {
    const auto* value = field(object, key);
    if (!value || !value->is_string()) return std::nullopt;
    return std::string(value->get_string());
}

inline std::optional<std::int64_t> integer(const boost::json::object& object, std::string_view key) {
    const auto* value = field(object, key);
    if (!value) return std::nullopt;
    if (value->is_int64()) return value->get_int64();
    if (value->is_uint64() && value->get_uint64() <= static_cast<std::uint64_t>(INT64_MAX))
        return static_cast<std::int64_t>(value->get_uint64());
    return std::nullopt;
}

inline std::optional<double> number(const boost::json::object& object, std::string_view key) {
    const auto* value = field(object, key);
    if (!value || !value->is_number()) return std::nullopt;
    return value->to_number<double>();
}

inline std::optional<bool> boolean(const boost::json::object& object, std::string_view key) {
    const auto* value = field(object, key);
    if (!value || !value->is_bool()) return std::nullopt;
    return value->get_bool();
}

template <class T>
void putOptional(boost::json::object& object, std::string_view key, const std::optional<T>& value) {
    if (value) object[key] = *value;
}

} // namespace dastrel::json_fields
