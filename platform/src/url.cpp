#include "platform/url.hpp"

#include <boost/url/parse.hpp>

namespace platform {

std::optional<Url> Url::fromString(std::string_view text) {
    if (text.empty() || !boost::urls::parse_uri_reference(text)) return std::nullopt;
    return Url(std::string(text));
}

} // namespace platform
