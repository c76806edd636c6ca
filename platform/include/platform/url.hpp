#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// A well-formed URI reference (absolute, or relative like "path/page"), kept as its text.
class URL {
public:
    // Absent for empty text and for text that is no URI reference (spaces, stray '%', ...).
    static std::optional<URL> parse(std::string_view text);

    const std::string& absoluteString() const { return text_; }
    // Lower-cased; empty for a relative reference.
    std::string scheme() const;

    bool operator==(const URL&) const = default;

private:
    explicit URL(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

} // namespace platform
