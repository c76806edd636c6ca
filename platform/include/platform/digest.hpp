#pragma once

#include <string>
#include <string_view>

namespace platform {

// The SHA-1 digest of the bytes as 40 lowercase hex digits: a stable name for what is too long
// to be one itself, not a security measure.
std::string sha1Hex(std::string_view bytes);

} // namespace platform
