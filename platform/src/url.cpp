#include "platform/url.hpp"

#include <boost/url/parse.hpp>

#include <algorithm>
#include <cctype>

namespace platform {

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty() || !boost::urls::parse_uri_reference(text)) return std::nullopt;
    return URL(std::string(text));
}

std::string URL::scheme() const {
    std::string scheme(boost::urls::parse_uri_reference(text_)->scheme());
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return scheme;
}

} // namespace platform
