#pragma once

#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/help_center_provider.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace search_testing {

// Plays the overview's half of search: owns the search bar, queries on the keyboard's search
// button with the content scope, and hears what the results screen selects.
class SearchHost final : public uikit::ViewController, public belvakit::CRVHelpCenterSearchResultViewControllerDelegate {
public:
    void viewDidLoad() override {
        setTitle("Help");
        auto self = std::static_pointer_cast<SearchHost>(shared_from_this());
        results = belvakit::CRVHelpCenterSearchResultViewController::make();
        results->delegate = self;
        searchController = std::make_shared<uikit::SearchController>(results);
        std::weak_ptr<belvakit::CRVHelpCenterSearchResultViewController> weakResults = results;
        searchController->setSearchResultsUpdater([weakResults](uikit::SearchController& controller) {
            if (const auto strong = weakResults.lock()) strong->updateSearchResultsForSearchController(controller);
        });
        searchController->searchBar()->searchButtonClicked = [this] { searchButtonClicked(); };
        navigationItem().searchController = searchController;
    }

    void searchButtonClicked() {
        results->searchControllerStartedSearch(*searchController);
        dastrel::CRVHelpCenterSearch search;
        search.setQuery(searchController->searchBar()->text());
        search.addSearchContentScope(contentModel);
        auto keep = std::static_pointer_cast<SearchHost>(shared_from_this());
        dastrel::CRVHelpCenterProvider::make()->searchArticles(search, [keep](auto list, auto) {
            keep->results->searchControllerDidUpdateWithResults(*keep->searchController, list);
        });
    }

    void searchResultControllerDidSelectArticle(uikit::ViewController&, const dastrel::CRVHelpCenterArticle& article) override {
        opened.push_back(article.identifier);
    }
    void searchResultControllerDidSelectContactSupport(uikit::ViewController&) override { ++contactTaps; }
    bool shouldShowContactOptions() const override { return showContactOptionsOnEmptySearch; }

    std::shared_ptr<belvakit::CRVHelpCenterSearchResultViewController> results;
    std::shared_ptr<uikit::SearchController> searchController;
    dastrel::CRVHelpCenterOverviewContentModel contentModel;
    bool showContactOptionsOnEmptySearch = true;
    std::vector<std::int64_t> opened;
    int contactTaps = 0;
};

// A phone window with the search host on a navigation stack, the embedded help desk as the core's
// providers, and virtual time.
class SearchTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto core = desk->initializeCorvane(corvane::Identity::createAnonymous());
        dastrel::Support::initialize(core);
        window->makeKeyAndVisible();
        window->setRootViewController(navigation);
        window->layoutTree();
        run(0.1);
    }
    void TearDown() override {
        window->setRootViewController(nullptr);
        run(0.5);
        corvane::Corvane::reset();
        dastrel::Support::reset();
    }

    // Moves virtual time on in small strides, running what the main queue is handed on the way.
    void run(double seconds) {
        const int strides = static_cast<int>(std::lround(seconds / 0.05));
        for (int i = 0; i < strides; ++i) {
            while (platform::MainQueue::shared().runPending() > 0) {}
            time.advance(platform::milliseconds(50));
        }
        while (platform::MainQueue::shared().runPending() > 0) {}
        window->layoutTree();
    }

    uikit::TextField& field() { return *host->searchController->searchBar()->textField(); }
    // Types into the search bar; a trailing "\n" is the keyboard's search button.
    void type(const std::string& text) {
        uikit::typeText(field(), text);
        window->layoutTree();
    }
    void search(const std::string& text, double wait = 0.1) {
        field().setText({});
        type(text + "\n");
        run(wait);
    }

    belvakit::CRVHelpCenterSearchResultViewController& results() { return *host->results; }
    bool resultsShown() { return uikit::isShown(*results().view()); }
    std::vector<std::string> rowTitles() {
        std::vector<std::string> titles;
        for (int row = 0; row < results().tableView->numberOfRowsInSection(0); ++row) {
            results().tableView->scrollToRow({0, row}, uikit::TableViewScrollPosition::none, false);
            auto* cell = dynamic_cast<belvakit::CRVHelpCenterSearchResultTableViewCell*>(
                results().tableView->cellForRow({0, row}).get());
            titles.push_back(cell ? cell->articleTitle->text() : "?");
        }
        return titles;
    }
    belvakit::CRVHelpCenterSearchResultTableViewCell* cellAt(int row) {
        results().tableView->scrollToRow({0, row}, uikit::TableViewScrollPosition::none, false);
        return dynamic_cast<belvakit::CRVHelpCenterSearchResultTableViewCell*>(results().tableView->cellForRow({0, row}).get());
    }
    // The titles a help desk with the same content and no switches finds for a term, in its order.
    std::vector<std::string> deskTitles(const std::string& term) {
        auto titles = std::make_shared<std::vector<std::string>>();
        dastrel::CRVHelpCenterSearch query;
        query.setQuery(term);
        reference->helpCenter()->search(query, [titles](auto list, auto) {
            if (list)
                for (const auto& article : *list) titles->push_back(article.title);
        });
        while (platform::MainQueue::shared().runPending() > 0) {}
        return *titles;
    }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    testing_support::TemporaryDirectory directory;
    std::shared_ptr<sandbox::HelpDesk> desk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    testing_support::TemporaryDirectory referenceDirectory;
    std::shared_ptr<sandbox::HelpDesk> reference = sandbox::HelpDesk::make({.storageDirectory = referenceDirectory.path()});
    std::shared_ptr<SearchHost> host = std::make_shared<SearchHost>();
    std::shared_ptr<uikit::NavigationController> navigation = std::make_shared<uikit::NavigationController>(host);
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
};

} // namespace search_testing
