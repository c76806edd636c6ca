#include "uikit/web_view.hpp"

#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "uikit/html_measurer.hpp"

#include <cmath>

namespace uikit {

WebView::WebView(Rect frame) : View(frame), scrollView_(make<ScrollView>(Rect({}, frame.size))) {
    setBackgroundColor(platform::Color::white());
    scrollView_->setAutoresizingMask(Autoresizing::flexibleWidth | Autoresizing::flexibleHeight);
    addSubview(scrollView_);
}

void WebView::loadHTMLString(std::string html, std::optional<platform::URL> baseURL) {
    html_ = std::move(html);
    baseURL_ = std::move(baseURL);
    loading_ = true;
    loaded_ = false;
    const unsigned load = ++load_;
    // The page loads after this call returns, as the platform's does.
    platform::MainQueue::shared().asyncAfter(platform::Duration(0), [weak = weak_from_this(), load] {
        const auto self = std::static_pointer_cast<WebView>(weak.lock());
        if (!self || self->load_ != load) return;
        auto url = self->baseURL_ ? self->baseURL_ : platform::URL::parse("about:blank");
        auto decide = [weak, load](NavigationActionPolicy policy) {
            if (const auto view = std::static_pointer_cast<WebView>(weak.lock())) view->finishLoad(load, policy);
        };
        if (const auto delegate = self->navigationDelegate(); delegate && url)
            delegate->decidePolicyForNavigationAction(*self, {*url, NavigationType::other}, decide);
        else
            decide(NavigationActionPolicy::allow);
    });
}

void WebView::finishLoad(unsigned load, NavigationActionPolicy policy) {
    if (load != load_ || !loading_) return;  // a later load replaced it, or it was answered already
    loading_ = false;
    const auto delegate = navigationDelegate();
    if (policy != NavigationActionPolicy::allow) {
        if (delegate) delegate->didFailNavigation(*this, "The page was not allowed to load");
        return;
    }
    loaded_ = true;
    measure();
    if (delegate) delegate->didFinishNavigation(*this);
}

void WebView::measure() {
    measuredWidth_ = frame().width();
    scrollView_->setContentSize(htmlMeasurer().measure(html_, measuredWidth_));
    invalidateIntrinsicContentSize();
}

std::optional<NavigationActionPolicy> WebView::activateLink(std::string_view url) {
    const auto parsed = platform::URL::parse(url);
    if (!parsed) {
        platform::log::write(platform::LogLevel::warn, "WKWebView: ignored a link that is no URL: " + std::string(url));
        return std::nullopt;
    }
    auto answer = std::make_shared<std::optional<NavigationActionPolicy>>();
    auto decide = [weak = weak_from_this(), answer, link = parsed->absoluteString()](NavigationActionPolicy policy) {
        if (*answer) return;
        *answer = policy;
        if (policy != NavigationActionPolicy::allow) return;
        if (const auto view = std::static_pointer_cast<WebView>(weak.lock())) view->followed_.push_back(link);
    };
    if (const auto delegate = navigationDelegate())
        delegate->decidePolicyForNavigationAction(*this, {*parsed, NavigationType::linkActivated}, decide);
    else
        decide(NavigationActionPolicy::allow);
    return *answer;
}

Size WebView::sizeThatFits(Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    if (!loaded_) return {width, 0};
    if (width == measuredWidth_) return {width, scrollView_->contentSize().height};
    return {width, std::ceil(htmlMeasurer().measure(html_, width).height)};
}

void WebView::layoutSubviews() {
    View::layoutSubviews();
    scrollView_->setFrame({0, 0, frame().width(), frame().height()});
    if (loaded_ && frame().width() != measuredWidth_) measure();
}

} // namespace uikit
