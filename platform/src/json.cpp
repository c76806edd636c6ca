#include "platform/json.hpp"

#include <boost/json/parse.hpp>

namespace platform {

std::optional<boost::json::value> parseJson(std::string_view bytes, boost::json::storage_ptr resource) {
    boost::system::error_code error;
    auto value = boost::json::parse(bytes, error, std::move(resource));
    if (error) return std::nullopt;
    return value;
}

} // namespace platform
