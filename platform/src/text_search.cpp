#include "platform/text_search.hpp"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <limits>
#include <vector>

namespace platform {

namespace {

struct Folded {
    std::vector<UChar32> codePoints;
    std::vector<std::size_t> offsets;  // byte offset of each code point, then the end
};

// Folds code point by code point, so that each folded unit maps back to its bytes.
std::optional<Folded> fold(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) return std::nullopt;
    Folded folded;
    folded.codePoints.reserve(text.size());
    folded.offsets.reserve(text.size() + 1);
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    int32_t index = 0;
    while (index < length) {
        folded.offsets.push_back(static_cast<std::size_t>(index));
        UChar32 c = 0;
        U8_NEXT(bytes, index, length, c);
        if (c < 0) return std::nullopt;
        folded.codePoints.push_back(u_foldCase(c, U_FOLD_CASE_DEFAULT));
    }
    folded.offsets.push_back(text.size());
    return folded;
}

} // namespace

std::optional<TextRange> rangeOfStringCaseInsensitive(std::string_view text, std::string_view term) {
    if (term.empty()) return std::nullopt;
    const auto haystack = fold(text);
    const auto needle = fold(term);
    if (!haystack || !needle) return std::nullopt;
    const auto& h = haystack->codePoints;
    const auto& n = needle->codePoints;
    if (n.size() > h.size()) return std::nullopt;
    for (std::size_t start = 0; start + n.size() <= h.size(); ++start) {
        std::size_t matched = 0;
        while (matched < n.size() && h[start + matched] == n[matched]) ++matched;
        if (matched == n.size()) {
            const auto begin = haystack->offsets[start];
            return TextRange{begin, haystack->offsets[start + n.size()] - begin};
        }
    }
    return std::nullopt;
}

} // namespace platform
