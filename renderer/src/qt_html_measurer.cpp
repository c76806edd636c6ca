#include "renderer/qt_html_measurer.hpp"

#include "html_pages.hpp"
#include "renderer/application.hpp"

namespace renderer {

uikit::Size QtHTMLMeasurer::measure(const std::string& html, double width) const {
    if (!hasGuiApplication()) return fallback_.measure(html, width);
    const QSizeF size = detail::htmlPage(html, width).size();
    return {size.width(), size.height()};
}

std::shared_ptr<const uikit::HTMLMeasurer> installQtHTMLMeasurer() {
    return uikit::setHTMLMeasurer(std::make_shared<QtHTMLMeasurer>());
}

} // namespace renderer
