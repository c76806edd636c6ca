#pragma once

#include "uikit/animation.hpp"
#include "uikit/view.hpp"

#include <QRectF>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

class QPainter;

namespace renderer {

struct PaintContext {
    // Seconds on the main queue's scheduler: what animations and spinners are drawn at.
    double now = 0;
    // The view's own rectangle as drawn now (its size in motion), at the painter's origin.
    QRectF bounds;
};

// Draws what one kind of view shows inside `context.bounds`: over its background, under its
// subviews, with its opacity and clip already set.
using ContentDrawer = std::function<void(const uikit::View& view, QPainter& painter, const PaintContext& context)>;

// Kinds the renderer does not know are drawn by drawers registered under their class name; one
// registered under a known kind's name replaces the built-in drawing. Main thread only.
void registerContentDrawer(std::string className, ContentDrawer drawer);
void unregisterContentDrawer(std::string_view className);

// Paints view trees with QPainter, as the screen shows them at one moment: frames and alpha in
// motion, hidden views left out, scroll offsets and clipping applied. Views wholly outside what
// can be seen are skipped with their subtrees, so what is off screen costs nothing to draw.
class ViewPainter {
public:
    explicit ViewPainter(QPainter& painter, double now = uikit::Animation::now());

    // Draws the tree with the root's top-left at the painter's origin; the root's own position
    // is not applied.
    void paint(const uikit::View& root);
    // How many views drew themselves in the last paint.
    std::size_t drawnViews() const { return drawn_; }

private:
    void paintView(const uikit::View& view, const QRectF& frame, const QRectF& visible, double opacity);

    QPainter& painter_;
    PaintContext context_;
    std::size_t drawn_ = 0;
};

} // namespace renderer
