#include "renderer/html_page.hpp"

#include "renderer/conversions.hpp"
#include "renderer/html_direction.hpp"

#include <QAbstractTextDocumentLayout>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace renderer {

namespace {
// Pages wider than this are laid out at it; Qt's layout keeps positions in fixed point.
constexpr double widestPage = 1e5;
} // namespace

double HtmlPage::layoutWidth(double width) { return std::isfinite(width) ? std::clamp(width, 1.0, widestPage) : widestPage; }

HtmlPage::HtmlPage(const std::string& html, double width) : html_(html), width_(layoutWidth(width)) {
    // A browser's default: a 16-point sans serif face.
    document_.setDefaultFont(toQFont(platform::Font::systemFont(16)));
    document_.setDocumentMargin(margin);
    const std::string resolved = resolveAutoDirection(html_);
    document_.setHtml(QString::fromUtf8(resolved.data(), static_cast<qsizetype>(resolved.size())));
    document_.setTextWidth(width_);
}

QSizeF HtmlPage::size() const { return {width_, std::ceil(document_.size().height())}; }

void HtmlPage::draw(QPainter& painter, const QRectF& area) const {
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = area;
    context.palette.setColor(QPalette::Text, Qt::black);
    context.palette.setColor(QPalette::Link, QColor(0, 122, 255));
    document_.documentLayout()->draw(&painter, context);
}

std::string HtmlPage::linkAt(QPointF point) const {
    return document_.documentLayout()->anchorAt(point).toStdString();
}

} // namespace renderer
