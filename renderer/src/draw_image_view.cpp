#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/image_view.hpp"

#include <algorithm>

namespace renderer::detail {

namespace {
QRectF placed(const QRectF& bounds, QSizeF image, uikit::ContentMode mode) {
    switch (mode) {
    case uikit::ContentMode::scaleToFill: return bounds;
    case uikit::ContentMode::scaleAspectFit:
    case uikit::ContentMode::scaleAspectFill: {
        const double across = bounds.width() / image.width();
        const double down = bounds.height() / image.height();
        const double scale = mode == uikit::ContentMode::scaleAspectFit ? std::min(across, down) : std::max(across, down);
        image *= scale;
        break;
    }
    case uikit::ContentMode::center: break;
    }
    return {bounds.center().x() - image.width() / 2, bounds.center().y() - image.height() / 2, image.width(),
            image.height()};
}
} // namespace

void drawImageView(const uikit::ImageView& view, QPainter& painter, const PaintContext& context) {
    const QImage image =
        view.templateRendering ? templateImage(view.image(), effectiveTint(view)) : toQImage(view.image());
    if (image.isNull()) return;
    // An aspect-filled image overflows unless the view clips, as on the platform.
    painter.drawImage(placed(context.bounds, QSizeF(image.size()), view.contentMode), image);
}

} // namespace renderer::detail
