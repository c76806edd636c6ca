#include "renderer/offscreen.hpp"

#include "renderer/application.hpp"
#include "renderer/view_painter.hpp"

#include <QPainter>

#include <cmath>

namespace renderer {

namespace {
constexpr double largestSide = 16384;
}

QImage renderToImage(uikit::View& view, double scale) {
    if (!hasGuiApplication() || !std::isfinite(scale) || scale <= 0) return {};
    view.layoutIfNeeded();
    const uikit::Rect frame = view.presentationFrame(uikit::Animation::now());
    const double width = std::ceil(frame.width() * scale);
    const double height = std::ceil(frame.height() * scale);
    if (!(width >= 1 && height >= 1 && width <= largestSide && height <= largestSide)) return {};
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    ViewPainter(painter).paint(view);
    painter.end();
    return image;
}

bool renderToPNG(uikit::Window& window, const std::string& path, double scale) {
    if (scale == 0) scale = window.environment().scale;
    const QImage drawn = renderToImage(window, scale);
    if (drawn.isNull()) return false;
    QImage page(drawn.size(), QImage::Format_ARGB32_Premultiplied);
    page.setDevicePixelRatio(drawn.devicePixelRatio());
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.drawImage(0, 0, drawn);
    painter.end();
    return page.save(QString::fromStdString(path), "PNG");
}

} // namespace renderer
