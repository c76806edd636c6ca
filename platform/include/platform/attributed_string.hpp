#pragma once

#include "platform/text_attributes.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A span of a string, in UTF-8 bytes.
struct TextRange {
    std::size_t location = 0;
    std::size_t length = 0;
    bool operator==(const TextRange&) const = default;
};

// UTF-8 text whose every byte carries a map of attributes, kept as runs of equal maps.
class AttributedString {
public:
    struct Run {
        TextRange range;
        TextAttributes attributes;
        bool operator==(const Run&) const = default;
    };

    AttributedString() = default;
    explicit AttributedString(std::string text, TextAttributes attributes = {});

    const std::string& string() const { return text_; }
    std::size_t length() const { return text_.size(); }
    bool empty() const { return text_.empty(); }

    void append(const AttributedString& other);
    void append(std::string_view text, const TextAttributes& attributes);
    void deleteCharacters(TextRange range);

    // The attributes of the byte at `index`, which must lie inside the string.
    const TextAttributes& attributesAt(std::size_t index) const;
    // The longest runs: neighbours never have equal attributes.
    std::vector<Run> runs() const;

    bool operator==(const AttributedString& other) const;

private:
    struct Span {
        std::size_t length;
        TextAttributes attributes;
        bool operator==(const Span&) const = default;
    };

    void appendSpan(std::size_t length, const TextAttributes& attributes);

    std::string text_;
    std::vector<Span> spans_;  // cover text_ in order, none empty
};

} // namespace platform
