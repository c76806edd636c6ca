#pragma once

#include <string>
#include <string_view>

namespace platform {

// The UTF-8 text without leading and trailing Unicode white space and line breaks
// (space separators, tab, line and paragraph separators, U+000A...U+000D, U+0085).
std::string trimmingWhitespaceAndNewlines(std::string_view text);

} // namespace platform
