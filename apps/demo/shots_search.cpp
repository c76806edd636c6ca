#include "shots_search.hpp"

#include "belvakit/entry/support_ui.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
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

GalleryShot searchShot(std::string name, std::string title, double seconds, Setup setup) {
    return {std::move(name), std::move(title), seconds, [setup = std::move(setup)]() -> uikit::ViewController::Ptr {
                const auto storage = std::filesystem::temp_directory_path() / "belva-demo-search-shots";
                // The help desk of the shot on show; the next shot's takes its place.
                static std::shared_ptr<sandbox::HelpDesk> desk;
                desk = sandbox::HelpDesk::make({.storageDirectory = storage});
                SupportUI::initialize(desk->initializeCorvane(corvane::Identity::createAnonymous()));
                auto overview = CRVHelpCenterUi::buildHelpCenterOverviewController({});
                auto navigation = std::make_shared<uikit::NavigationController>(overview);
                const std::weak_ptr<CRVHelpCenterOverviewController> weakOverview = overview;
                const std::weak_ptr<uikit::NavigationController> weakNavigation = navigation;
                // Once the overview has loaded.
                platform::MainQueue::shared().asyncAfter(platform::milliseconds(200), [weakOverview, weakNavigation, setup] {
                    const auto shown = weakOverview.lock();
                    const auto bar = weakNavigation.lock();
                    if (!shown || !bar || !shown->view()->window()) return;
                    auto* window = shown->view()->window();
                    // Turned only where the shot is the window's own screen, not when opened from the menu.
                    if (setup.landscape && window->rootViewController() == bar)
                        window->setEnvironment(uikit::Environment::phoneLandscape());
                    desk->helpCenter()->setLatency(setup.latency);
                    uikit::typeText(*shown->searchController->searchBar()->textField(), setup.typed);
                    window->layoutTree();
                });
                return navigation;
            }};
}

} // namespace

std::vector<GalleryShot> searchShots() {
    return {
        searchShot("search-results", "Search: results with the term in bold", 1.2, {.typed = "plan\n"}),
        searchShot("search-no-results", "Search: nothing found, with the contact button", 1.2, {.typed = "invoice pdf\n"}),
        searchShot("search-typing", "Search: typing before the first search", 1.2, {.typed = "passw"}),
        searchShot("search-searching", "Search: a search under way", 0.6,
                   {.typed = "sync\n", .latency = platform::seconds(5)}),
        searchShot("search-results-landscape", "Search: results in landscape", 1.2, {.typed = "Plus\n", .landscape = true}),
    };
}

} // namespace belvademo
