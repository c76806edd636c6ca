#pragma once

#include "platform/color.hpp"
#include "platform/font.hpp"
#include "platform/image.hpp"
#include "uikit/geometry.hpp"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRectF>

namespace renderer {

// The kit's point is one logical pixel of Qt.
inline QRectF toQRectF(const uikit::Rect& rect) { return {rect.minX(), rect.minY(), rect.width(), rect.height()}; }
inline QPointF toQPointF(const uikit::Point& point) { return {point.x, point.y}; }

QColor toQColor(const platform::Color& color);

// The face Qt draws for a kit font: the system family and Helvetica are DejaVu Sans, monospaced
// faces DejaVu Sans Mono, with the font's bold, italic and width traits and its size in pixels.
QFont toQFont(const platform::Font& font);
// What styled text runs without a font are measured and drawn in: the system font at 17.
QFont defaultTextFont();

// The image upright, as 32-bit premultiplied pixels; null when its pixels are missing. Converted
// images are kept while their source lives, so a frame does not convert them again.
QImage toQImage(const platform::ImagePtr& image);
// The image's coverage filled with one colour, as template images are drawn.
QImage templateImage(const platform::ImagePtr& image, const QColor& tint);

} // namespace renderer
