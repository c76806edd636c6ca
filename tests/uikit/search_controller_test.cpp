#include "test_support.hpp"
#include "uikit/probe.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace uikit;

namespace {

class Results : public ViewController {
public:
    int appeared = 0;
    int disappeared = 0;
    void viewWillAppear(bool) override { ++appeared; }
    void viewDidDisappear(bool) override { ++disappeared; }
};

TEST(SearchBarTest, TellsItsDelegateOfTypingSearchingAndCancelling) {
    testing_support::VirtualTime time;
    auto window = std::make_shared<Window>();
    auto bar = make<SearchBar>();
    window->addSubview(bar);
    std::vector<std::string> events;
    bar->textDidBeginEditing = [&] { events.push_back("begin"); };
    bar->textDidChange = [&](const std::string& text) { events.push_back("change " + text); };
    bar->searchButtonClicked = [&] { events.push_back("search " + bar->text()); };
    bar->cancelButtonClicked = [&] { events.push_back("cancel"); };
    bar->setText("set by code");
    EXPECT_TRUE(events.empty());
    bar->setText("");
    typeText(*bar->textField(), "ab\b\n");
    EXPECT_EQ(events, (std::vector<std::string>{"begin", "change a", "change ab", "change a", "search a"}));

    events.clear();
    EXPECT_FALSE(isShown(*bar->cancelButton()));
    bar->setShowsCancelButton(true);
    bar->layoutIfNeeded();
    EXPECT_TRUE(tap(*bar->cancelButton()));
    EXPECT_EQ(events, (std::vector<std::string>{"cancel"}));
    // Without a search controller the bar leaves its text to its owner.
    EXPECT_EQ(bar->text(), "a");
    EXPECT_LE(bar->textField()->frame().maxX(), bar->cancelButton()->frame().minX());
}

class SearchControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        screen->setTitle("Help");
        screen->navigationItem().searchController = search;
        search->setSearchResultsUpdater([this](SearchController& controller) {
            updates.push_back(controller.searchBar()->text() + (controller.isActive() ? "" : " (inactive)"));
        });
        window->setRootViewController(navigation);
        window->makeKeyAndVisible();
        window->layoutTree();
    }

    testing_support::VirtualTime time;
    std::shared_ptr<Window> window = std::make_shared<Window>();
    std::shared_ptr<Results> results = std::make_shared<Results>();
    std::shared_ptr<SearchController> search = std::make_shared<SearchController>(results);
    std::shared_ptr<ViewController> screen = std::make_shared<ViewController>();
    std::shared_ptr<NavigationController> navigation = std::make_shared<NavigationController>(screen);
    std::vector<std::string> updates;
};

TEST_F(SearchControllerTest, TheBarShowsUnderTheTitleAndKeepsScreensBelowIt) {
    const auto& bar = navigation->navigationBar();
    EXPECT_EQ(search->searchBar()->superview(), bar.get());
    EXPECT_EQ(bar->frame().height(), 20 + 44 + 56);
    EXPECT_EQ(search->searchBar()->frame(), (Rect{0, 64, 375, 56}));
    EXPECT_EQ(screen->safeAreaInsets().top, 120);

    // A pushed screen without a search controller takes the bar back.
    navigation->pushViewController(std::make_shared<ViewController>(), false);
    window->layoutTree();
    EXPECT_EQ(search->searchBar()->superview(), nullptr);
    EXPECT_EQ(bar->frame().height(), 64);
}

TEST_F(SearchControllerTest, TappingTheFieldPresentsTheSearchAndCancelEndsIt) {
    const auto& bar = navigation->navigationBar();
    ASSERT_TRUE(tap(*search->searchBar()->textField()));
    window->layoutTree();
    EXPECT_TRUE(search->isActive());
    EXPECT_EQ(window->topViewController(), search.get());
    EXPECT_EQ(results->appeared, 1);
    EXPECT_TRUE(search->searchBar()->showsCancelButton());
    // The bar gives up its title row; the search lies under the search bar.
    EXPECT_EQ(bar->frame().height(), 20 + 56);
    EXPECT_FALSE(isShown(*bar->titleLabel()));
    EXPECT_EQ(search->view()->frame().minY(), 76);
    // Results wait for text; the background is dimmed meanwhile.
    EXPECT_FALSE(isShown(*results->view()));
    EXPECT_TRUE(isShown(*findByIdentifier(*search->view(), "SearchDimmingView")));
    EXPECT_EQ(updates, (std::vector<std::string>{""}));

    typeText(*search->searchBar()->textField(), "wifi");
    EXPECT_EQ(updates, (std::vector<std::string>{"", "w", "wi", "wif", "wifi"}));
    EXPECT_TRUE(isShown(*results->view()));

    ASSERT_TRUE(tap(*search->searchBar()->cancelButton()));
    window->layoutTree();
    EXPECT_FALSE(search->isActive());
    EXPECT_EQ(window->topViewController(), navigation.get());
    EXPECT_EQ(results->disappeared, 1);
    EXPECT_EQ(search->searchBar()->text(), "");
    EXPECT_FALSE(search->searchBar()->textField()->isFirstResponder());
    EXPECT_FALSE(search->searchBar()->showsCancelButton());
    EXPECT_EQ(updates.back(), " (inactive)");
    EXPECT_EQ(bar->frame().height(), 20 + 44 + 56);
    EXPECT_TRUE(isShown(*bar->titleLabel()));
}

TEST_F(SearchControllerTest, TheUpdaterHasTheLastWordOnTheResultsAndTheDimmingEndsTheSearch) {
    search->hidesNavigationBarDuringPresentation = false;
    search->setSearchResultsUpdater([this](SearchController&) { results->view()->setHidden(false); });
    search->setActive(true);
    window->layoutTree();
    EXPECT_TRUE(isShown(*results->view()));
    EXPECT_EQ(navigation->navigationBar()->frame().height(), 120);
    EXPECT_EQ(search->view()->frame().minY(), 120);

    search->setSearchResultsUpdater({});
    results->view()->setHidden(true);
    ASSERT_TRUE(tapAt(*window, {100, 400}));
    EXPECT_FALSE(search->isActive());
}

TEST_F(SearchControllerTest, AnActiveSearchStepsAsideForAPushedScreenAndComesBackWithItsBar) {
    ASSERT_TRUE(tap(*search->searchBar()->textField()));
    typeText(*search->searchBar()->textField(), "wifi");
    window->layoutTree();
    ASSERT_TRUE(isShown(*results->view()));

    auto pushed = std::make_shared<ViewController>();
    navigation->pushViewController(pushed, false);
    window->layoutTree();
    EXPECT_TRUE(search->isActive());
    EXPECT_FALSE(isShown(*search->view()));
    const Rect shown = pushed->view()->convert(pushed->view()->bounds(), nullptr);
    EXPECT_EQ(window->hitTest({shown.midX(), shown.midY()}), pushed->view().get());

    navigation->popViewController(false);
    window->layoutTree();
    EXPECT_TRUE(search->isActive());
    EXPECT_TRUE(isShown(*results->view()));
    EXPECT_EQ(search->view()->frame().minY(), 76);
    EXPECT_EQ(search->searchBar()->text(), "wifi");
}

} // namespace
