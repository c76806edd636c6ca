#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// A URL reference (absolute or relative) that has passed a syntax check.
class Url {
public:
    // Nothing when the text is empty or is no valid URL reference (a space, a bad escape, ...).
    static std::optional<Url> fromString(std::string_view text);

    const std::string& absoluteString() const { return text_; }
    bool operator==(const Url&) const = default;

private:
    explicit Url(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

} // namespace platform
