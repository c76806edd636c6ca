#include "platform/url.hpp"

#include <boost/url/parse.hpp>

#include <algorithm>
#include <cctype>

namespace platform {
namespace {

bool isAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Unreserved characters and sub-delimiters: what a host name may hold as it is.
bool isHostCharacter(char c) {
    if (isAlpha(c) || isDigit(c)) return true;
    switch (c) {
    case '-': case '.': case '_': case '~':
    case '!': case '$': case '&': case '\'': case '(': case ')': case '*': case '+': case ',': case ';': case '=':
        return true;
    default:
        return false;
    }
}

// What a path, a query or a fragment may hold as it is.
bool isPathCharacter(char c) { return isHostCharacter(c) || c == ':' || c == '@' || c == '/' || c == '?'; }

// "scheme://host" with an optional path, query and fragment, all of plain characters: always a
// URI, so the full grammar needn't run. Ports, user info, escapes, IP literals and relative
// references are left to it.
bool isPlainAbsoluteURI(std::string_view text) {
    if (text.empty() || !isAlpha(text.front())) return false;
    const auto schemeEnd = std::find_if(text.begin() + 1, text.end(), [](char c) {
        return !(isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.');
    });
    const std::string_view rest = text.substr(static_cast<std::size_t>(schemeEnd - text.begin()));
    if (!rest.starts_with("://")) return false;
    const auto hostBegin = rest.begin() + 3;
    const auto hostEnd = std::find_if_not(hostBegin, rest.end(), isHostCharacter);
    if (hostEnd == hostBegin) return false;
    const auto fragment = std::find(hostEnd, rest.end(), '#');
    if (hostEnd != rest.end() && *hostEnd != '/' && *hostEnd != '?' && *hostEnd != '#') return false;
    return std::all_of(hostEnd, fragment, isPathCharacter) &&
           (fragment == rest.end() || std::all_of(fragment + 1, rest.end(), isPathCharacter));
}

} // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty()) return std::nullopt;
    if (!isPlainAbsoluteURI(text) && !boost::urls::parse_uri_reference(text)) return std::nullopt;
    return URL(std::string(text));
}

std::string URL::scheme() const {
    std::string scheme(boost::urls::parse_uri_reference(text_)->scheme());
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return scheme;
}

std::vector<std::string> URL::pathComponents() const {
    const auto reference = boost::urls::parse_uri_reference(text_);
    std::vector<std::string> components;
    if (reference->is_path_absolute()) components.emplace_back("/");
    for (const auto& segment : reference->segments())
        if (!segment.empty()) components.push_back(segment);
    return components;
}

} // namespace platform
