#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Standard alphabet with padding, no line breaks.
std::string base64Encode(std::string_view bytes);
// Nothing for text that is not well-formed Base64.
std::optional<std::string> base64Decode(std::string_view text);

} // namespace platform
