#include "drawing.hpp"

#include "uikit/navigation_controller.hpp"

namespace renderer::detail {

// The title and items are subviews; the bar is its translucent grey with a hairline under it.
void drawNavigationBar(const uikit::NavigationBar& bar, QPainter& painter, const PaintContext& context) {
    if (!bar.backgroundColor()) painter.fillRect(context.bounds, QColor(247, 247, 248));
    const QRectF& bounds = context.bounds;
    painter.fillRect(QRectF(bounds.left(), bounds.bottom() - 0.5, bounds.width(), 0.5), QColor(0, 0, 0, 77));
}

} // namespace renderer::detail
