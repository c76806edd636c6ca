#pragma once

#include "platform/attributed_string.hpp"
#include "uikit/geometry.hpp"

#include <memory>

namespace uikit {

// How much room styled text takes when wrapped to a width. Tests get a deterministic measure; the
// renderer installs real font metrics.
class TextMeasurer {
public:
    virtual ~TextMeasurer() = default;
    // `maxLines` of 0 means any number of lines. The answer is rounded up to whole points.
    virtual Size measure(const platform::AttributedString& text, double maxWidth, int maxLines) const = 0;
};

// Every glyph half as wide as its font's size (a little wider when bold), lines 1.2 times as high,
// wrapped at spaces.
class FixedWidthTextMeasurer final : public TextMeasurer {
public:
    Size measure(const platform::AttributedString& text, double maxWidth, int maxLines) const override;
};

const TextMeasurer& textMeasurer();
// Replaces the measurer and returns the previous one.
std::shared_ptr<const TextMeasurer> setTextMeasurer(std::shared_ptr<const TextMeasurer> measurer);

} // namespace uikit
