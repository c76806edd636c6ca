// A new user's walk through the Help Center on the embedded help desk, into the ticket side.
#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"
#include "belvakit/helpcenter/article_view.hpp"
#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/article_voting.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/table_view.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

namespace {

using namespace belvakit;

class HelpCenterWalkTest : public ::testing::Test {
protected:
    void SetUp() override {
        core_ = desk_->initializeCorvane(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
        dastrel::Support::initialize(core_);
        CRVHelpCenterOverviewRoutes::shared() = {};
        window_->makeKeyAndVisible();
        overview_ = CRVHelpCenterUi::buildHelpCenterOverviewController({});
        navigation_ = std::make_shared<uikit::NavigationController>(overview_);
        window_->setRootViewController(navigation_);
        settle();
    }
    void TearDown() override {
        window_->setRootViewController(nullptr);
        settle();
        CRVHelpCenterOverviewRoutes::shared() = {};
        corvane::Corvane::reset();
        dastrel::Support::reset();
    }
    void settle(double seconds = 1.0) {
        for (int step = 0; step < static_cast<int>(seconds * 20); ++step) {
            time_.advance(platform::milliseconds(50));
            while (platform::MainQueue::shared().runPending() > 0) {}
            window_->layoutTree();
        }
    }
    uikit::TableView& table() { return *overview_->tableView; }
    bool tapRow(const uikit::IndexPath& path) {
        table().scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
        window_->layoutTree();
        auto cell = table().cellForRow(path);
        return cell && uikit::tap(*cell);
    }
    std::shared_ptr<CRVArticleViewController> topArticle() {
        return std::dynamic_pointer_cast<CRVArticleViewController>(navigation_->viewControllers().back());
    }

    testing_support::VirtualTime time_;
    testing_support::TemporaryDirectory directory_;
    std::shared_ptr<sandbox::HelpDesk> desk_ = sandbox::HelpDesk::make({.storageDirectory = directory_.path()});
    std::shared_ptr<corvane::Corvane> core_;
    std::shared_ptr<uikit::Window> window_ = std::make_shared<uikit::Window>();
    std::shared_ptr<CRVHelpCenterOverviewController> overview_;
    std::shared_ptr<uikit::NavigationController> navigation_;
};

TEST_F(HelpCenterWalkTest, ANewUserBrowsesReadsFollowsALinkVotesSearchesAndReachesSupport) {
    // See all: the first section's row turns into all its articles.
    const auto& model = *overview_->tableHandler->tableViewModel;
    const auto articleCount = [&] {
        std::size_t count = 0;
        for (const auto& category : model.categories())
            for (const auto& section : category.sections) count += section.articles.size();
        return count;
    };
    const auto shownBefore = articleCount();
    std::optional<uikit::IndexPath> seeAll;
    for (int section = 0; section < table().numberOfSections() && !seeAll; ++section)
        for (int row = 0; row < model.numberOfRowsInTableSection(section) && !seeAll; ++row)
            if (model.cellTypeForIndexPath({section, row}) == CRVHelpCenterCellTypeSeeAll) seeAll = uikit::IndexPath{section, row};
    ASSERT_TRUE(seeAll) << "the sample content has a section with more articles than shown";
    ASSERT_TRUE(tapRow(*seeAll));
    settle();
    EXPECT_GT(articleCount(), shownBefore);

    // An article: the first row that opens one.
    for (int section = 0; section < table().numberOfSections(); ++section)
        for (int row = 0; row < table().numberOfRowsInSection(section) && navigation_->viewControllers().size() == 1; ++row) {
            tapRow({section, row});
            settle(0.2);
        }
    settle();
    auto first = topArticle();
    ASSERT_TRUE(first) << "no row of the first category opened an article";
    EXPECT_FALSE(first->title().empty());
    ASSERT_TRUE(first->articleView && first->articleView->articleWebView);

    // A link to another article of the account opens it above the first.
    const auto link = core_->accountDetails().accountUrl + "/hc/en-us/articles/360002-creating-your-account";
    first->articleView->articleWebView->activateLink(link);
    settle(2);
    auto second = topArticle();
    ASSERT_TRUE(second && second != first);
    EXPECT_EQ(second->title(), "Creating your account");
    EXPECT_EQ(navigation_->viewControllers().size(), 3u);

    // A vote reaches the help desk for that article.
    auto* up = uikit::findByIdentifier(*second->view(), "CRVarticleUpVoteButton");
    ASSERT_TRUE(up && uikit::isShown(*up));
    ASSERT_TRUE(uikit::tap(*up));
    settle();
    const auto votes = desk_->helpCenter()->votes();
    ASSERT_EQ(votes.size(), 1u);
    EXPECT_EQ(votes[0].article_id, 360002);
    EXPECT_EQ(votes[0].value, "1");

    // Back on the overview, a search finds articles.
    navigation_->popToRootViewController(false);
    settle();
    auto& field = *overview_->searchController->searchBar()->textField();
    uikit::typeText(field, "account\n");
    settle();
    ASSERT_TRUE(overview_->resultsController);
    EXPECT_TRUE(uikit::isShown(*overview_->resultsController->view()));
    EXPECT_FALSE(uikit::visibleTexts(*overview_->resultsController->view()).empty());

    // Contact from the Help Center leads into the ticket side: the user's requests.
    overview_->searchController->setActive(false);
    settle();
    ASSERT_TRUE(overview_->navItem().rightBarButtonItem);
    overview_->navItem().rightBarButtonItem->action();
    settle(2);
    const auto* shown = navigation_->viewControllers().size() > 1 ? navigation_->viewControllers().back().get()
                                                                   : navigation_->presentedViewController().get();
    ASSERT_TRUE(shown);
    EXPECT_TRUE(dynamic_cast<const CoordinatingViewController*>(shown) ||
                dynamic_cast<const uikit::NavigationController*>(shown));
}

} // namespace
