#include "renderer/view_painter.hpp"

#include "drawing.hpp"
#include "renderer/conversions.hpp"
#include "uikit/window.hpp"

#include <QPainterPath>

#include <cmath>

namespace renderer {

namespace {

bool isFinite(const uikit::Rect& rect) {
    return std::isfinite(rect.minX()) && std::isfinite(rect.minY()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

QPainterPath roundedPath(const QRectF& rect, double radius) {
    QPainterPath path;
    const double fitted = std::min(radius, std::min(rect.width(), rect.height()) / 2);
    path.addRoundedRect(rect, fitted, fitted);
    return path;
}

} // namespace

ViewPainter::ViewPainter(QPainter& painter, double now) : painter_(painter) { context_.now = now; }

void ViewPainter::paint(const uikit::View& root) {
    drawn_ = 0;
    const uikit::Rect frame = root.presentationFrame(context_.now);
    if (!isFinite(frame)) return;
    const QRectF placed(0, 0, frame.width(), frame.height());
    QRectF visible = placed;
    if (painter_.hasClipping()) visible &= painter_.clipBoundingRect();
    painter_.save();
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    paintView(root, placed, visible, painter_.opacity());
    // The kit only keeps the keyboard's band; the keys are the renderer's to show.
    if (const auto* window = dynamic_cast<const uikit::Window*>(&root)) detail::drawKeyboard(*window, painter_);
    painter_.restore();
}

void ViewPainter::paintView(const uikit::View& view, const QRectF& frame, const QRectF& visible, double opacity) {
    if (view.isHidden()) return;
    const double alpha = opacity * view.presentationAlpha(context_.now) * detail::contentOpacity(view);
    if (alpha < 0.01) return;
    const bool empty = frame.width() <= 0 || frame.height() <= 0;
    // Subviews overflowing a parent that is itself out of sight are rare, and skipping such a
    // parent's subtree is what keeps off-screen rows free. Zero-size containers exist only to
    // hold overflowing subviews, so they are always entered.
    if (!empty && !frame.intersects(visible)) return;
    if (empty && view.clipsToBounds()) return;

    painter_.save();
    painter_.translate(frame.topLeft());
    painter_.setOpacity(alpha);
    PaintContext context = context_;
    context.bounds = QRectF(0, 0, frame.width(), frame.height());
    QRectF inside = visible.translated(-frame.topLeft());
    const double radius = std::isfinite(view.cornerRadius()) ? std::max(0.0, view.cornerRadius()) : 0;

    if (!empty) {
        ++drawn_;
        if (const auto& background = view.backgroundColor(); background && background->alpha > 0) {
            if (radius > 0)
                painter_.fillPath(roundedPath(context.bounds, radius), toQColor(*background));
            else
                painter_.fillRect(context.bounds, toQColor(*background));
        }
    }
    if (view.clipsToBounds()) {
        if (radius > 0)
            painter_.setClipPath(roundedPath(context.bounds, radius), Qt::IntersectClip);
        else
            painter_.setClipRect(context.bounds, Qt::IntersectClip);
        inside &= context.bounds;
    }
    if (!empty) detail::drawContent(view, painter_, context);

    const uikit::Point origin = view.boundsOrigin();
    if (!view.subviews().empty() && std::isfinite(origin.x) && std::isfinite(origin.y)) {
        painter_.save();
        painter_.translate(-origin.x, -origin.y);
        const QRectF childVisible = inside.translated(origin.x, origin.y);
        for (const auto& child : view.subviews()) {
            const uikit::Rect childFrame = child->presentationFrame(context_.now);
            if (isFinite(childFrame)) paintView(*child, toQRectF(childFrame), childVisible, alpha);
        }
        painter_.restore();
    }

    const double border = view.borderWidth();
    if (!empty && border > 0 && std::isfinite(border)) {
        const QColor color = toQColor(view.borderColor().value_or(platform::Color::black()));
        painter_.setOpacity(alpha);
        painter_.setPen(QPen(color, border));
        painter_.setBrush(Qt::NoBrush);
        const QRectF line = context.bounds.adjusted(border / 2, border / 2, -border / 2, -border / 2);
        if (radius > 0)
            painter_.drawPath(roundedPath(line, std::max(0.0, radius - border / 2)));
        else
            painter_.drawRect(line);
    }
    painter_.restore();
}

} // namespace renderer
