#include "renderer/html_page.hpp"
#include "renderer/input.hpp"
#include "renderer/offscreen.hpp"
#include "renderer/qt_html_measurer.hpp"
#include "scene.hpp"

#include <gtest/gtest.h>

namespace {

using namespace renderer_test;
using uikit::NavigationType;

class WebPages : public QtMeasuredTest {
protected:
    WebPages() : previousHTML_(renderer::installQtHTMLMeasurer()) {}
    ~WebPages() override { uikit::setHTMLMeasurer(previousHTML_); }
    // A point of the web view's page, in the window, the page scrolled as it is.
    static uikit::Point onPage(const uikit::WebView& web, double x, double y) {
        const uikit::Point offset = web.scrollView()->contentOffset();
        return web.convert(uikit::Point{x - offset.x, y - offset.y}, nullptr);
    }

    std::shared_ptr<const uikit::HTMLMeasurer> previousHTML_;
};

constexpr double firstLine = renderer::HtmlPage::margin + 40;  // under the heading

TEST_F(WebPages, TheLaidOutHeightGoesBackToTheKitAndThePageIsDrawnScrolled) {
    const auto scene = makeListScene();
    EXPECT_EQ(scene->web->scrollView()->contentSize().height, 0) << "nothing before the page loads";
    time_.advance(platform::Duration(0));
    const double height = renderer::HtmlPage(sampleArticle, 375).size().height();
    EXPECT_GT(height, 80);
    EXPECT_EQ(scene->web->scrollView()->contentSize().height, height);
    EXPECT_EQ(scene->web->sizeThatFits({375, 0}).height, height);
    EXPECT_GT(scene->web->sizeThatFits({200, 0}).height, height) << "narrower, taller";

    // The page is drawn scrolled: what was 30 points down is now at the top.
    auto& web = *scene->web;
    const QImage top = renderer::renderToImage(web, 1);
    web.scrollView()->setContentOffset({0, 30});
    const QImage scrolled = renderer::renderToImage(web, 1);
    EXPECT_NE(top, scrolled);
    EXPECT_EQ(top.copy(0, 30, 375, 100), scrolled.copy(0, 0, 375, 100));
}

TEST_F(WebPages, TappedLinksGoToTheNavigationDelegate) {
    const auto scene = makeListScene();
    time_.advance(platform::Duration(0));
    scene->window->layoutTree();
    auto& web = *scene->web;
    ASSERT_EQ(scene->navigation->asked.size(), 1u) << "the load itself";
    EXPECT_EQ(scene->navigation->asked[0].first, NavigationType::other);

    // The first link opens the paragraph; the relative one ends it.
    const renderer::HtmlPage page(sampleArticle, 375);
    double relativeX = -1, relativeY = -1;
    for (double y = page.size().height() - 10; y > firstLine && relativeY < 0; y -= 2)
        for (double x = 360; x > 8 && relativeY < 0; x -= 4)
            if (page.linkAt({x, y}) == "/hc/articles/2") {
                relativeX = x;
                relativeY = y;
            }
    ASSERT_GT(relativeY, 0) << "the relative link is not on the page";

    EXPECT_TRUE(renderer::clickAt(*scene->window, onPage(web, 20, firstLine)));
    EXPECT_TRUE(renderer::clickAt(*scene->window, onPage(web, relativeX, relativeY)));
    EXPECT_FALSE(renderer::clickAt(*scene->window, onPage(web, 360, 8))) << "a click off the links asks nothing";
    const std::vector<std::pair<NavigationType, std::string>> expected{
        {NavigationType::other, "https://help.example.com/hc/articles/1"},
        {NavigationType::linkActivated, "https://help.example.com/reset"},
        {NavigationType::linkActivated, "https://help.example.com/hc/articles/2"}};
    EXPECT_EQ(scene->navigation->asked, expected);

    // Scrolled, the page moves under the same point of the window.
    std::string tall = "<p>top</p>";
    for (int i = 0; i < 40; ++i) tall += "<p>filler paragraph " + std::to_string(i) + "</p>";
    tall += "<p><a href=\"https://help.example.com/bottom\">Bottom link</a></p>";
    web.loadHTMLString(tall, std::nullopt);
    time_.advance(platform::Duration(0));
    scene->window->layoutTree();
    const auto centre = web.convert(uikit::Point{187, 120}, nullptr);
    EXPECT_TRUE(renderer::scrollAt(*scene->window, centre, 0, 1e6));
    const double bottom = web.scrollView()->contentSize().height - renderer::HtmlPage::margin - 10;
    EXPECT_TRUE(renderer::clickAt(*scene->window, onPage(web, 20, bottom)));
    EXPECT_EQ(scene->navigation->asked.back().second, "https://help.example.com/bottom");
}

} // namespace
