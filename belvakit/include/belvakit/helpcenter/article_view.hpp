#pragma once

#include "belvakit/helpcenter/article_voting.hpp"
#include "dastrel/help_center.hpp"
#include "platform/notification_center.hpp"
#include "uikit/image_view.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/table_view.hpp"
#include "uikit/web_view.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// The article page: style sheet, title, body, author and date. "•" is U+2022; the `header` around
// `meta` is deliberate.
inline constexpr std::string_view CRVArticlePageTemplate =
    "<html dir=auto><head><header><meta name='viewport' content='width=device-width, initial-scale=1.0, "
    "maximum-scale=1.0, minimum-scale=1.0, user-scalable=no'></header><style>%@</style></head><body><h1>%@</h1>%@"
    "<footer><p><span>%@</span> \xE2\x80\xA2 <span dir=auto>%@</span></p></footer></body></html>";

// The date under the article.
inline constexpr std::string_view CRVArticleDateFormat = "d MMMM yyyy";

// What the platform posts when the device turns and when a window (a full-screen video's) shows
// or hides.
inline constexpr const char* UIDeviceOrientationDidChangeNotification = "UIDeviceOrientationDidChangeNotification";
inline constexpr const char* UIWindowDidBecomeVisibleNotification = "UIWindowDidBecomeVisibleNotification";
inline constexpr const char* UIWindowDidBecomeHiddenNotification = "UIWindowDidBecomeHiddenNotification";

// The article page's wishes that its screen carries out. (Spelt "Centre" on purpose.)
class CRVHelpCentreArticleViewProtocol {
public:
    virtual ~CRVHelpCentreArticleViewProtocol() = default;
    // The whole "mailto:" link.
    virtual void openMailWithReciever(const std::string& reciever) = 0;
    virtual void openLinkToNewArticle(const std::string& articleId) = 0;
};

// The page fills in the template; `%@` in the values stays as written. The text fields are plain
// text, so their markup characters are escaped; the body is the article's HTML as it came.
std::string articlePageHTML(const std::string& css, const dastrel::CRVHelpCenterArticle& article);

// The article view: a page in a web view that does not scroll itself, its attachments under it
// and the vote view under those, all in one outer scroll view, so the page's height drives the
// rest. Made in a loading state until an article is rendered. Main thread.
class CRVArticleView final : public uikit::View, public uikit::WebViewNavigationDelegate, public uikit::TableViewDelegate {
public:
    // A view in the loading state.
    static std::shared_ptr<CRVArticleView> loadingArticle();
    static std::shared_ptr<CRVArticleView> initWithArticle(const dastrel::CRVHelpCenterArticle& article,
                                                           const std::optional<dastrel::CRVHelpCenterSettings>& settings);
    CRVArticleView();
    ~CRVArticleView() override;
    std::string_view className() const override { return "CRVArticleView"; }

    std::weak_ptr<CRVHelpCentreArticleViewProtocol> delegate;

    // Views.
    std::shared_ptr<uikit::ScrollView> article;
    std::shared_ptr<uikit::View> articleBackground;
    std::shared_ptr<uikit::View> separator;
    std::shared_ptr<uikit::WebView> articleWebView;
    std::shared_ptr<uikit::TableView> attachments;
    std::shared_ptr<uikit::View> loadingView;
    std::shared_ptr<uikit::ActivityIndicatorView> loadingSpinnerView;
    // Only when a host set one on the appearance: the theme has none.
    std::shared_ptr<uikit::ActivityIndicatorView> initalArticleLoadingSpinner;
    // Covers the screen while a linked article loads.
    std::shared_ptr<uikit::ActivityIndicatorView> articleLoadSpinner;
    std::shared_ptr<CRVHelpCenterArticleRatingView> ratingView;
    std::shared_ptr<HelpCenterArticleVotingHandler> handler;

    // State.
    std::string html;
    std::string articleId;
    std::string articleLocale;
    bool webViewLoading = false;
    bool attachmentsLoading = false;
    bool blockTouches = false;
    bool playingVideo = false;
    bool rotatedWhilePlayingVideo = false;
    int lastLayoutOrientation = 1;
    int initialVideoOrientation = 0;
    bool articleVotingEnabled = false;

    void initWithLoadingState();
    void renderArticle(const dastrel::CRVHelpCenterArticle& article,
                       const std::optional<dastrel::CRVHelpCenterSettings>& withHelpCenterSettings);
    // The host's style sheet when it has a non-empty one, else the shipped one; never both.
    static std::string getCSS();
    // True while the page or the attachments load; also always without the appearance's spinner.
    bool isLoading() const;

    void refreshArticleContent();
    void updateLoadingState();
    void attachmentsUpdated();
    void reloadAttachments();
    void hanldeFetchAttachmentsFailed();
    void didRotate();
    void playing();
    void finishedPlaying();
    void windowNowVisible();
    void windowNowHidden();
    void disableInteraction(const platform::Notification& notification);
    int getCurrentOrientation() const;

    void layoutSubviews() override;

    // Web view: the link policy, and the page's end of loading.
    void decidePolicyForNavigationAction(uikit::WebView& webView, const uikit::NavigationAction& action,
                                         std::function<void(uikit::NavigationActionPolicy)> decisionHandler) override;
    void didFinishNavigation(uikit::WebView& webView) override;
    // Attachments: a tap opens the file unless the network is down.
    double heightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    void didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;

private:
    void buildViews();
    void setUpSpinners();
    void registerNotifications();
    void setUpArticleVotingViewWithSettings(const std::optional<dastrel::CRVHelpCenterSettings>& settings);
    std::optional<platform::URL> baseURL() const;
    std::vector<platform::ObservationToken> observers_;
};

} // namespace belvakit
