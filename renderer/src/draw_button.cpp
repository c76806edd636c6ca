#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/button.hpp"

#include <algorithm>

namespace renderer::detail {

// The title is the button's label subview and draws itself; the button draws its image where
// its layout left room for it: just before the title, centred on the content's height.
void drawButton(const uikit::Button& button, QPainter& painter, const PaintContext& context) {
    const auto picture = button.currentImage();
    const QImage image = toQImage(picture);
    if (image.isNull()) return;
    const auto& insets = button.contentEdgeInsets;
    const QRectF content = context.bounds.adjusted(insets.left, insets.top, -insets.right, -insets.bottom);
    const double titleLeft = button.titleLabel() ? button.titleLabel()->frame().minX() : content.center().x();
    const QRectF slot(titleLeft - image.width(), content.top(), image.width(), content.height());
    // Larger images shrink to the room, keeping their shape.
    const double scale = std::min({1.0, slot.width() / image.width(), slot.height() / image.height()});
    if (scale <= 0) return;
    const QSizeF size(image.width() * scale, image.height() * scale);
    const QRectF target(slot.center().x() - size.width() / 2, slot.center().y() - size.height() / 2, size.width(),
                        size.height());
    painter.drawImage(target, image);
}

} // namespace renderer::detail
