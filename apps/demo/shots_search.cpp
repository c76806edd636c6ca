#include "shots_search.hpp"

#include "belvakit/entry/support_ui.hpp"
#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "dastrel/help_center_provider.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <filesystem>

namespace belvademo {

namespace {

using namespace belvakit;

struct Setup {
    // Typed into the search bar once the screen shows; a trailing "\n" is the search button.
    std::string typed;
    platform::Duration latency{};
    bool landscape = false;
};

// The overview's half of search, on a Help Center screen: the search bar in its navigation item,
// the query on the keyboard's search button, and the results screen under the bar.
class SearchScreen final : public uikit::ViewController, public CRVHelpCenterSearchResultViewControllerDelegate {
public:
    explicit SearchScreen(std::shared_ptr<sandbox::HelpDesk> desk) : desk_(std::move(desk)) {}

    void viewDidLoad() override {
        setTitle("Help Center");
        view()->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->secondaryBackgroundColor);
        auto self = std::static_pointer_cast<SearchScreen>(shared_from_this());
        results = CRVHelpCenterSearchResultViewController::make();
        results->delegate = self;
        searchController = std::make_shared<uikit::SearchController>(results);
        std::weak_ptr<CRVHelpCenterSearchResultViewController> weakResults = results;
        searchController->setSearchResultsUpdater([weakResults](uikit::SearchController& controller) {
            if (const auto strong = weakResults.lock()) strong->updateSearchResultsForSearchController(controller);
        });
        std::weak_ptr<SearchScreen> weakSelf = self;
        searchController->searchBar()->searchButtonClicked = [weakSelf] {
            if (const auto strong = weakSelf.lock()) strong->search();
        };
        searchController->searchBar()->setPlaceholder("Search");
        navigationItem().searchController = searchController;
    }

    void search() {
        results->searchControllerStartedSearch(*searchController);
        dastrel::CRVHelpCenterSearch query;
        query.setQuery(searchController->searchBar()->text());
        query.addSearchContentScope(dastrel::CRVHelpCenterOverviewContentModel::defaultContent());
        auto keep = std::static_pointer_cast<SearchScreen>(shared_from_this());
        dastrel::CRVHelpCenterProvider::make()->searchArticles(query, [keep](auto list, auto) {
            keep->results->searchControllerDidUpdateWithResults(*keep->searchController, list);
        });
    }

    void searchResultControllerDidSelectArticle(uikit::ViewController&, const dastrel::CRVHelpCenterArticle&) override {}
    void searchResultControllerDidSelectContactSupport(uikit::ViewController&) override {}
    bool shouldShowContactOptions() const override { return true; }

    std::shared_ptr<CRVHelpCenterSearchResultViewController> results;
    std::shared_ptr<uikit::SearchController> searchController;

private:
    std::shared_ptr<sandbox::HelpDesk> desk_;
};

GalleryShot searchShot(std::string name, std::string title, double seconds, Setup setup) {
    return {std::move(name), std::move(title), seconds, [setup = std::move(setup)]() -> uikit::ViewController::Ptr {
                const auto storage = std::filesystem::temp_directory_path() / "belva-demo-search-shots";
                auto desk = sandbox::HelpDesk::make({.storageDirectory = storage});
                desk->helpCenter()->setLatency(setup.latency);
                SupportUI::initialize(desk->initializeCorvane(corvane::Identity::createAnonymous()));
                auto screen = std::make_shared<SearchScreen>(desk);
                auto navigation = std::make_shared<uikit::NavigationController>(screen);
                const std::weak_ptr<SearchScreen> weakScreen = screen;
                const std::weak_ptr<uikit::NavigationController> weakNavigation = navigation;
                platform::MainQueue::shared().asyncAfter(platform::milliseconds(50), [weakScreen, weakNavigation, setup] {
                    const auto shown = weakScreen.lock();
                    const auto bar = weakNavigation.lock();
                    if (!shown || !bar || !shown->view()->window()) return;
                    auto* window = shown->view()->window();
                    // Turned only where the shot is the window's own screen, not when opened from the menu.
                    if (setup.landscape && window->rootViewController() == bar)
                        window->setEnvironment(uikit::Environment::phoneLandscape());
                    uikit::typeText(*shown->searchController->searchBar()->textField(), setup.typed);
                    window->layoutTree();
                });
                return navigation;
            }};
}

} // namespace

std::vector<GalleryShot> searchShots() {
    return {
        searchShot("search-results", "Search: results with the term in bold", 1.0, {.typed = "plan\n"}),
        searchShot("search-no-results", "Search: nothing found, with the contact button", 1.0, {.typed = "invoice pdf\n"}),
        searchShot("search-typing", "Search: typing before the first search", 1.0, {.typed = "passw"}),
        searchShot("search-searching", "Search: a search under way", 0.5,
                   {.typed = "sync\n", .latency = platform::seconds(5)}),
        searchShot("search-results-landscape", "Search: results in landscape", 1.0, {.typed = "Plus\n", .landscape = true}),
    };
}

} // namespace belvademo
