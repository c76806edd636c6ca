#include "article_fixture.hpp"

#include "corvane/provider_module.hpp"
#include "belvakit/helpcenter/article_attachments.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "uikit/label.hpp"

#include <random>

using namespace belvakit;
using article_testing::ArticleTest;

namespace {

constexpr const char* account = "https://belva.example.com";

dastrel::CRVHelpCenterArticle handMade(std::string title, std::string body, std::string author) {
    dastrel::CRVHelpCenterArticle article;
    article.identifier = 360001;
    article.title = std::move(title);
    article.body = std::move(body);
    article.author_name = std::move(author);
    article.created_at = 1678786200;  // 14 March 2023, 09:30 UTC
    return article;
}

class ArticleScreenTest : public ArticleTest {
protected:
    std::shared_ptr<CRVArticleViewController> openById(const std::string& id) {
        return push(CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(id));
    }
    static uikit::WebView& page(CRVArticleViewController& screen) { return *screen.articleView->articleWebView; }
    static std::vector<std::string> attachmentTitles(CRVArticleViewController& screen) {
        std::vector<std::string> titles;
        for (const auto& cell : screen.articleView->attachments->visibleCells())
            if (auto* attachment = dynamic_cast<CRVSupportAttachmentCell*>(cell.get())) titles.push_back(attachment->title()->text());
        return titles;
    }
};

// An article is answered by an empty list and no error.
class EmptyArticleProvider final : public article_testing::ForwardingProvider {
    void getArticleWithId(const std::string&, Articles callback) override {
        platform::MainQueue::shared().async([callback = std::move(callback)] { callback(std::vector<dastrel::CRVHelpCenterArticle>{}, std::nullopt); });
    }
};

} // namespace

// Each value goes in once, unchanged, also when it holds the placeholder itself.
TEST(ArticlePage, EveryGeneratedArticleKeepsTheTemplateAroundItsValues) {
    platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
    EXPECT_NE(articlePageHTML("", handMade("T", "", "Mira Okafor")).find("<span>Mira Okafor</span> \u2022 <span dir=auto>14 March 2023</span>"),
              std::string::npos);
    const std::string pieces[] = {"%@", "%", "@", "<", ">", "&", "a", "\u05e9", " ", "</h1>", "\u2022", "%%@", "&amp;"};
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        std::mt19937 random(seed);
        const auto text = [&] {
            std::string out;
            for (int n = static_cast<int>(random() % 8); n > 0; --n) out += pieces[random() % std::size(pieces)];
            return out;
        };
        const std::string css = text(), title = text(), body = text(), author = text();
        auto article = handMade(title, body, author);
        article.created_at = static_cast<double>(random() % 2000000000);
        const std::string date = platform::Calendar::current().format(article.created_at, "d MMMM yyyy").value_or("");
        const std::string expected =
            "<html dir=auto><head><header><meta name='viewport' content='width=device-width, initial-scale=1.0, "
            "maximum-scale=1.0, minimum-scale=1.0, user-scalable=no'></header><style>" + css + "</style></head><body><h1>" +
            title + "</h1>" + body + "<footer><p><span>" + author + "</span> \u2022 <span dir=auto>" + date +
            "</span></p></footer></body></html>";
        ASSERT_EQ(articlePageHTML(css, article), expected) << "seed " << seed;
    }
}

TEST_F(ArticleScreenTest, ByIdShowsThePageWithTheShippedStyleSheetItsAttachmentsThatOpenWhenTappedAndTheVoteView) {
    const auto screen = openById("360001");
    ASSERT_EQ(navigation->topViewController(), screen.get());
    EXPECT_EQ(screen->title(), "Installing Orbit Planner");
    auto& view = *screen->articleView;
    EXPECT_FALSE(view.webViewLoading);
    EXPECT_EQ(view.articleId, "360001");
    EXPECT_EQ(screen->hcLocale, "en-us");

    const auto expected = desk->content().articles.front().record;
    EXPECT_EQ(page(*screen).html(), articlePageHTML(corvane::CRVBundleUtils::helpCenterCss(), expected));
    ASSERT_TRUE(page(*screen).baseURL());
    EXPECT_EQ(page(*screen).baseURL()->absoluteString(), account);
    EXPECT_FALSE(page(*screen).scrollView()->scrollEnabled);
    EXPECT_FALSE(uikit::findByIdentifier(*window, "CRVloadingSpinner"));

    // The attachment row: name, size, and an accessibility label naming both.
    EXPECT_EQ(attachmentTitles(*screen), std::vector<std::string>{"quick-start.txt"});
    const auto cell = view.attachments->cellForRow({0, 0});
    auto* attachment = dynamic_cast<CRVSupportAttachmentCell*>(cell.get());
    ASSERT_TRUE(attachment);
    EXPECT_EQ(attachment->fileSize()->text(), "130 bytes");
    EXPECT_EQ(attachment->accessibilityLabel(), "Article attachment: quick-start.txt. 130 bytes");

    // Page, one row, then the vote view, all in the one scroll view.
    const double pageHeight = page(*screen).scrollView()->contentSize().height;
    ASSERT_GT(pageHeight, 100);
    EXPECT_EQ(page(*screen).frame().height(), pageHeight);
    EXPECT_EQ(view.attachments->frame().minY(), pageHeight);
    EXPECT_EQ(view.attachments->frame().height(), 44);
    ASSERT_TRUE(view.ratingView);
    EXPECT_TRUE(uikit::isShown(*view.ratingView));
    EXPECT_EQ(view.ratingView->frame().minY(), pageHeight + 44);
    EXPECT_EQ(view.article->contentSize().height, view.ratingView->frame().maxY());

    // A tapped attachment opens its file, unless the network is down.
    ASSERT_TRUE(uikit::tap(*cell));
    settle();
    EXPECT_FALSE(view.attachments->indexPathForSelectedRow());
    EXPECT_EQ(opened(), std::vector<std::string>{std::string(account) + "/hc/article_attachments/500001/quick-start.txt"});
    desk->setOffline(true);
    settle();
    EXPECT_TRUE(view.blockTouches);
    ASSERT_TRUE(uikit::tap(*view.attachments->cellForRow({0, 0})));
    settle();
    EXPECT_FALSE(view.attachments->indexPathForSelectedRow());
    EXPECT_EQ(opened().size(), 1u);
}

TEST_F(ArticleScreenTest, AHostStyleSheetReplacesTheShippedOneWholeAndAnEmptyOneCountsAsNone) {
    corvane::CRVBundleUtils::setUserDefinedHelpCenterCss("");
    EXPECT_EQ(CRVArticleView::getCSS(), corvane::CRVBundleUtils::helpCenterCss());
    corvane::CRVBundleUtils::setUserDefinedHelpCenterCss("h1 { color: teal; }");
    const auto screen = openById("360002");
    const auto& html = page(*screen).html();
    EXPECT_NE(html.find("<style>h1 { color: teal; }</style>"), std::string::npos);
    EXPECT_EQ(html.find("font-family"), std::string::npos);
}

TEST_F(ArticleScreenTest, OpensFromARowWithItsNameAndWithAFinishedArticleWithoutFetchingIt) {
    const auto fromRow = CRVArticleViewController::initWithArticleViewModel({360004, "Importing plans"}, {});
    EXPECT_EQ(fromRow->title(), "Importing plans");
    push(fromRow);
    EXPECT_EQ(fromRow->title(), "Importing plans from a spreadsheet");
    EXPECT_EQ(attachmentTitles(*fromRow), std::vector<std::string>{"plan-template.csv"});

    auto finished = desk->content().articles.front().record;
    finished.title = "Kept as handed over";
    const auto screen = push(CRVHelpCenterUi::buildHelpCenterArticle(finished));
    EXPECT_EQ(screen->title(), "Kept as handed over");
    EXPECT_NE(page(*screen).html().find("<h1>Kept as handed over</h1>"), std::string::npos);
    EXPECT_EQ(attachmentTitles(*screen), std::vector<std::string>{"quick-start.txt"});
    EXPECT_FALSE(screen->articleView->attachmentsLoading);
}

TEST_F(ArticleScreenTest, TheOverviewOpensArticlesThroughTheInstalledRoutes) {
    const auto overview = CRVHelpCenterUi::buildHelpCenterOverviewWithConfigs({});
    ASSERT_TRUE(overview);
    const auto& routes = CRVHelpCenterOverviewRoutes::shared();
    ASSERT_TRUE(routes.articleWithId);
    auto screen = std::dynamic_pointer_cast<CRVArticleViewController>(routes.articleWithId(360002, {}, nullptr));
    ASSERT_TRUE(screen);
    push(screen);
    EXPECT_EQ(screen->title(), "Creating your account");
}

TEST_F(ArticleScreenTest, LinksGoToTheMailComposerAnotherArticleOnTheStackOrTheSystem) {
    const auto screen = openById("360014");
    auto& web = page(*screen);
    using Policy = uikit::NavigationActionPolicy;

    // No mail account: nothing happens, and the page stays.
    EXPECT_EQ(web.activateLink("mailto:help@orbit-planner.example"), Policy::cancel);
    EXPECT_FALSE(screen->presentedViewController());
    uikit::MailComposeViewController::setCanSendMail(true);
    EXPECT_EQ(web.activateLink("mailto:help@orbit-planner.example"), Policy::cancel);
    auto composer = std::dynamic_pointer_cast<uikit::MailComposeViewController>(screen->presentedViewController());
    ASSERT_TRUE(composer);
    EXPECT_EQ(composer->toRecipients, std::vector<std::string>{"help@orbit-planner.example"});
    composer->finish(2);
    settle();
    EXPECT_FALSE(screen->presentedViewController());

    // Outside the account's articles: the system opens it.
    const std::vector<std::string> outside{
        std::string(account) + "/hc/e/articles/360002-one-letter-locale",
        std::string(account) + "/hc/en-us/sections/articles/360002",
        std::string(account) + "/articles/360002",
        "https://elsewhere.example.com/hc/en-us/articles/360002-creating-your-account",
        "https://example.org/page?q=1",
    };
    for (const auto& link : outside) EXPECT_EQ(web.activateLink(link), Policy::cancel) << link;
    EXPECT_EQ(opened(), outside);
    EXPECT_EQ(navigation->viewControllers().size(), 2u);
    EXPECT_TRUE(web.followedLinks().empty());

    // An article of the account, with and without the locale: the screen is covered while it loads.
    for (const std::string path : {"/hc/en-us/articles/360002-creating-your-account", "/hc/articles/360003"}) {
        EXPECT_EQ(web.activateLink(account + path), Policy::cancel);
        auto* spinner = uikit::findByIdentifier(*screen->view(), "CRVdeeplinkingSpinner");
        ASSERT_TRUE(spinner) << path;
        EXPECT_TRUE(uikit::isShown(*spinner));
        EXPECT_EQ(spinner->frame(), screen->view()->bounds());
        settle();
        EXPECT_FALSE(uikit::findByIdentifier(*screen->view(), "CRVdeeplinkingSpinner"));
    }
    ASSERT_EQ(navigation->viewControllers().size(), 4u);
    auto* second = dynamic_cast<CRVArticleViewController*>(navigation->viewControllers()[2].get());
    auto* third = dynamic_cast<CRVArticleViewController*>(navigation->topViewController());
    ASSERT_TRUE(second && third);
    EXPECT_EQ(second->title(), "Creating your account");
    EXPECT_EQ(third->title(), "Choosing your first workspace");
    EXPECT_EQ(opened().size(), outside.size());

    // Back on the first screen, its spinner is put back, hidden, for the next link.
    navigation->popToRootViewController(false);
    push(screen);
    auto* spinner = uikit::findByIdentifier(*screen->view(), "CRVdeeplinkingSpinner");
    ASSERT_TRUE(spinner);
    EXPECT_FALSE(uikit::isShown(*spinner));

    // The page itself is allowed, and so are links once the view has no delegate.
    bool allowed = false;
    screen->articleView->decidePolicyForNavigationAction(
        web, {*platform::URL::parse(std::string(account) + "/hc/en-us/articles/1#part"), uikit::NavigationType::other},
        [&](Policy policy) { allowed = policy == Policy::allow; });
    EXPECT_TRUE(allowed);
    screen->articleView->delegate.reset();
    EXPECT_EQ(web.activateLink("mailto:help@orbit-planner.example"), Policy::allow);
    EXPECT_EQ(web.followedLinks(), std::vector<std::string>{"mailto:help@orbit-planner.example"});
    EXPECT_EQ(opened().size(), outside.size());
}

TEST_F(ArticleScreenTest, AnArticleThatCannotBeFetchedEndsTheScreenWithALogLine) {
    for (const std::string id : {"999999", "not-a-number", ""}) {
        const auto screen = openById(id);
        EXPECT_TRUE(logged(platform::LogLevel::error, "The article could not be fetched. Will dismiss the ViewController")) << id;
        EXPECT_EQ(navigation->viewControllers().size(), 1u) << id;
        log.clear();
    }
    // Presented modally in a stack of its own, it is dismissed.
    auto screen = CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(std::int64_t{424242});
    root->presentViewController(std::make_shared<uikit::NavigationController>(screen), false);
    settle();
    EXPECT_FALSE(root->presentedViewController());
}

TEST_F(ArticleScreenTest, AFailedDeepLinkStopsTheSpinnerAndPushesAScreenWithNoArticle) {
    const auto screen = openById("360001");
    desk->failNext(1);
    page(*screen).activateLink(std::string(account) + "/hc/en-us/articles/360002-creating-your-account");
    settle();
    EXPECT_FALSE(uikit::findByIdentifier(*screen->view(), "CRVdeeplinkingSpinner"));
    ASSERT_EQ(navigation->viewControllers().size(), 3u);
    auto* blank = dynamic_cast<CRVArticleViewController*>(navigation->topViewController());
    ASSERT_TRUE(blank);
    EXPECT_EQ(blank->title(), "");
    EXPECT_EQ(blank->articleView->articleId, "0");
    EXPECT_EQ(blank->configs.size(), screen->configs.size());
}

TEST_F(ArticleScreenTest, AnEmptyAnswerIsNoErrorSoOnlyAnErrorEndsTheScreen) {
    core->providerModule().setProvider<dastrel::CRVHelpCenterProvider>(
        std::make_shared<EmptyArticleProvider>());
    const auto screen = openById("360001");
    EXPECT_FALSE(logged(platform::LogLevel::error, "The article could not be fetched. Will dismiss the ViewController"));
    ASSERT_EQ(navigation->topViewController(), screen.get());
    EXPECT_EQ(screen->articleView->articleId, "0");
    EXPECT_FALSE(screen->articleView->webViewLoading);

    // A deep link answered the same way pushes a screen with no article.
    page(*screen).activateLink(std::string(account) + "/hc/en-us/articles/360002-creating-your-account");
    settle();
    ASSERT_EQ(navigation->viewControllers().size(), 3u);
    auto* blank = dynamic_cast<CRVArticleViewController*>(navigation->topViewController());
    ASSERT_TRUE(blank);
    EXPECT_EQ(blank->articleView->articleId, "0");
}

TEST_F(ArticleScreenTest, FailedAttachmentsLeaveAnEmptyListAndARetryToastButNoToastWhileOffline) {
    desk->failNext(2);  // both fetches of the attachments: when made, and when loaded
    const auto screen = push(CRVHelpCenterUi::buildHelpCenterArticle(desk->content().articles.front().record));
    EXPECT_FALSE(screen->articleView->attachmentsLoading);
    EXPECT_EQ(screen->articleView->attachments->numberOfRowsInSection(0), 0);
    ASSERT_TRUE(screen->toastView);
    EXPECT_EQ(screen->toastView->text()->text(), "Attachments could not be loaded.");
    EXPECT_GT(screen->toastHeight(), 0);
    EXPECT_TRUE(logged(platform::LogLevel::debug, "Request Error: display"));

    // Retry fetches the attachments again.
    const auto calls = desk->callCount();
    ASSERT_TRUE(uikit::tap(*screen->toastView->button()));
    settle();
    EXPECT_EQ(desk->callCount(), calls + 1);
    EXPECT_EQ(screen->toastHeight(), 0);
    EXPECT_EQ(attachmentTitles(*screen), std::vector<std::string>{"quick-start.txt"});

    screen->toastView = nullptr;
    desk->setOffline(true);
    screen->dataSource->reloadData();
    settle();
    EXPECT_NE(screen->toastView ? screen->toastView->text()->text() : "", "Attachments could not be loaded.");
    EXPECT_TRUE(uikit::findByIdentifier(*window, "CRVarticleViewScrollView"));
}

TEST_F(ArticleScreenTest, BadContentGivesAPageWithItsTitleNeverACrash) {
    auto broken = handMade("<script>alert(1)</script>Broken", "<p><b>unclosed <div><table><tr><td>cell<!-- never closed", "");
    broken.created_at = -1e300;
    broken.locale = "";
    const auto screen = push(CRVHelpCenterUi::buildHelpCenterArticle(broken));
    auto& web = page(*screen);
    EXPECT_FALSE(screen->articleView->webViewLoading);
    EXPECT_NE(web.html().find("<h1><script>alert(1)</script>Broken</h1><p><b>unclosed"), std::string::npos);
    EXPECT_GT(web.scrollView()->contentSize().height, 0);
    EXPECT_TRUE(uikit::isShown(*screen->articleView->articleBackground));

    const auto empty = push(CRVHelpCenterUi::buildHelpCenterArticle(dastrel::CRVHelpCenterArticle{}));
    EXPECT_FALSE(empty->articleView->webViewLoading);
    EXPECT_EQ(empty->articleView->articleId, "0");
    EXPECT_EQ(empty->articleView->attachments->numberOfRowsInSection(0), 0);
}

TEST_F(ArticleScreenTest, AHostSpinnerShowsWhileLoadingAndReachabilityRetriesOnlyThen) {
    auto spinner = std::make_shared<uikit::ActivityIndicatorView>(2);
    uikit::Appearance::set("CRVArticleView", "initalArticleLoadingSpinner", spinner);
    desk->setLatency(platform::milliseconds(400));
    const auto screen = CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360001");
    navigation->pushViewController(screen, false);
    settle(0.9);  // settings and the article are in; the attachments load
    EXPECT_EQ(screen->articleView->initalArticleLoadingSpinner, spinner);
    EXPECT_EQ(spinner->accessibilityIdentifier(), "CRVarticleLoadingSpinner");
    EXPECT_TRUE(screen->articleView->isLoading());
    EXPECT_TRUE(uikit::isShown(*spinner));
    settle();
    EXPECT_FALSE(screen->articleView->isLoading());
    EXPECT_FALSE(spinner->superview());

    // Coming back online asks for the attachments again only while something still loads.
    const auto calls = desk->callCount();
    desk->setOffline(true);
    settle();
    desk->setOffline(false);
    settle();
    EXPECT_EQ(desk->callCount(), calls);

    // Without the host's spinner a page always reads as loading, so coming back online refetches.
    uikit::Appearance::reset();
    const auto plain = push(CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360001"));
    EXPECT_TRUE(plain->articleView->isLoading());
    const auto before = desk->callCount();
    desk->setOffline(true);
    settle();
    desk->setOffline(false);
    settle();
    EXPECT_EQ(desk->callCount(), before + 1);
}

TEST_F(ArticleScreenTest, TurningRefreshesThePageButNotUnderAPlayingVideo) {
    const auto screen = openById("360002");
    auto& view = *screen->articleView;
    const double portraitHeight = page(*screen).frame().height();
    window->setEnvironment(uikit::Environment::phoneLandscape());
    EXPECT_TRUE(view.webViewLoading);
    EXPECT_EQ(view.lastLayoutOrientation, static_cast<int>(uikit::InterfaceOrientation::landscapeLeft));
    settle();
    EXPECT_FALSE(view.webViewLoading);
    // Wider, so shorter; kept clear of the landscape insets.
    EXPECT_LT(page(*screen).frame().height(), portraitHeight);
    EXPECT_EQ(page(*screen).frame().minX(), 44);
    EXPECT_EQ(page(*screen).frame().width(), window->frame().width() - 88);

    // A video starts (a window shows); turning and turning back leaves the page and the flag.
    platform::NotificationCenter::defaultCenter().post(UIWindowDidBecomeVisibleNotification, nullptr);
    EXPECT_TRUE(view.playingVideo);
    const auto frozen = page(*screen).frame();
    window->setEnvironment(uikit::Environment::phonePortrait());
    window->setEnvironment(uikit::Environment::phoneLandscape());
    settle();
    EXPECT_FALSE(view.webViewLoading);
    EXPECT_TRUE(view.rotatedWhilePlayingVideo);
    EXPECT_EQ(page(*screen).frame(), frozen);
    platform::NotificationCenter::defaultCenter().post(UIWindowDidBecomeHiddenNotification, nullptr);
    EXPECT_FALSE(view.playingVideo);
    EXPECT_TRUE(view.rotatedWhilePlayingVideo);
    EXPECT_FALSE(view.webViewLoading);

    // Turned while playing and left turned: the page is refreshed when the video ends.
    platform::NotificationCenter::defaultCenter().post(UIWindowDidBecomeVisibleNotification, nullptr);
    window->setEnvironment(uikit::Environment::phonePortrait());
    platform::NotificationCenter::defaultCenter().post(UIWindowDidBecomeHiddenNotification, nullptr);
    EXPECT_TRUE(view.webViewLoading);
    EXPECT_FALSE(view.rotatedWhilePlayingVideo);
    settle();
    EXPECT_EQ(page(*screen).frame().height(), portraitHeight);
}

TEST_F(ArticleScreenTest, TheContactButtonFollowsTheArticleConfigurationAndOpensTheRequestList) {
    auto hidden = std::make_shared<ArticleUiConfiguration>();
    hidden->showContactOptions = false;
    const auto without = push(CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360001", {hidden}));
    EXPECT_FALSE(without->navigationItem().rightBarButtonItem);

    const auto with = openById("360001");
    const auto& button = with->navigationItem().rightBarButtonItem;
    ASSERT_TRUE(button);
    EXPECT_EQ(button->accessibilityIdentifier, "CRVconversationsButton");
    ASSERT_TRUE(button->action);
    button->action();
    settle();
    EXPECT_TRUE(logged(platform::LogLevel::debug, "Presenting Request List UI"));
    EXPECT_EQ(navigation->viewControllers().size(), 4u);
    // Pushed screens go back by the bar's back button; no cancel button of their own.
    EXPECT_FALSE(with->navigationItem().leftBarButtonItem);
}
