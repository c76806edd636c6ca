#include "test_support.hpp"
#include "uikit/html_measurer.hpp"
#include "uikit/web_view.hpp"

#include <gtest/gtest.h>

using namespace uikit;

namespace {

// Decides as the article page does: the page itself loads, mail links are handled elsewhere.
class Navigator : public WebViewNavigationDelegate {
public:
    std::vector<std::string> asked;
    int finished = 0;
    std::vector<std::string> failures;
    bool holdDecisions = false;
    std::function<void(NavigationActionPolicy)> held;

    void decidePolicyForNavigationAction(WebView&, const NavigationAction& action,
                                         std::function<void(NavigationActionPolicy)> decide) override {
        asked.push_back(std::string(action.navigationType == NavigationType::linkActivated ? "link " : "other ") +
                        action.url.absoluteString());
        if (holdDecisions) {
            held = std::move(decide);
            return;
        }
        const bool mail = action.url.absoluteString().starts_with("mailto:");
        decide(action.navigationType == NavigationType::linkActivated && mail ? NavigationActionPolicy::cancel
                                                                               : NavigationActionPolicy::allow);
    }
    void didFinishNavigation(WebView&) override { ++finished; }
    void didFailNavigation(WebView&, const std::string& error) override { failures.push_back(error); }
};

class WebViewTest : public ::testing::Test {
protected:
    void SetUp() override { web->setNavigationDelegate(navigator); }
    testing_support::VirtualTime time;
    std::shared_ptr<WebView> web = make<WebView>(Rect{0, 0, 96, 50});
    std::shared_ptr<Navigator> navigator = std::make_shared<Navigator>();
};

TEST_F(WebViewTest, ALoadFinishesOnTheMainQueueWithTheContentMeasured) {
    int sizeChanges = 0;
    web->scrollView()->contentSizeDidChange = [&] { ++sizeChanges; };
    web->loadHTMLString("<html><head><title>T</title></head><body><p>hello world again</p></body></html>",
                        platform::URL::parse("https://help.example.com/hc/en-us"));
    EXPECT_TRUE(web->isLoading());
    EXPECT_EQ(navigator->finished, 0);
    time.advance(platform::Duration(0));
    EXPECT_EQ(navigator->asked, (std::vector<std::string>{"other https://help.example.com/hc/en-us"}));
    EXPECT_EQ(navigator->finished, 1);
    EXPECT_FALSE(web->isLoading());
    // 96 points hold 10 glyphs of 8 between the margins: three lines of 20.
    EXPECT_EQ(web->scrollView()->contentSize(), (Size{96, 76}));
    EXPECT_EQ(sizeChanges, 1);
    web->sizeToFit();
    EXPECT_EQ(web->frame().height(), 76);

    // A wider view lays the page out again.
    web->setFrame({0, 0, 216, 76});
    web->layoutIfNeeded();
    EXPECT_EQ(web->scrollView()->contentSize(), (Size{216, 36}));
    EXPECT_EQ(web->scrollView()->frame(), (Rect{0, 0, 216, 76}));
}

TEST_F(WebViewTest, OnlyTheLastLoadFinishesAndADecisionMayComeLater) {
    navigator->holdDecisions = true;
    web->loadHTMLString("<p>first</p>", std::nullopt);
    web->loadHTMLString("<p>second</p>", std::nullopt);
    time.advance(platform::Duration(0));
    ASSERT_EQ(navigator->asked, (std::vector<std::string>{"other about:blank"}));
    EXPECT_TRUE(web->isLoading());
    navigator->held(NavigationActionPolicy::allow);
    navigator->held(NavigationActionPolicy::allow);  // a second answer changes nothing
    EXPECT_EQ(navigator->finished, 1);
    EXPECT_EQ(web->html(), "<p>second</p>");

    web->loadHTMLString("<p>third</p>", std::nullopt);
    time.advance(platform::Duration(0));
    navigator->held(NavigationActionPolicy::cancel);
    EXPECT_EQ(navigator->finished, 1);
    EXPECT_EQ(navigator->failures.size(), 1u);
    EXPECT_FALSE(web->isLoading());
}

TEST_F(WebViewTest, TappedLinksGoThroughTheDelegate) {
    EXPECT_EQ(web->activateLink("mailto:help@example.com"), NavigationActionPolicy::cancel);
    EXPECT_EQ(web->activateLink("https://example.com/hc/articles/12-title"), NavigationActionPolicy::allow);
    EXPECT_EQ(web->followedLinks(), (std::vector<std::string>{"https://example.com/hc/articles/12-title"}));
    testing_support::CapturedLog log;
    EXPECT_EQ(web->activateLink("not a url"), std::nullopt);
    EXPECT_EQ(navigator->asked.size(), 2u);
    EXPECT_EQ(log.messages(platform::LogLevel::warn).size(), 1u);
    // Without a delegate a link is followed.
    web->setNavigationDelegate(nullptr);
    EXPECT_EQ(web->activateLink("https://example.com/x"), NavigationActionPolicy::allow);
}

TEST(HTMLMeasurerTest, ReadsThePageTextAndWrapsIt) {
    EXPECT_EQ(visibleTextOfHTML("<head><style>p{}</style></head><h1>Title</h1><!-- note --><p>A &amp; B&nbsp;&#233;&#x41;</p>"
                                "<script>var x = '<p>';</script>x  <br>  y <b>bold</b> < z"),
              "Title\nA & B \xC3\xA9" "A\nx\ny bold < z");
    const TextEstimateHTMLMeasurer estimate;
    EXPECT_EQ(estimate.measure("", 100), (Size{100, 0}));
    EXPECT_EQ(estimate.measure("<p>x</p>", 0), (Size{0, 0}));
    // A word longer than a line breaks across lines: 25 glyphs at 10 a line.
    EXPECT_EQ(estimate.measure("<p>" + std::string(25, 'w') + "</p><p>ab</p>", 96).height, 4 * 20 + 16);

    struct Fixed : HTMLMeasurer {
        Size measure(const std::string&, double width) const override { return {width, 1234}; }
    };
    const auto previous = setHTMLMeasurer(std::make_shared<Fixed>());
    testing_support::VirtualTime time;
    auto web = make<WebView>(Rect{0, 0, 300, 100});
    web->loadHTMLString("<p>x</p>", std::nullopt);
    time.advance(platform::Duration(0));
    EXPECT_EQ(web->scrollView()->contentSize().height, 1234);
    setHTMLMeasurer(previous);
}

} // namespace
