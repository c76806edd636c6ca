#pragma once

#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
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

#include <string>
#include <vector>

namespace search_testing {

// A phone window with the Help Center overview on a navigation stack, the embedded help desk as the
// core's providers, and virtual time. Opened articles and the contact button are recorded through
// the overview's routes.
class SearchTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto core = desk->initializeCorvane(corvane::Identity::createAnonymous());
        dastrel::Support::initialize(core);
        auto& routes = belvakit::CRVHelpCenterOverviewRoutes::shared();
        routes = {};
        routes.articleWithArticle = [this](const dastrel::CRVHelpCenterArticle& article, const auto&, const auto&) {
            opened.push_back(article.identifier);
            auto screen = std::make_shared<uikit::ViewController>();
            screen->setTitle(article.title);
            screen->view()->setAccessibilityIdentifier("ArticleStandIn");
            return screen;
        };
        routes.contactUs = [this](const auto&, const auto&, const auto&, bool fromEmptySearch) {
            contacts.push_back(fromEmptySearch);
        };
        window->makeKeyAndVisible();
        overview = belvakit::CRVHelpCenterUi::buildHelpCenterOverviewController({configuration});
        navigation = std::make_shared<uikit::NavigationController>(overview);
        window->setRootViewController(navigation);
        window->layoutTree();
        run(1);
    }
    void TearDown() override {
        window->setRootViewController(nullptr);
        run(0.5);
        belvakit::CRVHelpCenterOverviewRoutes::shared() = {};
        corvane::Corvane::reset();
        dastrel::Support::reset();
    }

    void run(double seconds) {
        time.run(seconds);
        window->layoutTree();
    }

    uikit::SearchController& searchController() { return *overview->searchController; }
    uikit::TextField& field() { return *searchController().searchBar()->textField(); }
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

    belvakit::CRVHelpCenterSearchResultViewController& results() {
        return dynamic_cast<belvakit::CRVHelpCenterSearchResultViewController&>(*overview->resultsController);
    }
    bool resultsShown() { return uikit::isShown(*results().view()); }
    // Shown, and what a tap at its centre reaches.
    bool onTop(uikit::View& view) {
        const auto frame = view.convert(view.bounds(), nullptr);
        const auto* hit = window->hitTest({frame.midX(), frame.midY()});
        return uikit::isShown(view) && hit && hit->isDescendantOf(view);
    }
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
        testing_support::drainMainQueue();
        return *titles;
    }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    testing_support::TemporaryDirectory directory;
    std::shared_ptr<sandbox::HelpDesk> desk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    testing_support::TemporaryDirectory referenceDirectory;
    std::shared_ptr<sandbox::HelpDesk> reference = sandbox::HelpDesk::make({.storageDirectory = referenceDirectory.path()});
    std::shared_ptr<belvakit::HelpCenterUiConfiguration> configuration = std::make_shared<belvakit::HelpCenterUiConfiguration>();
    std::shared_ptr<belvakit::CRVHelpCenterOverviewController> overview;
    std::shared_ptr<uikit::NavigationController> navigation;
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::vector<std::int64_t> opened;
    std::vector<bool> contacts;
};

} // namespace search_testing
