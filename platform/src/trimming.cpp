#include "platform/trimming.hpp"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <limits>
#include <optional>

namespace platform {

namespace {

bool isWhitespaceOrNewline(UChar32 c) {
    if (c < 0) return false;  // a broken sequence is content, not space
    if ((c >= 0x09 && c <= 0x0D) || c == 0x85) return true;
    const auto type = u_charType(c);
    return type == U_SPACE_SEPARATOR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

} // namespace

std::string trimmingWhitespaceAndNewlines(std::string_view text) {
    // ICU's indices are 32-bit; a text beyond that is left whole rather than cut.
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) return std::string(text);
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    // One forward pass: where the first content starts and where the last content ends.
    std::optional<int32_t> begin;
    int32_t end = 0;
    for (int32_t index = 0; index < length;) {
        const int32_t start = index;
        UChar32 c;
        U8_NEXT(bytes, index, length, c);
        if (isWhitespaceOrNewline(c)) continue;
        if (!begin) begin = start;
        end = index;
    }
    if (!begin) return {};
    return std::string(text.substr(static_cast<std::size_t>(*begin), static_cast<std::size_t>(end - *begin)));
}

} // namespace platform
