#include "renderer/html_page.hpp"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

const std::string article =
    "<h1>Resetting a password</h1>"
    "<p>Open <a href=\"https://help.example.com/reset\">the reset page</a> and follow the steps it gives you, "
    "one after another, until the new password is saved.</p>"
    "<ul><li>First step</li><li>Second step</li></ul>";

TEST(HtmlPage, DrawsItsTextAndFindsItsLinks) {
    const renderer::HtmlPage page("<p><a href=\"https://help.example.com/a\">A link</a> and plain words</p>"
                                  "<p>More <a href='/relative'>here</a></p>",
                                  300);
    QImage image(300, static_cast<int>(page.size().height()), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    page.draw(painter, QRectF(QPointF(), page.size()));
    painter.end();
    int inked = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) inked += image.pixelColor(x, y) != QColor(Qt::white);
    EXPECT_GT(inked, 100);

    const double firstLine = renderer::HtmlPage::margin + 8;
    EXPECT_EQ(page.linkAt({renderer::HtmlPage::margin + 10, firstLine}), "https://help.example.com/a");
    EXPECT_EQ(page.linkAt({250, firstLine}), "") << "plain words are no link";
    EXPECT_EQ(page.linkAt({renderer::HtmlPage::margin + 10, page.size().height() - 4}), "")
        << "below the text";
}

TEST(HtmlPage, BrokenPagesAndWidthsStillLayOut) {
    const renderer::HtmlPage broken("<p><b>never closed <a href=>x<table><tr><td>", std::nan(""));
    EXPECT_GT(broken.size().height(), 0);
    const renderer::HtmlPage negative(article, -50);
    EXPECT_GE(negative.size().width(), 1);
    EXPECT_GT(negative.size().height(), renderer::HtmlPage(article, 300).size().height());
}

} // namespace
