#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTextDocument>

#include <string>

class QPainter;

namespace renderer {

// A page of HTML laid out with Qt's rich-text document at a width: what a web view shows, how
// tall it is, and which link lies under a point. Page coordinates start at its top-left.
class HtmlPage {
public:
    // The margin a browser gives a page's body.
    static constexpr double margin = 8;

    HtmlPage(const std::string& html, double width);
    // The width a page asked for is laid out at: at least a point, at most a hundred thousand.
    static double layoutWidth(double width);
    HtmlPage(const HtmlPage&) = delete;
    HtmlPage& operator=(const HtmlPage&) = delete;

    const std::string& html() const { return html_; }
    double width() const { return width_; }
    // As wide as laid out, as tall as the content with its margins.
    QSizeF size() const;
    // Draws the part of the page within `area` (page coordinates) at the painter's origin.
    void draw(QPainter& painter, const QRectF& area) const;
    // The target of the link under the point, as written in the page; empty when none.
    std::string linkAt(QPointF point) const;

private:
    std::string html_;
    double width_;
    QTextDocument document_;
};

} // namespace renderer
