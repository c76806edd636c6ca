#pragma once

#include <boost/json/value.hpp>

#include <optional>
#include <string_view>

namespace platform {

// The JSON value of the bytes, or nothing when they are not one complete JSON text.
// `resource` lets a caller that reads and drops the value at once parse into an arena.
std::optional<boost::json::value> parseJson(std::string_view bytes, boost::json::storage_ptr resource = {});

} // namespace platform
