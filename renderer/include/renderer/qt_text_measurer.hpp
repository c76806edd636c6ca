#pragma once

#include "uikit/text_measurer.hpp"

#include <memory>

namespace renderer {

// Text measured with Qt's fonts, laid out as the painter draws it. Needs a QGuiApplication; with
// none it answers as the kit's fixed-width measurer does.
class QtTextMeasurer final : public uikit::TextMeasurer {
public:
    uikit::Size measure(const platform::AttributedString& text, double maxWidth, int maxLines) const override;

private:
    uikit::FixedWidthTextMeasurer fallback_;
};

// Makes real font metrics the kit's text measuring; returns the measurer it replaced.
std::shared_ptr<const uikit::TextMeasurer> installQtTextMeasurer();

} // namespace renderer
