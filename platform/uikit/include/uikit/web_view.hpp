#pragma once

#include "platform/url.hpp"
#include "uikit/scroll_view.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace uikit {

class WebView;

// As the platform numbers them.
enum class NavigationType { linkActivated = 0, formSubmitted = 1, backForward = 2, reload = 3, formResubmitted = 4, other = -1 };
enum class NavigationActionPolicy { cancel = 0, allow = 1 };

struct NavigationAction {
    platform::URL url;
    NavigationType navigationType = NavigationType::other;
};

// Decides where a page may go and hears when it has loaded. The decision may come later than
// the call; a handler answers once.
class WebViewNavigationDelegate {
public:
    virtual ~WebViewNavigationDelegate() = default;
    virtual void decidePolicyForNavigationAction(WebView&, const NavigationAction&,
                                                 std::function<void(NavigationActionPolicy)> decisionHandler) {
        decisionHandler(NavigationActionPolicy::allow);
    }
    virtual void didFinishNavigation(WebView&) {}
    virtual void didFailNavigation(WebView&, const std::string&) {}
};

// A page of HTML. Loading asks the delegate whether the page may load and, on the main queue
// after the call, measures the page into its scroll view's content size and reports the finish.
// A tapped link goes to the delegate; the renderer draws the page and sends its taps here.
class WebView : public View {
public:
    explicit WebView(Rect frame = {});
    std::string_view className() const override { return "WKWebView"; }

    void loadHTMLString(std::string html, std::optional<platform::URL> baseURL);
    const std::string& html() const { return html_; }
    const std::optional<platform::URL>& baseURL() const { return baseURL_; }
    bool isLoading() const { return loading_; }

    // Held weakly.
    void setNavigationDelegate(const std::shared_ptr<WebViewNavigationDelegate>& delegate) { delegate_ = delegate; }
    std::shared_ptr<WebViewNavigationDelegate> navigationDelegate() const { return delegate_.lock(); }

    // The page scrolls in this view; its content size is the page's size.
    const std::shared_ptr<ScrollView>& scrollView() const { return scrollView_; }
    unsigned dataDetectorTypes = 0;

    // What a tap on a link of the page does: the delegate decides. The answer, if it came before
    // returning; none for a URL that does not parse or a decision still to come.
    std::optional<NavigationActionPolicy> activateLink(std::string_view url);
    // The links the delegate let the page follow, in order.
    const std::vector<std::string>& followedLinks() const { return followed_; }

    // As wide as asked, as tall as the page.
    Size sizeThatFits(Size size) const override;
    void layoutSubviews() override;

private:
    void finishLoad(unsigned load, NavigationActionPolicy policy);
    void measure();
    std::string html_;
    std::optional<platform::URL> baseURL_;
    std::weak_ptr<WebViewNavigationDelegate> delegate_;
    std::shared_ptr<ScrollView> scrollView_;
    std::vector<std::string> followed_;
    bool loading_ = false;
    bool loaded_ = false;
    unsigned load_ = 0;
    double measuredWidth_ = -1;
};

} // namespace uikit
