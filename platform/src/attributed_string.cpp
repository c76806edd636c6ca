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

    std::vector<Span> kept;
    kept.reserve(spans_.size());
    std::size_t start = 0;
    const std::size_t end = range.location + range.length;
    for (auto& span : spans_) {
        const std::size_t spanEnd = start + span.length;
        const std::size_t overlap =
            std::max(start, range.location) < std::min(spanEnd, end)
                ? std::min(spanEnd, end) - std::max(start, range.location)
                : 0;
        start = spanEnd;
        span.length -= overlap;
        if (span.length == 0) continue;
        // Deleting the span between two equal ones joins them.
        if (!kept.empty() && kept.back().attributes == span.attributes)
            kept.back().length += span.length;
        else
            kept.push_back(std::move(span));
    }
    spans_ = std::move(kept);
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
