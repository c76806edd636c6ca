#include "drawing.hpp"

#include "renderer/conversions.hpp"
#include "uikit/search_bar.hpp"
#include "uikit/table_view_cell.hpp"
#include "uikit/text_input.hpp"

#include <algorithm>

namespace renderer::detail {

// A selected or touched row turns grey under its content, unless it asked not to.
void drawTableViewCell(const uikit::TableViewCell& cell, QPainter& painter, const PaintContext& context) {
    if (cell.selectionStyle == uikit::TableViewCellSelectionStyle::none) return;
    if (cell.isSelected() || cell.isHighlighted()) painter.fillRect(context.bounds, QColor(217, 217, 220));
}

// The bar's tint, when given, colours it instead of its background.
void drawSearchBar(const uikit::SearchBar& bar, QPainter& painter, const PaintContext& context) {
    if (bar.barTintColor) painter.fillRect(context.bounds, toQColor(*bar.barTintColor));
}

void drawSearchGlyph(const uikit::TextInput& field, QPainter& painter, const PaintContext& context) {
    const double room = field.textInsets.left;
    const double size = std::min({room - 10, context.bounds.height() - 8, 14.0});
    if (size < 6) return;
    const QPointF centre(room / 2, context.bounds.center().y());
    const double radius = size * 0.33;
    const QPointF lens = centre - QPointF(size * 0.12, size * 0.12);
    painter.save();
    painter.setPen(QPen(QColor(142, 142, 147), std::max(1.2, size / 9), Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(lens, radius, radius);
    const QPointF handle = lens + QPointF(radius, radius) * 0.72;
    painter.drawLine(handle, handle + QPointF(size * 0.28, size * 0.28));
    painter.restore();
}

} // namespace renderer::detail
