#include "platform/attributed_string.hpp"

#include <algorithm>
#include <cassert>

namespace platform {

AttributedString::AttributedString(std::string text, TextAttributes attributes) : text_(std::move(text)) {
    if (!text_.empty()) spans_.push_back({text_.size(), std::move(attributes)});
}

void AttributedString::append(const AttributedString& other) {
    text_ += other.text_;
    for (const auto& span : other.spans_) appendSpan(span.length, span.attributes);
}

void AttributedString::append(std::string_view text, const TextAttributes& attributes) {
    text_ += text;
    appendSpan(text.size(), attributes);
}

void AttributedString::deleteCharacters(TextRange range) {
    range.location = std::min(range.location, text_.size());
    range.length = std::min(range.length, text_.size() - range.location);
    if (range.length == 0) return;
    text_.erase(range.location, range.length);

    // Shorten the spans the range touches, drop the emptied ones, then join equal neighbours
    // across the cut. Trimming cuts at the ends, so this stays cheap there.
    std::size_t first = 0;
    std::size_t start = 0;
    while (start + spans_[first].length <= range.location) start += spans_[first++].length;
    std::size_t remaining = range.length;
    std::size_t offset = range.location - start;
    std::size_t last = first;
    while (remaining > 0) {
        const std::size_t cut = std::min(remaining, spans_[last].length - offset);
        spans_[last].length -= cut;
        remaining -= cut;
        offset = 0;
        ++last;
    }
    const auto emptied = std::remove_if(spans_.begin() + static_cast<std::ptrdiff_t>(first),
                                        spans_.begin() + static_cast<std::ptrdiff_t>(last),
                                        [](const Span& span) { return span.length == 0; });
    spans_.erase(emptied, spans_.begin() + static_cast<std::ptrdiff_t>(last));

    for (std::size_t i = first == 0 ? 1 : first; i < spans_.size() && i <= first + 1; ++i) {
        if (spans_[i - 1].attributes == spans_[i].attributes) {
            spans_[i - 1].length += spans_[i].length;
            spans_.erase(spans_.begin() + static_cast<std::ptrdiff_t>(i));
            break;
        }
    }
}

const TextAttributes& AttributedString::attributesAt(std::size_t index) const {
    assert(index < text_.size());
    for (const auto& span : spans_) {
        if (index < span.length) return span.attributes;
        index -= span.length;
    }
    return spans_.back().attributes;
}

std::vector<AttributedString::Run> AttributedString::runs() const {
    std::vector<Run> out;
    out.reserve(spans_.size());
    std::size_t location = 0;
    for (const auto& span : spans_) {
        out.push_back({{location, span.length}, span.attributes});
        location += span.length;
    }
    return out;
}

bool AttributedString::operator==(const AttributedString& other) const {
    return text_ == other.text_ && spans_ == other.spans_;
}

void AttributedString::appendSpan(std::size_t length, const TextAttributes& attributes) {
    if (length == 0) return;
    if (!spans_.empty() && spans_.back().attributes == attributes)
        spans_.back().length += length;
    else
        spans_.push_back({length, attributes});
}

} // namespace platform
