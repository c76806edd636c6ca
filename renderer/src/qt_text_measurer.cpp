#include "renderer/qt_text_measurer.hpp"

#include "renderer/application.hpp"
#include "renderer/conversions.hpp"
#include "renderer/text_block.hpp"

#include <algorithm>
#include <cmath>

namespace renderer {

uikit::Size QtTextMeasurer::measure(const platform::AttributedString& text, double maxWidth, int maxLines) const {
    if (text.empty()) return {0, 0};
    // Qt's fonts need the application object; without it there are no metrics to give.
    if (!hasGuiApplication()) return fallback_.measure(text, maxWidth, maxLines);
    TextBlock::Options options;
    options.font = defaultTextFont();
    options.width = maxWidth;
    options.maxLines = std::max(0, maxLines);
    const TextBlock block(text, options);
    const double width = std::isfinite(maxWidth) && maxWidth > 0 ? std::min(block.size().width(), maxWidth)
                                                                 : block.size().width();
    return {std::ceil(width), std::ceil(block.size().height())};
}

std::shared_ptr<const uikit::TextMeasurer> installQtTextMeasurer() {
    return uikit::setTextMeasurer(std::make_shared<QtTextMeasurer>());
}

} // namespace renderer
