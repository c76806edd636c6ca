#pragma once

#include <memory>
#include <optional>
#include <string_view>

namespace platform {

// A compiled ICU regular expression. Copies share the compiled pattern; usable from any thread.
class RegularExpression {
public:
    // Absent when the pattern does not compile.
    static std::optional<RegularExpression> compile(std::string_view pattern);

    // Whether the whole text matches, as a "SELF MATCHES" predicate tests it. UTF-8 in.
    bool matchesWhole(std::string_view text) const;

private:
    struct Compiled;
    explicit RegularExpression(std::shared_ptr<const Compiled> compiled) : compiled_(std::move(compiled)) {}
    std::shared_ptr<const Compiled> compiled_;
};

} // namespace platform
