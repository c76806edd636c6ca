#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A well-formed URI reference (absolute, or relative like "path/page"), kept as its text.
class URL {
public:
    // Absent for empty text and for text that is no URI reference (spaces, stray '%', ...).
    static std::optional<URL> parse(std::string_view text);

    const std::string& absoluteString() const { return text_; }
    // Lower-cased; empty for a relative reference.
    std::string scheme() const;
    // The path's parts, decoded: "/" first for an absolute path, then each non-empty segment.
    // "https://host/hc/articles/1" gives "/", "hc", "articles", "1"; a bare host gives none.
    std::vector<std::string> pathComponents() const;

    bool operator==(const URL&) const = default;

private:
    explicit URL(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

} // namespace platform
