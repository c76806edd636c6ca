#include "uikit/text_measurer.hpp"

#include "installed.hpp"

#include <algorithm>
#include <cmath>
#include <atomic>
#include <mutex>
#include <vector>

namespace uikit {

Size FixedWidthTextMeasurer::measure(const platform::AttributedString& text, double maxWidth, int maxLines) const {
    const std::string& bytes = text.string();
    if (bytes.empty()) return {0, 0};
    double widest = 0;
    double lineWidth = 0;
    double lineHeight = 0;
    double height = 0;
    int lines = 0;
    double wordWidth = 0;  // of the word being read, not yet placed
    double wordHeight = 0;
    const auto endLine = [&] {
        widest = std::max(widest, lineWidth);
        height += lineHeight;
        ++lines;
        lineWidth = 0;
        lineHeight = 0;
    };
    const auto placeWord = [&] {
        if (lineWidth > 0 && lineWidth + wordWidth > maxWidth) endLine();
        lineWidth += wordWidth;
        lineHeight = std::max(lineHeight, wordHeight);
        wordWidth = 0;
        wordHeight = 0;
    };
    // The font changes only from run to run.
    const auto runs = text.runs();
    auto run = runs.begin();
    double advance = 0;
    double high = 0;
    std::size_t runEnd = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i >= runEnd) {
            while (run != runs.end() && run->range.location + run->range.length <= i) ++run;
            const auto* font = run != runs.end() ? run->attributes.get<platform::Font>(platform::AttributeName::font)
                                                 : nullptr;
            const bool bold = font && (font->symbolicTraits() & platform::FontTrait::bold);
            const double size = font ? font->pointSize() : 17;
            advance = size * (bold ? 0.55 : 0.5);
            high = std::ceil(size * 1.2);
            runEnd = run != runs.end() ? run->range.location + run->range.length : bytes.size();
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0) == 0x80) continue;  // one advance per character
        if (bytes[i] == '\n') {
            placeWord();
            lineHeight = std::max(lineHeight, high);
            endLine();
            continue;
        }
        wordWidth += advance;
        wordHeight = std::max(wordHeight, high);
        if (bytes[i] == ' ') placeWord();
    }
    placeWord();
    if (lineWidth > 0 || lineHeight > 0) endLine();
    if (maxLines > 0 && lines > maxLines) {
        // Only the first lines show; their height is what the text takes.
        height = height / lines * maxLines;
    }
    return {std::ceil(std::min(widest, maxWidth)), std::ceil(height)};
}

namespace {
Installed<TextMeasurer, FixedWidthTextMeasurer>& installed() {
    static Installed<TextMeasurer, FixedWidthTextMeasurer> measurer;
    return measurer;
}
} // namespace

const TextMeasurer& textMeasurer() { return installed().get(); }

std::shared_ptr<const TextMeasurer> setTextMeasurer(std::shared_ptr<const TextMeasurer> measurer) {
    return installed().set(std::move(measurer));
}

} // namespace uikit
