#include "platform/regular_expression.hpp"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <limits>

namespace platform {

namespace {
icu::UnicodeString fromUTF8(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}
} // namespace

struct RegularExpression::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;
};

std::optional<RegularExpression> RegularExpression::compile(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    if (pattern.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) return std::nullopt;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(fromUTF8(pattern), 0, parseError, status));
    if (U_FAILURE(status) || !compiled) return std::nullopt;
    return RegularExpression(std::make_shared<const Compiled>(Compiled{std::move(compiled)}));
}

bool RegularExpression::matchesWhole(std::string_view text) const {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) return false;
    const auto subject = fromUTF8(text);
    UErrorCode status = U_ZERO_ERROR;
    // A matcher per call: the pattern is shareable across threads, a matcher is not.
    std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(subject, status));
    if (U_FAILURE(status) || !matcher) return false;
    const bool matched = matcher->matches(status);
    return U_SUCCESS(status) && matched;
}

} // namespace platform
