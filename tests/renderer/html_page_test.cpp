#include "renderer/html_direction.hpp"
#include "renderer/html_page.hpp"

#include <QImage>
#include <QPainter>

#include <array>
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

TEST(HtmlDirection, AutoTakesTheFirstLetterWithADirectionOutsideStylesAndOwnDirections) {
    using renderer::resolveAutoDirection;
    // The page's title decides for the page; the date, set apart, decides for itself.
    EXPECT_EQ(resolveAutoDirection("<html dir=auto><head><style>p{}</style></head><body><h1>\u05E9\u05DC\u05D5\u05DD</h1>"
                                   "<p><span dir=auto>19 July</span></p></body></html>"),
              "<html dir=rtl><head><style>p{}</style></head><body><h1>\u05E9\u05DC\u05D5\u05DD</h1>"
              "<p><span dir=ltr>19 July</span></p></body></html>");
    EXPECT_EQ(resolveAutoDirection("<html dir=\"AUTO\"><h1>Hello \u05E9</h1>"), "<html dir=\"ltr\"><h1>Hello \u05E9</h1>");
    // Digits, punctuation and markup decide nothing; style sheets, scripts and children with a
    // direction of their own are skipped.
    EXPECT_EQ(resolveAutoDirection("<div dir='auto'>12, (<b>3</b>) \u0627</div>"), "<div dir='rtl'>12, (<b>3</b>) \u0627</div>");
    EXPECT_EQ(resolveAutoDirection("<div dir=auto><style>a{content:'\u05D0'}</style><p dir=rtl>\u05D0</p>abc</div>"),
              "<div dir=ltr><style>a{content:'\u05D0'}</style><p dir=rtl>\u05D0</p>abc</div>");
    EXPECT_EQ(resolveAutoDirection("<p dir=auto><!-- \u05D0 --><script>x='<p>'</script>&nbsp;&#1488;</p>"),
              "<p dir=rtl><!-- \u05D0 --><script>x='<p>'</script>&nbsp;&#1488;</p>");
    EXPECT_EQ(resolveAutoDirection("<p dir=auto>&#x5d0;</p>"), "<p dir=rtl>&#x5d0;</p>");
    // The element ends at its own end tag, also with others of its kind inside.
    EXPECT_EQ(resolveAutoDirection("<div dir=auto><div>1</div></div>\u05D0"), "<div dir=ltr><div>1</div></div>\u05D0");
    EXPECT_EQ(resolveAutoDirection("<p dir=auto>   </p>"), "<p dir=ltr>   </p>");
    // Other markup, and broken markup, stays as written.
    for (const std::string kept : {"<p dir=rtl>a</p>", "a < b <", "<p dir=", "<p dir=\"auto", "<", "<!--", "<p title='dir=auto'>x</p>", ""})
        EXPECT_EQ(resolveAutoDirection(kept), kept);
    EXPECT_EQ(resolveAutoDirection("<p dir=auto>\u05D0"), "<p dir=rtl>\u05D0");

    // Each element may read to the page's end: past a budget of reading, elements stay as written.
    std::string nested;
    for (int i = 0; i < 50000; ++i) nested += "<p dir=auto><b>1</b>";
    nested += "\u05D0";
    EXPECT_EQ(resolveAutoDirection(nested), nested);
}

// Where a page's ink lies across its width, in quarters.
std::array<bool, 4> inkedQuarters(const renderer::HtmlPage& page) {
    QImage image(static_cast<int>(page.size().width()), static_cast<int>(page.size().height()), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    page.draw(painter, QRectF(QPointF(), page.size()));
    painter.end();
    std::array<bool, 4> inked{};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).red() < 128) inked[static_cast<std::size_t>(4 * x / image.width())] = true;
    return inked;
}

TEST(HtmlPage, APageOfRightToLeftTextStartsAtTheRight) {
    const auto right = inkedQuarters(renderer::HtmlPage("<html dir=auto><body><h1>\u05E9\u05DC\u05D5\u05DD</h1></body></html>", 400));
    EXPECT_TRUE(right[3]);
    EXPECT_FALSE(right[0]);
    const auto left = inkedQuarters(renderer::HtmlPage("<html dir=auto><body><h1>Hello</h1></body></html>", 400));
    EXPECT_TRUE(left[0]);
    EXPECT_FALSE(left[3]);
}

} // namespace
