#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/article_attachments.hpp"
#include "belvakit/helpcenter/format_fill.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "corvane/reachability.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/label.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

class RecordingUpdater final : public CRVHelpCenterSearchResultUpdaterDelegate {
public:
    void searchControllerStartedSearch(uikit::SearchController&) override { ++started; }
    void searchControllerDidUpdateWithResults(uikit::SearchController&,
                                              const std::optional<std::vector<dastrel::CRVHelpCenterArticle>>& r) override {
        results = r;
    }
    int started = 0;
    std::optional<std::vector<dastrel::CRVHelpCenterArticle>> results;
};

class HostDelegate final : public CRVHelpCenterConversationsUIDelegate {
public:
    explicit HostDelegate(int activeValue, int type) : active_(activeValue), type_(type) {}
    int active() const override { return active_; }
    int navBarConversationsUIType() const override { return type_; }
    platform::ImagePtr conversationsBarButtonImage() const override { return platform::makeImage(20, 20); }
    std::optional<std::string> conversationsBarButtonLocalizedLabel() const override { return "Talk to us"; }

private:
    int active_, type_;
};

class OverviewScreenTest : public testing::Test {
protected:
    void SetUp() override {
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = dir_.path()});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
        desk_ = helpDesk_->helpCenter();
        desk_->setLatency(platform::milliseconds(200));
        auto& routes = CRVHelpCenterOverviewRoutes::shared();
        routes = {};
        routes.articleWithId = [this](std::int64_t id, const auto&, const auto&) {
            openedArticles_.push_back(id);
            return std::make_shared<uikit::ViewController>();
        };
        routes.contactUs = [this](const auto&, const auto&, const auto&, bool fromEmptySearch) {
            contacts_.push_back(fromEmptySearch);
        };
        routes.searchResults = [this](const auto&) {
            return std::make_pair(std::make_shared<uikit::ViewController>(),
                                  std::static_pointer_cast<CRVHelpCenterSearchResultUpdaterDelegate>(updater_));
        };
        window_->makeKeyAndVisible();
    }
    void TearDown() override {
        window_->setRootViewController(nullptr);
        settle();
        CRVHelpCenterOverviewRoutes::shared() = {};
        desk_->setOffline(false);
        corvane::Corvane::reset();
    }

    void show(mirrowset::ConfigurationList configs = {}, std::shared_ptr<CRVHelpCenterConversationsUIDelegate> host = nullptr) {
        host_ = std::move(host);
        screen_ = CRVHelpCenterUi::buildHelpCenterOverviewController(std::move(configs));
        screen_->uiDelegate = host_;
        navigation_ = std::make_shared<uikit::NavigationController>(screen_);
        window_->setRootViewController(navigation_);
        window_->layoutTree();
    }
    void settle(double seconds = 1.0) { time_.run(seconds, [this] { window_->layoutTree(); }); }
    uikit::TableView& table() { return *screen_->tableView; }
    std::vector<int> rowKinds(int section) {
        std::vector<int> out;
        const auto& model = *screen_->tableHandler->tableViewModel;
        for (int row = 0; row < model.numberOfRowsInTableSection(section); ++row) out.push_back(model.cellTypeForIndexPath({section, row}));
        return out;
    }
    // The message of the toast on show, if one is.
    std::optional<std::string> toastMessage() {
        auto* text = uikit::findByIdentifier<uikit::Label>(*window_, "CRVtoastRetryMessage");
        if (!text || !uikit::isShown(*text) || !screen_->toastWrapper->isShowingError) return std::nullopt;
        return text->text();
    }
    bool tapRetry() {
        auto* button = uikit::findByIdentifier(*window_, "CRVtoastRetryButton");
        return button && uikit::tap(*button);
    }
    // The row of the first See all in a table section.
    std::optional<int> seeAllRow(int section) {
        const auto kinds = rowKinds(section);
        for (int row = 0; row < static_cast<int>(kinds.size()); ++row)
            if (kinds[static_cast<std::size_t>(row)] == CRVHelpCenterCellTypeSeeAll) return row;
        return std::nullopt;
    }
    bool tapRow(const uikit::IndexPath& path) {
        table().scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
        window_->layoutTree();
        auto cell = table().cellForRow(path);
        return cell && uikit::tap(*cell);
    }

    testing_support::VirtualTime time_;
    testing_support::TemporaryDirectory dir_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
    std::shared_ptr<sandbox::HelpCenterDesk> desk_;
    std::shared_ptr<uikit::Window> window_ = std::make_shared<uikit::Window>();
    std::shared_ptr<CRVHelpCenterOverviewController> screen_;
    std::shared_ptr<uikit::NavigationController> navigation_;
    std::shared_ptr<CRVHelpCenterConversationsUIDelegate> host_;
    std::shared_ptr<RecordingUpdater> updater_ = std::make_shared<RecordingUpdater>();
    std::vector<std::int64_t> openedArticles_;
    std::vector<bool> contacts_;
};

} // namespace

TEST_F(OverviewScreenTest, LoadsBehindASpinnerThenShowsCategoriesAndExpandsASectionOnSeeAll) {
    show();
    EXPECT_TRUE(screen_->loadingSpinner->isAnimating());
    EXPECT_TRUE(table().isHidden());
    EXPECT_EQ(screen_->navigationItem().title, "Help Center");
    settle();
    EXPECT_FALSE(table().isHidden());
    EXPECT_FALSE(screen_->loadingSpinner->isAnimating());
    EXPECT_FALSE(toastMessage());
    ASSERT_EQ(table().numberOfSections(), 4);
    const auto headerView = table().delegate()->viewForHeader(table(), 1);
    auto* header = dynamic_cast<CRVHelpCenterOverviewHeaderView*>(headerView.get());
    ASSERT_TRUE(header);
    EXPECT_EQ(header->title->text(), "Account and billing");
    EXPECT_EQ(header->accessibilityLabel(), "Category: Account and billing");

    // "Plans and payments" holds five of its seven articles, then See all.
    const auto row = seeAllRow(1);
    ASSERT_TRUE(row);
    const uikit::IndexPath path{1, *row};
    const int rowsBefore = table().numberOfRowsInSection(1);
    table().scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
    window_->layoutTree();
    const auto seeAllCell = table().cellForRow(path);
    auto* seeAll = dynamic_cast<CRVHelpCenterOverviewSeeAllTableViewCell*>(seeAllCell.get());
    ASSERT_TRUE(seeAll);
    EXPECT_EQ(seeAll->detailTitle->text(), "See all 7 articles ");

    // A failed load gives the See all row back.
    desk_->failNext(1);
    ASSERT_TRUE(tapRow(path));
    EXPECT_EQ(rowKinds(1)[static_cast<std::size_t>(path.row)], CRVHelpCenterCellTypeLoading);
    settle();
    EXPECT_EQ(rowKinds(1)[static_cast<std::size_t>(path.row)], CRVHelpCenterCellTypeSeeAll);

    table().clearAppliedUpdates();
    ASSERT_TRUE(tapRow(path));
    ASSERT_FALSE(table().appliedUpdates().empty());
    const auto& reload = table().appliedUpdates().front();
    EXPECT_EQ(reload.kind, uikit::TableUpdate::Kind::reloadRows);
    EXPECT_EQ(reload.indexPaths, std::vector<uikit::IndexPath>{path});
    EXPECT_EQ(reload.animation, uikit::TableViewRowAnimation::fade);
    const auto loadingCell = table().cellForRow(path);
    auto* loading = dynamic_cast<CRVHelpCenterOverviewLoadingTableViewCell*>(loadingCell.get());
    ASSERT_TRUE(loading);
    EXPECT_TRUE(loading->spinner->isAnimating());
    EXPECT_FALSE(table().indexPathForSelectedRow());

    settle();
    EXPECT_EQ(table().appliedUpdates().back().kind, uikit::TableUpdate::Kind::reloadData);
    EXPECT_EQ(table().numberOfRowsInSection(1), rowsBefore + 1);  // two more articles, no See all row
    EXPECT_FALSE(seeAllRow(1));
    auto* last = screen_->tableHandler->tableViewModel->articleAtIndexPath({1, *row + 1});
    ASSERT_TRUE(last);
    EXPECT_EQ(last->name, "Plus for teams");

    // Opening an article hands its id to the article screen.
    ASSERT_TRUE(tapRow({0, 1}));
    settle();
    EXPECT_EQ(openedArticles_, std::vector<std::int64_t>{360001});
    EXPECT_EQ(navigation_->viewControllers().size(), 2u);
}

TEST_F(OverviewScreenTest, ErrorCodesChooseTheToastAndRetryFetchesAgain) {
    const std::pair<long, const char*> cases[] = {{100, "No articles"},
                                                  {101, "No articles"},
                                                  {102, "No articles"},
                                                  {103, "Support could not be reached. Please try again."},
                                                  {500, "Support could not be reached. Please try again."}};
    for (const auto& [code, message] : cases) {
        SCOPED_TRACE(code);
        if (code == 500)
            desk_->failNext(1);
        else
            desk_->setOverviewErrorCode(code);
        show();
        settle();
        EXPECT_EQ(toastMessage(), message);
        EXPECT_FALSE(screen_->loadingSpinner->isAnimating());
        EXPECT_FALSE(table().isHidden());
        EXPECT_EQ(table().numberOfSections(), 0);

        desk_->setOverviewErrorCode(std::nullopt);
        const auto callsBefore = desk_->callCount();
        ASSERT_TRUE(tapRetry());
        EXPECT_TRUE(screen_->loadingSpinner->isAnimating());
        EXPECT_TRUE(table().isHidden());
        settle();
        EXPECT_GT(desk_->callCount(), callsBefore);
        EXPECT_FALSE(toastMessage());
        EXPECT_EQ(table().numberOfSections(), 4);
        window_->setRootViewController(nullptr);
        settle();
    }
}

TEST_F(OverviewScreenTest, AnEmptyAnswerIsTheErrorOfTheContentModel) {
    desk_->setEmptyAnswers(true);
    auto labelled = std::make_shared<HelpCenterUiConfiguration>();
    labelled->setLabels(std::vector<std::string>{"billing"});
    show({labelled});
    settle();
    EXPECT_EQ(toastMessage(), "No articles");  // 102

    window_->setRootViewController(nullptr);
    settle();
    show();
    settle();
    EXPECT_EQ(toastMessage(), "Support could not be reached. Please try again.");  // 103
    // This retry asks for the settings again before the overview.
    desk_->setEmptyAnswers(false);
    helpDesk_->conversationsSettings()->setEnabled(false);
    ASSERT_TRUE(tapRetry());
    settle();
    EXPECT_FALSE(screen_->isConversationsEnabled);
    EXPECT_EQ(table().numberOfSections(), 4);
}

TEST_F(OverviewScreenTest, StartingOfflineBlocksSelectionAndSearchUntilTheNetworkReturns) {
    desk_->setOffline(true);
    show();
    EXPECT_EQ(toastMessage(), "No internet connection");
    EXPECT_FALSE(table().allowsSelection);
    EXPECT_FALSE(screen_->searchController->searchBar()->isUserInteractionEnabled());
    settle();
    // The fetch failed too, but one toast shows at a time.
    EXPECT_EQ(toastMessage(), "No internet connection");

    const auto calls = desk_->callCount();
    desk_->setOffline(false);
    settle();
    EXPECT_FALSE(toastMessage());
    EXPECT_TRUE(table().allowsSelection);
    EXPECT_TRUE(screen_->searchController->searchBar()->isUserInteractionEnabled());
    EXPECT_EQ(desk_->callCount(), calls);  // coming back does not fetch by itself

    desk_->setOffline(true);
    settle();
    EXPECT_EQ(toastMessage(), "No internet connection");
}

TEST_F(OverviewScreenTest, SettingsDecideWhetherToFetchAndTheContactButtonFollowsTheHost) {
    desk_->setLocale(std::nullopt);
    show();
    settle();
    EXPECT_FALSE(screen_->loadingSpinner->isAnimating());
    EXPECT_TRUE(table().isHidden());
    EXPECT_FALSE(toastMessage());
    ASSERT_TRUE(screen_->navigationItem().rightBarButtonItem);
    EXPECT_EQ(screen_->navigationItem().rightBarButtonItem->accessibilityIdentifier, "CRVconversationsButton");
    EXPECT_EQ(screen_->navigationItem().rightBarButtonItem->accessibilityLabel, "Contact support");
    screen_->navigationItem().rightBarButtonItem->action();
    EXPECT_EQ(contacts_, std::vector<bool>{false});

    // No settings at all still fetch.
    desk_->setSettingsFailing(true);
    show();
    settle();
    EXPECT_EQ(table().numberOfSections(), 4);

    show({}, std::make_shared<HostDelegate>(2, 0));
    settle();
    EXPECT_FALSE(screen_->navigationItem().rightBarButtonItem);
    show({}, std::make_shared<HostDelegate>(1, 0));
    settle();
    ASSERT_TRUE(screen_->navigationItem().rightBarButtonItem);
    EXPECT_EQ(screen_->navigationItem().rightBarButtonItem->title, "Talk to us");
    show({}, std::make_shared<HostDelegate>(0, 1));
    settle();
    ASSERT_TRUE(screen_->navigationItem().rightBarButtonItem);
    EXPECT_TRUE(screen_->navigationItem().rightBarButtonItem->customView);
    show({}, std::make_shared<HostDelegate>(0, 5));
    settle();
    EXPECT_FALSE(screen_->navigationItem().rightBarButtonItem);

    auto hidden = std::make_shared<HelpCenterUiConfiguration>();
    hidden->showContactOptions = false;
    hidden->showContactOptionsOnEmptySearch = false;
    show({hidden});
    settle();
    EXPECT_FALSE(screen_->navigationItem().rightBarButtonItem);
    EXPECT_FALSE(screen_->shouldShowContactOptions());
}

TEST_F(OverviewScreenTest, SearchGoesOutOnTheSearchButtonWithTheOverviewsScopeAndHidesTheToast) {
    auto scoped = std::make_shared<HelpCenterUiConfiguration>();
    scoped->setGroupType(dastrel::CRVHelpCenterOverviewGroupType::category);
    scoped->setGroupIds({200003});
    show({scoped});
    settle();
    auto& bar = *screen_->searchController->searchBar();
    bar.setText("RESETTING");
    ASSERT_TRUE(bar.searchButtonClicked);
    bar.searchButtonClicked();
    EXPECT_EQ(updater_->started, 1);
    settle();
    ASSERT_TRUE(updater_->results);
    ASSERT_EQ(updater_->results->size(), 2u);  // only the troubleshooting articles
    EXPECT_EQ(updater_->results->at(0).title, "Resetting the local copy");
    EXPECT_EQ(screen_->search->categoryIds, std::vector<std::int64_t>{200003});

    desk_->failNext(1);
    bar.searchButtonClicked();
    settle();
    EXPECT_FALSE(updater_->results);

    desk_->setOverviewErrorCode(100);
    screen_->fetchTableData();
    settle();
    ASSERT_TRUE(toastMessage());
    const double height = screen_->toastWrapper->intrinsicContentSize().height;
    EXPECT_GT(height, 0);
    screen_->hideToastWrapperError(true);
    EXPECT_EQ(screen_->toastWrapperConstraint, -height);
    screen_->hideToastWrapperError(false);
    EXPECT_EQ(screen_->toastWrapperConstraint, 0);
}

TEST_F(OverviewScreenTest, SectionsThatOnlyReportACountStillShowAndExpand) {
    auto bare = std::make_shared<HelpCenterUiConfiguration>();
    bare->overviewContentModel.initialNumberOfArticles = 0;
    show({bare});
    settle();
    ASSERT_EQ(table().numberOfSections(), 4);
    // First category: a section's See all lands on row 1, later ones read as titles.
    EXPECT_EQ(rowKinds(0), (std::vector<int>{0, 3, 4, 0, 0, 4, 0, 0}));
    for (int row = 0; row < table().numberOfRowsInSection(0); ++row) tapRow({0, row});
    settle();
    // Row 1 belonged to the first section: it expanded; the others are still there.
    EXPECT_EQ(screen_->tableHandler->tableViewModel->categories()[0].sections[0].articles.size(), 4u);
    EXPECT_EQ(table().numberOfSections(), 4);
    EXPECT_TRUE(openedArticles_.empty());
}

TEST_F(OverviewScreenTest, TheFactoryPutsTheOverviewBehindItsCoordinatorAndTheRouterAnswersTheContactButton) {
    CRVHelpCenterOverviewRoutes::shared().contactUs = nullptr;
    auto container = CRVHelpCenterUi::buildHelpCenterOverview();
    navigation_ = std::make_shared<uikit::NavigationController>(container);
    window_->setRootViewController(navigation_);
    window_->layoutTree();
    settle();
    ASSERT_EQ(container->childViewControllers().size(), 1u);
    auto overview = std::dynamic_pointer_cast<CRVHelpCenterOverviewController>(container->childViewControllers()[0]);
    ASSERT_TRUE(overview);
    const auto coordinator = std::dynamic_pointer_cast<CRVHelpCenterCoordinator>(container->coordinator);
    ASSERT_TRUE(coordinator);
    EXPECT_EQ(coordinator->helpCenterController, overview);
    EXPECT_EQ(overview->tableView->numberOfSections(), 4);
    // Title, search and the contact button are on the container's bar.
    EXPECT_EQ(container->navigationItem().title, "Help Center");
    EXPECT_EQ(container->navigationItem().searchController, overview->searchController);
    ASSERT_TRUE(container->navigationItem().rightBarButtonItem);
    container->navigationItem().rightBarButtonItem->action();
    settle();
    EXPECT_TRUE(navigation_->viewControllers().size() > 1 || navigation_->presentedViewController());
}

TEST_F(OverviewScreenTest, APresentedOverviewHasACancelButtonThatDismissesIt) {
    auto host = std::make_shared<uikit::ViewController>();
    window_->setRootViewController(host);
    window_->layoutTree();
    screen_ = CRVHelpCenterUi::buildHelpCenterOverviewController({});
    navigation_ = std::make_shared<uikit::NavigationController>(screen_);
    host->presentViewController(navigation_, false);
    settle();
    ASSERT_TRUE(screen_->navigationItem().leftBarButtonItem);
    EXPECT_EQ(screen_->navigationItem().leftBarButtonItem->accessibilityIdentifier, "CRVcancelButton");
    screen_->navigationItem().leftBarButtonItem->action();
    settle();
    EXPECT_FALSE(host->presentedViewController());

    // Pushed on a stack, the back button does the job.
    auto root = std::make_shared<uikit::ViewController>();
    navigation_ = std::make_shared<uikit::NavigationController>(root);
    window_->setRootViewController(navigation_);
    screen_ = CRVHelpCenterUi::buildHelpCenterOverviewController({});
    navigation_->pushViewController(screen_, false);
    settle();
    EXPECT_FALSE(screen_->navigationItem().leftBarButtonItem);
}

TEST_F(OverviewScreenTest, AnOverviewMadeDirectlyOpensTheArticleScreenItself) {
    CRVHelpCenterOverviewRoutes::shared().articleWithId = nullptr;
    screen_ = std::make_shared<CRVHelpCenterOverviewController>(mirrowset::ConfigurationList{});
    navigation_ = std::make_shared<uikit::NavigationController>(screen_);
    window_->setRootViewController(navigation_);
    window_->layoutTree();
    settle();
    ASSERT_TRUE(tapRow({0, 1}));
    settle();
    ASSERT_EQ(navigation_->viewControllers().size(), 2u);
    auto* article = dynamic_cast<CRVArticleViewController*>(navigation_->topViewController());
    ASSERT_TRUE(article);
    EXPECT_EQ(article->title(), "Installing Orbit Planner");

    // A host's route still wins.
    navigation_->popViewController(false);
    settle();
    CRVHelpCenterOverviewRoutes::shared().articleWithId = [this](std::int64_t id, const auto&, const auto&) {
        openedArticles_.push_back(id);
        return std::make_shared<uikit::ViewController>();
    };
    ASSERT_TRUE(tapRow({0, 1}));
    settle();
    EXPECT_EQ(openedArticles_, std::vector<std::int64_t>{360001});
    EXPECT_FALSE(dynamic_cast<CRVArticleViewController*>(navigation_->topViewController()));
}

TEST_F(OverviewScreenTest, RowsAreLabelledByTheirFormatsAndSectionsDrawAOnePixelSeparator) {
    show();
    settle();
    // The first section of a category has no line above it; a later one has a hairline.
    int sections = 0;
    for (int row = 0; row < table().numberOfRowsInSection(0); ++row) {
        const uikit::IndexPath path{0, row};
        table().scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
        window_->layoutTree();
        const auto cell = table().cellForRow(path);
        if (auto* section = dynamic_cast<CRVHelpCenterOverviewSectionTableViewCell*>(cell.get())) {
            ++sections;
            EXPECT_EQ(section->accessibilityLabel(), "Section: " + section->title->text());
            EXPECT_EQ(section->separatorView->isHidden(), row == 0) << row;
            EXPECT_DOUBLE_EQ(section->separatorHeight, CRVUIUtil::separatorHeightForScreenScale());
            EXPECT_DOUBLE_EQ(section->separatorView->frame().height(), section->separatorHeight);
        } else if (auto* article = dynamic_cast<CRVHelpCenterOverviewArticleTableViewCell*>(cell.get())) {
            EXPECT_EQ(article->accessibilityLabel(), "Article: " + article->title->text());
        }
    }
    EXPECT_GE(sections, 2);

    // A name holding the place marker is not filled again.
    EXPECT_EQ(fillFormat("Article: %@", {"50% %@ off"}), "Article: 50% %@ off");
    EXPECT_EQ(fillFormat("Attachment", {"a.txt"}), "Attachment");
    EXPECT_EQ(fillFormat("%@ and %@", {"one"}), "one and ");
    EXPECT_EQ(attachmentAccessibilityLabel("%@.txt", "2 KB"), "Article attachment: %@.txt. 2 KB");
}
