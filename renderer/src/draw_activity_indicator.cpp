#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/image_view.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace renderer::detail {

// Twelve ticks around the centre, the brightest one going round once a second. A spinner keeps
// its style's size in a larger frame, as the platform's does.
void drawActivityIndicator(const uikit::ActivityIndicatorView& view, QPainter& painter, const PaintContext& context) {
    constexpr int ticks = 12;
    const QColor color = view.color ? toQColor(*view.color) : view.style() == 2 ? QColor(128, 128, 128) : Qt::white;
    const double natural = view.intrinsicContentSize().width;
    const double radius = std::min({context.bounds.width(), context.bounds.height(), natural}) / 2;
    int lead = 0;
    if (view.isAnimating() && std::isfinite(context.now)) {
        lead = static_cast<int>(std::fmod(std::floor(context.now * ticks), ticks));
        if (lead < 0) lead += ticks;
    }
    const QPointF centre = context.bounds.center();
    QPen pen(color, std::max(1.5, radius * 0.18), Qt::SolidLine, Qt::RoundCap);
    const double baseOpacity = painter.opacity();
    for (int tick = 0; tick < ticks; ++tick) {
        const int behind = (lead - tick + ticks) % ticks;
        painter.setOpacity(baseOpacity * (1.0 - 0.75 * behind / (ticks - 1)));
        const double angle = 2 * std::numbers::pi * tick / ticks - std::numbers::pi / 2;
        const QPointF direction(std::cos(angle), std::sin(angle));
        painter.setPen(pen);
        painter.drawLine(centre + direction * radius * 0.5, centre + direction * (radius - pen.widthF() / 2));
    }
    painter.setOpacity(baseOpacity);
}

} // namespace renderer::detail
