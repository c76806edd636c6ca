#include "belvakit/helpcenter/article_view.hpp"

#include "belvakit/helpcenter/article_attachments.hpp"
#include "belvakit/helpcenter/help_center_data_source.hpp"
#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "corvane/bundle_utils.hpp"
#include "corvane/corvane.hpp"
#include "corvane/date_util.hpp"
#include "corvane/reachability.hpp"
#include "dastrel/help_center_provider.hpp"
#include "uikit/application.hpp"
#include "uikit/window.hpp"

#include <climits>
#include <cmath>
#include <functional>
#include <type_traits>

namespace belvakit {

namespace {

constexpr const char* viewClass = "CRVArticleView";

std::string corvaneUrl() {
    const auto core = corvane::Corvane::instance();
    return core ? core->corvaneUrl() : std::string();
}

// What a link under the account's URL names: the last path part of /hc/<locale>/articles/<x> or
// /hc/articles/<x>.
std::optional<std::string> articlePathPart(const std::vector<std::string>& parts) {
    if (parts.size() == 5 && parts[0] == "/" && parts[1] == "hc" && parts[2].size() >= 2 && parts[3] == "articles")
        return parts[4];
    if (parts.size() == 4 && parts[0] == "/" && parts[1] == "hc" && parts[2] == "articles") return parts[3];
    return std::nullopt;
}

template <class Member>
auto weakly(CRVArticleView& view, Member member) {
    return [weak = std::weak_ptr<uikit::View>(view.weak_from_this()), member](const platform::Notification& notification) {
        if (auto self = std::static_pointer_cast<CRVArticleView>(weak.lock())) {
            if constexpr (std::is_invocable_v<Member, CRVArticleView&, const platform::Notification&>)
                std::invoke(member, *self, notification);
            else
                std::invoke(member, *self);
        }
    };
}

} // namespace

std::string articlePageHTML(const std::string& css, const dastrel::CRVHelpCenterArticle& article) {
    // Filled as given: the title, author and date reach the page byte for byte.
    const std::string values[] = {css, article.title, article.body, article.author_name,
                                  corvane::CRVDateUtil::stringFromDate(article.created_at, CRVArticleDateFormat)};
    // One pass over the template, so a value holding "%@" is never filled in itself.
    std::string page;
    std::size_t next = 0;
    std::size_t from = 0;
    for (auto at = CRVArticlePageTemplate.find("%@"); at != std::string_view::npos;
         at = CRVArticlePageTemplate.find("%@", from)) {
        page.append(CRVArticlePageTemplate.substr(from, at - from));
        page.append(values[next++]);
        from = at + 2;
    }
    page.append(CRVArticlePageTemplate.substr(from));
    return page;
}

CRVArticleView::CRVArticleView() {
    setBackgroundColor(CRVAppearanceApplicator::primaryBackgroundColor());
}

CRVArticleView::~CRVArticleView() {
    if (articleWebView) articleWebView->scrollView()->contentSizeDidChange = nullptr;
    observers_.clear();
    articleLoadSpinner = nullptr;
}

std::shared_ptr<CRVArticleView> CRVArticleView::loadingArticle() {
    auto view = uikit::make<CRVArticleView>();
    view->initWithLoadingState();
    return view;
}

std::shared_ptr<CRVArticleView> CRVArticleView::initWithArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                const std::optional<dastrel::CRVHelpCenterSettings>& settings) {
    auto view = uikit::make<CRVArticleView>();
    view->renderArticle(article, settings);
    return view;
}

void CRVArticleView::initWithLoadingState() {
    loadingView = uikit::make<uikit::View>(bounds());
    loadingView->setBackgroundColor(CRVAppearanceApplicator::primaryBackgroundColor());
    loadingSpinnerView = uikit::make<uikit::ActivityIndicatorView>(CRVAppearanceApplicator::isDarkTheme() ? 1 : 2);
    loadingSpinnerView->setAccessibilityIdentifier("CRVloadingSpinner");
    loadingSpinnerView->startAnimating();
    addSubview(loadingView);
    addSubview(loadingSpinnerView);
}

std::string CRVArticleView::getCSS() {
    auto css = corvane::CRVBundleUtils::userDefinedHelpCenterCss();
    if (css && !css->empty()) return *css;
    return corvane::CRVBundleUtils::helpCenterCss();
}

std::optional<platform::URL> CRVArticleView::baseURL() const { return platform::URL::parse(corvaneUrl()); }

void CRVArticleView::renderArticle(const dastrel::CRVHelpCenterArticle& shown,
                                   const std::optional<dastrel::CRVHelpCenterSettings>& settings) {
    articleId = std::to_string(shown.identifier);
    articleLocale = shown.locale;
    webViewLoading = true;
    attachmentsLoading = true;

    buildViews();
    html = articlePageHTML(getCSS(), shown);
    articleWebView->loadHTMLString(html, baseURL());

    setUpSpinners();
    registerNotifications();
    playingVideo = false;
    // Until reachability changes, taps go by the network as it is now.
    blockTouches = corvane::NetworkMonitor::shared().status() == corvane::NotReachable;

    const int orientation = getCurrentOrientation();
    lastLayoutOrientation = orientation == 0 ? 1 : orientation;

    articleVotingEnabled = settings && settings->helpCenterArticleVotingEnabled;
    if (articleVotingEnabled) setUpArticleVotingViewWithSettings(settings);

    articleWebView->scrollView()->contentSizeDidChange = [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->setNeedsLayout();
    };
    updateLoadingState();
}

void CRVArticleView::buildViews() {
    // A second rendering starts from fresh views.
    for (const auto& old : std::initializer_list<std::shared_ptr<uikit::View>>{article, ratingView})
        if (old) old->removeFromSuperview();
    ratingView = nullptr;
    handler = nullptr;

    article = uikit::make<uikit::ScrollView>(bounds());
    article->setAccessibilityIdentifier("CRVarticleViewScrollView");
    // Under the loading view, which goes once the page has loaded.
    insertSubview(article, 0);

    articleBackground = uikit::make<uikit::View>();
    articleBackground->setBackgroundColor(CRVUIUtil::appearanceValue<platform::Color>(viewClass, "articleBackground")
                                              .value_or(CRVAppearanceApplicator::primaryBackgroundColor()));
    article->addSubview(articleBackground);

    articleWebView = uikit::make<uikit::WebView>(bounds());
    articleWebView->dataDetectorTypes = UINT_MAX;
    articleWebView->setNavigationDelegate(std::static_pointer_cast<CRVArticleView>(shared_from_this()));
    articleWebView->scrollView()->scrollEnabled = false;
    articleWebView->setBackgroundColor(backgroundColor());
    articleBackground->addSubview(articleWebView);

    separator = uikit::make<uikit::View>();
    separator->setBackgroundColor(CRVUIUtil::appearanceValue<platform::Color>(viewClass, "separator")
                                      .value_or(CRVAppearanceApplicator::separatorColor()));
    articleBackground->addSubview(separator);

    attachments = uikit::make<uikit::TableView>();
    attachments->setAccessibilityIdentifier("CRVattachments");
    attachments->scrollEnabled = false;
    attachments->rowHeight = uikit::TableViewCell::defaultHeight;
    if (auto color = CRVUIUtil::appearanceValue<platform::Color>("UITableView", "separatorColor"))
        attachments->separatorColor = color;
    attachments->registerCell<CRVSupportAttachmentCell>(CRVSupportAttachmentCell::cellIdentifier());
    attachments->setDelegate(std::static_pointer_cast<CRVArticleView>(shared_from_this()));
    article->addSubview(attachments);
}

void CRVArticleView::setUpSpinners() {
    using SpinnerPtr = std::shared_ptr<uikit::ActivityIndicatorView>;
    if (initalArticleLoadingSpinner) initalArticleLoadingSpinner->removeFromSuperview();
    initalArticleLoadingSpinner = CRVUIUtil::appearanceValue<SpinnerPtr>(viewClass, "initalArticleLoadingSpinner").value_or(nullptr);
    if (initalArticleLoadingSpinner) initalArticleLoadingSpinner->setAccessibilityIdentifier("CRVarticleLoadingSpinner");

    articleLoadSpinner = CRVUIUtil::appearanceValue<SpinnerPtr>(viewClass, "articleLoadSpinner").value_or(nullptr);
    if (articleLoadSpinner) {
        articleLoadSpinner->setAccessibilityIdentifier("CRVdeeplinkingSpinner");
        articleLoadSpinner->hidesWhenStopped = true;
        articleLoadSpinner->stopAnimating();
        articleLoadSpinner->setHidden(true);
        articleLoadSpinner->setFrame(bounds());
        articleLoadSpinner->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
        articleLoadSpinner->setBackgroundColor(whiteColor(0.94, 0.7));
    }
}

void CRVArticleView::registerNotifications() {
    auto& center = platform::NotificationCenter::defaultCenter();
    observers_.clear();
    observers_.push_back(center.addObserver(dastrel::CR_HC_AttachmentsStarting, nullptr, weakly(*this, &CRVArticleView::reloadAttachments)));
    observers_.push_back(center.addObserver(dastrel::CR_HC_AttachmentsUpdated, nullptr, weakly(*this, &CRVArticleView::attachmentsUpdated)));
    observers_.push_back(
        center.addObserver(dastrel::CR_HC_AttachmentsErrored, nullptr, weakly(*this, &CRVArticleView::hanldeFetchAttachmentsFailed)));
    observers_.push_back(center.addObserver(corvane::CRVAPI_ReachabilityChangedNotification, nullptr,
                                            weakly(*this, &CRVArticleView::disableInteraction)));
    observers_.push_back(center.addObserver(UIDeviceOrientationDidChangeNotification, nullptr, weakly(*this, &CRVArticleView::didRotate)));
    // The kit tells of a turn as a change of the window's environment.
    observers_.push_back(center.addObserver(uikit::windowEnvironmentDidChangeNotification, nullptr,
                                            weakly(*this, &CRVArticleView::didRotate)));
    // The kit's windows are no senders of notifications, so every sender is heard.
    observers_.push_back(center.addObserver(UIWindowDidBecomeVisibleNotification, nullptr, weakly(*this, &CRVArticleView::windowNowVisible)));
    observers_.push_back(center.addObserver(UIWindowDidBecomeHiddenNotification, nullptr, weakly(*this, &CRVArticleView::windowNowHidden)));
}

void CRVArticleView::setUpArticleVotingViewWithSettings(const std::optional<dastrel::CRVHelpCenterSettings>& settings) {
    ratingView = CRVHelpCenterArticleRatingView::loadFromNib();
    handler = HelpCenterArticleVotingHandler::initWithArticleId(articleId, settings ? settings->locale : std::nullopt);
    ratingView->delegate = handler;
    const int vote = handler->currentArticleVote();
    ratingView->updateButtonStatesForButtonAtIndexSelected(
        vote == dastrel::CRV_Article_Down_Vote_Number ? dastrel::CRV_Article_Down_Vote_Button_Index
        : vote == dastrel::CRV_Article_Up_Vote_Number ? dastrel::CRV_Article_Up_Vote_Button_Index
                                                      : 999);
    // Shown by layout once the attachments are placed.
    ratingView->setHidden(true);
    article->addSubview(ratingView);
}

bool CRVArticleView::isLoading() const { return !initalArticleLoadingSpinner || !initalArticleLoadingSpinner->isHidden(); }

void CRVArticleView::updateLoadingState() {
    const bool loading = webViewLoading || attachmentsLoading;
    if (initalArticleLoadingSpinner) {
        if (loading) {
            initalArticleLoadingSpinner->setHidden(false);
            initalArticleLoadingSpinner->startAnimating();
            if (article && initalArticleLoadingSpinner->superview() != article.get()) article->addSubview(initalArticleLoadingSpinner);
        } else {
            initalArticleLoadingSpinner->setHidden(true);
            initalArticleLoadingSpinner->stopAnimating();
            initalArticleLoadingSpinner->removeFromSuperview();
        }
    }
    if (attachments) attachments->setHidden(attachmentsLoading);
    if (articleBackground) articleBackground->setHidden(webViewLoading);
    setNeedsLayout();
}

void CRVArticleView::reloadAttachments() {
    attachmentsLoading = true;
    updateLoadingState();
}

void CRVArticleView::attachmentsUpdated() {
    if (attachments) {
        const auto source = std::dynamic_pointer_cast<CRVHelpCenterDataSource>(attachments->dataSource());
        if (source && source->hasItems) attachments->reloadData();
    }
    attachmentsLoading = false;
    updateLoadingState();
}

void CRVArticleView::hanldeFetchAttachmentsFailed() {
    attachmentsLoading = false;
    updateLoadingState();
}

void CRVArticleView::disableInteraction(const platform::Notification& notification) {
    const auto* reachability = dynamic_cast<const corvane::CRVReachability*>(notification.object);
    const auto status = reachability ? reachability->currentReachabilityStatus() : corvane::NetworkMonitor::shared().status();
    blockTouches = status == corvane::NotReachable;
}

void CRVArticleView::didFinishNavigation(uikit::WebView& webView) {
    webView.sizeToFit();
    if (loadingSpinnerView) {
        loadingSpinnerView->stopAnimating();
        loadingSpinnerView->removeFromSuperview();
    }
    if (loadingView) loadingView->removeFromSuperview();
    webViewLoading = false;
    updateLoadingState();
}

void CRVArticleView::decidePolicyForNavigationAction(uikit::WebView&, const uikit::NavigationAction& action,
                                                     std::function<void(uikit::NavigationActionPolicy)> decisionHandler) {
    using Policy = uikit::NavigationActionPolicy;
    // The page's own loading, and anything but a tapped link, goes ahead.
    if (action.navigationType != uikit::NavigationType::linkActivated) return decisionHandler(Policy::allow);
    const auto target = delegate.lock();
    if (!target) return decisionHandler(Policy::allow);
    const std::string& link = action.url.absoluteString();
    if (link.starts_with("mailto:")) {
        target->openMailWithReciever(link);
        return decisionHandler(Policy::cancel);
    }
    // An empty account URL is no prefix of anything, as on the platform.
    const std::string base = corvaneUrl();
    if (!base.empty() && link.starts_with(base)) {
        if (const auto last = articlePathPart(action.url.pathComponents())) {
            target->openLinkToNewArticle(last->substr(0, last->find('-')));
            return decisionHandler(Policy::cancel);
        }
    }
    uikit::Application::openURL(action.url, {}, {});
    decisionHandler(Policy::cancel);
}

double CRVArticleView::heightForRowAt(uikit::TableView&, const uikit::IndexPath&) { return uikit::TableViewCell::defaultHeight; }

void CRVArticleView::didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    table.deselectRow(indexPath, true);
    if (blockTouches) return;
    const auto source = std::dynamic_pointer_cast<CRVHelpCenterDataSource>(table.dataSource());
    if (!source) return;
    const auto item = source->itemAtIndexPath(indexPath);
    const auto* attachment = std::any_cast<dastrel::CRVHelpCenterAttachment>(&item);
    if (!attachment) return;
    if (const auto url = platform::URL::parse(attachment->content_url)) uikit::Application::openURL(*url, {}, {});
}

int CRVArticleView::getCurrentOrientation() const {
    const uikit::Window* shownIn = window() ? window() : uikit::Window::keyWindow();
    const int orientation = shownIn ? static_cast<int>(shownIn->environment().orientation) : 0;
    return orientation == 0 ? lastLayoutOrientation : orientation;
}

void CRVArticleView::didRotate() {
    const int current = getCurrentOrientation();
    if (current != lastLayoutOrientation) {
        if (!playingVideo)
            refreshArticleContent();
        else if (current != initialVideoOrientation)
            rotatedWhilePlayingVideo = true;
    }
    lastLayoutOrientation = current;
}

void CRVArticleView::playing() {
    playingVideo = true;
    initialVideoOrientation = getCurrentOrientation();
}

void CRVArticleView::finishedPlaying() {
    playingVideo = false;
    // Turned and turned back while the video played: the page still fits; the flag stays.
    if (rotatedWhilePlayingVideo && getCurrentOrientation() != initialVideoOrientation) {
        refreshArticleContent();
        rotatedWhilePlayingVideo = false;
    }
    setNeedsLayout();
}

void CRVArticleView::windowNowVisible() {
    if (CRVUIUtil::isSameVersion(7))
        finishedPlaying();
    else if (CRVUIUtil::isSameVersion(6))
        playingVideo ? finishedPlaying() : playing();
    else
        playing();
}

void CRVArticleView::windowNowHidden() {
    if (CRVUIUtil::isSameVersion(7))
        playing();
    else
        finishedPlaying();
}

void CRVArticleView::refreshArticleContent() {
    if (!articleWebView) return;
    // A page one point high measures its content afresh.
    auto frame = articleWebView->frame();
    frame.size.height = 1.0;
    articleWebView->setFrame(frame);
    articleWebView->loadHTMLString(html, baseURL());
    webViewLoading = true;
    updateLoadingState();
    setNeedsLayout();
}

void CRVArticleView::layoutSubviews() {
    uikit::View::layoutSubviews();
    // The page must not move under a playing video.
    if (playingVideo) return;
    const double width = frame().width();
    const double height = frame().height();
    const uikit::Rect whole{0, 0, width, height};
    if (loadingView) loadingView->setFrame(whole);
    if (loadingSpinnerView) loadingSpinnerView->setFrame(whole);
    if (!article) return;

    const bool voting = articleVotingEnabled && ratingView;
    double contentHeight = 0;
    if (webViewLoading) {
        articleWebView->setFrame(whole);
        if (initalArticleLoadingSpinner) {
            const auto spinner = initalArticleLoadingSpinner->frame();
            initalArticleLoadingSpinner->setFrame(
                {std::floor((width - spinner.width()) / 2), spinner.height(), spinner.width(), spinner.height()});
        }
        contentHeight = article->contentSize().height;
    } else {
        const double pageHeight = articleWebView->scrollView()->contentSize().height;
        uikit::Rect fitted{0, 0, width, pageHeight > 0 ? pageHeight : height};
        if (!CRVUIUtil::isOlderVersion("11.0")) {
            // The left inset places it; the right one, twice, narrows it. Compared as placed, so
            // that a page loaded at the full width still moves clear of the insets.
            const auto insets = window() ? window()->environment().safeAreaInsets : uikit::EdgeInsets{};
            fitted = {insets.left, 0, width - 2 * insets.right, pageHeight};
        }
        if (articleWebView->frame() != fitted) articleWebView->setFrame(fitted);
        const double pageBottom = articleWebView->frame().maxY();
        articleBackground->setFrame({0, 0, width, pageBottom});
        const double line = CRVUIUtil::separatorHeightForScreenScale();
        separator->setFrame({0, pageBottom - line, width, line});

        if (attachmentsLoading) {
            const double spinnerHeight = initalArticleLoadingSpinner ? initalArticleLoadingSpinner->frame().height() : 0;
            if (initalArticleLoadingSpinner) {
                const double spinnerWidth = initalArticleLoadingSpinner->frame().width();
                initalArticleLoadingSpinner->setFrame(
                    {std::floor((width - spinnerWidth) / 2), pageBottom + spinnerHeight / 2, spinnerWidth, spinnerHeight});
            }
            contentHeight = pageBottom + 2 * spinnerHeight;
        } else {
            const int rows = attachments->dataSource() ? attachments->numberOfRowsInSection(0) : 0;
            const double tableHeight = std::floor(rows * uikit::TableViewCell::defaultHeight);
            attachments->setFrame({0, pageBottom, width, tableHeight});
            contentHeight = pageBottom + tableHeight;
            if (voting) {
                const double voteHeight = ratingView->sizeThatFits({width, 10000.0}).height;
                ratingView->setFrame({0, attachments->frame().maxY(), width, voteHeight});
                ratingView->setHidden(false);
            }
        }
        // Room for the vote view at the height it takes at this width, shown or not yet.
        if (voting) contentHeight += ratingView->sizeThatFits({width, 0}).height;
    }

    if (article->contentSize() != uikit::Size{width, contentHeight}) article->setContentSize({width, contentHeight});
    if (article->frame() != whole) article->setFrame(whole);
}

} // namespace belvakit
