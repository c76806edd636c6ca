#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace belvakit {

// The article id of a Help Center link of the account: ".../hc/<locale>/articles/<id>-title" or
// ".../hc/articles/<id>...". None for links elsewhere, links to other Help Center pages and ids
// that are not numbers. A link too short to hold an article is logged as an error and declined.
std::optional<std::int64_t> parseHelpCenterArticleId(const std::string& url, const std::string& accountUrl);

} // namespace belvakit
