#pragma once

#include "uikit/html_measurer.hpp"

#include <memory>

namespace renderer {

// Pages measured by laying them out with Qt's rich-text document, as they are drawn, so a web
// view's content size is the height it shows. Needs a QGuiApplication; with none it answers as
// the kit's estimate does.
class QtHTMLMeasurer final : public uikit::HTMLMeasurer {
public:
    uikit::Size measure(const std::string& html, double width) const override;

private:
    uikit::TextEstimateHTMLMeasurer fallback_;
};

// Makes Qt's page layout the kit's HTML measuring; returns the measurer it replaced.
std::shared_ptr<const uikit::HTMLMeasurer> installQtHTMLMeasurer();

} // namespace renderer
