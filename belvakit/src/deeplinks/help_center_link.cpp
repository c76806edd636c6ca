#include "belvakit/deeplinks/help_center_link.hpp"

#include "corvane/core_logger.hpp"
#include "platform/url.hpp"

#include <charconv>

namespace belvakit {
namespace {

std::optional<std::int64_t> parseLeadingNumber(const std::string& segment) {
    const std::string_view piece = std::string_view(segment).substr(0, segment.find('-'));
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
    if (piece.empty() || error != std::errc() || end != piece.data() + piece.size()) return std::nullopt;
    return value;
}

} // namespace

std::optional<std::int64_t> parseHelpCenterArticleId(const std::string& url, const std::string& accountUrl) {
    const auto parsed = platform::URL::parse(url);
    if (!parsed || !url.starts_with(accountUrl)) return std::nullopt;
    const auto components = parsed->pathComponents();
    const std::size_t count = components.size();
    // Links this short cannot name an article; they are outside input, so they are declined.
    const auto malformed = [&] {
        corvane::CoreLogger::error("Malformed Help Center link, no article in it: " + url);
        return std::nullopt;
    };
    if (count < 3) return malformed();
    const bool inHelpCenter = components[0] == "/" && components[1] == "hc";
    if (count == 5 && inHelpCenter && components[2].size() >= 2 && components[3] == "articles")
        return parseLeadingNumber(components[4]);
    if (count != 5 && inHelpCenter && components[2] == "articles") {
        if (count == 3) return malformed();
        return parseLeadingNumber(components[3]);
    }
    corvane::CoreLogger::verbose("Not a Help Center link: " + url);
    return std::nullopt;
}

} // namespace belvakit
