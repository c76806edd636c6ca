#pragma once

#include "platform/attributed_string.hpp"

#include <optional>
#include <string_view>

namespace platform {

// The first occurrence of `term` in `text` with case ignored (Unicode simple case folding), as a
// range of UTF-8 bytes of `text`. Nothing for an empty term, no match, or text that is not UTF-8.
std::optional<TextRange> rangeOfStringCaseInsensitive(std::string_view text, std::string_view term);

} // namespace platform
