#include "platform/character_set.hpp"

#include <unicode/uchar.h>

namespace platform {
namespace {

bool isWhitespaceOrNewline(char32_t codePoint) {
    if (codePoint == U'\t' || (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85) return true;
    switch (u_charType(static_cast<UChar32>(codePoint))) {
    case U_SPACE_SEPARATOR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR: return true;
    default: return false;
    }
}

} // namespace

CharacterSet CharacterSet::whitespaceAndNewlines() { return CharacterSet(&isWhitespaceOrNewline); }

} // namespace platform
