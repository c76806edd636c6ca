#include "shots_help_center.hpp"

#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <filesystem>

namespace belvademo {

namespace {

// The overview in a navigation on a help desk of its own, which lives as long as the screen. On
// appearing it puts the window in its environment and runs the shot's steps.
class HelpCenterStage final : public uikit::ViewController {
public:
    HelpCenterStage(std::shared_ptr<sandbox::HelpDesk> desk, std::shared_ptr<belvakit::CRVHelpCenterOverviewController> overview,
                    std::optional<uikit::Environment> environment,
                    std::function<void(belvakit::CRVHelpCenterOverviewController&)> steps)
        : desk_(std::move(desk)), overview_(std::move(overview)),
          navigation_(std::make_shared<uikit::NavigationController>(overview_)), environment_(environment),
          steps_(std::move(steps)) {}
    ~HelpCenterStage() override { desk_->helpCenter()->setOffline(false); }

    void viewDidLoad() override {
        addChildViewController(navigation_);
        view()->addSubview(navigation_->view());
        navigation_->didMoveToParentViewController(this);
    }
    void viewDidLayoutSubviews() override { navigation_->view()->setFrame(view()->bounds()); }

    void viewDidAppear(bool animated) override {
        uikit::ViewController::viewDidAppear(animated);
        if (auto* window = view()->window(); window && environment_) window->setEnvironment(*environment_);
        if (!steps_) return;
        std::weak_ptr<belvakit::CRVHelpCenterOverviewController> overview = overview_;
        // After the overview has loaded.
        platform::MainQueue::shared().asyncAfter(platform::seconds(1), [overview, steps = std::move(steps_)] {
            if (auto screen = overview.lock()) steps(*screen);
        });
    }

private:
    std::shared_ptr<sandbox::HelpDesk> desk_;
    std::shared_ptr<belvakit::CRVHelpCenterOverviewController> overview_;
    std::shared_ptr<uikit::NavigationController> navigation_;
    std::optional<uikit::Environment> environment_;
    std::function<void(belvakit::CRVHelpCenterOverviewController&)> steps_;
};

struct Stage {
    std::function<void(sandbox::HelpCenterDesk&)> prepare;
    mirrowset::ConfigurationList configs;
    std::optional<uikit::Environment> environment;
    std::function<void(belvakit::CRVHelpCenterOverviewController&)> steps;
};

uikit::ViewController::Ptr stage(Stage setup) {
    const auto storage = std::filesystem::temp_directory_path() / "belva-demo-help-center";
    std::error_code ignored;
    std::filesystem::remove_all(storage, ignored);
    auto desk = sandbox::HelpDesk::make({.storageDirectory = storage});
    desk->initializeCorvane(corvane::Identity::createAnonymous("Demo User", "demo@example.com"));
    desk->helpCenter()->setLatency(platform::milliseconds(300));
    if (setup.prepare) setup.prepare(*desk->helpCenter());
    auto overview = belvakit::CRVHelpCenterUi::buildHelpCenterOverviewController(std::move(setup.configs));
    return std::make_shared<HelpCenterStage>(desk, overview, setup.environment, std::move(setup.steps));
}

// Three articles a section, so that sections with more show See all.
mirrowset::ConfigurationList threeArticles() {
    auto configuration = std::make_shared<belvakit::HelpCenterUiConfiguration>();
    configuration->overviewContentModel.initialNumberOfArticles = 3;
    return {configuration};
}

// Taps See all of the first section that has one, scrolled into view.
void expandFirstSeeAll(belvakit::CRVHelpCenterOverviewController& screen) {
    auto& table = *screen.tableView;
    const auto& model = *screen.tableHandler->tableViewModel;
    for (int section = 0; section < model.numberOfTableSecitons(); ++section)
        for (int row = 0; row < model.numberOfRowsInTableSection(section); ++row)
            if (model.cellTypeForIndexPath({section, row}) == belvakit::CRVHelpCenterCellTypeSeeAll) {
                const uikit::IndexPath path{section, row};
                table.scrollToRow(path, uikit::TableViewScrollPosition::middle, false);
                table.layoutIfNeeded();
                if (auto cell = table.cellForRow(path)) table.didTapCell(*cell);
                return;
            }
}

} // namespace

std::vector<GalleryShot> helpCenterShots() {
    std::vector<GalleryShot> shots;
    shots.push_back({"hc-overview", "Help Center overview", 1.5, [] { return stage({.configs = threeArticles()}); }});
    shots.push_back({"hc-overview-see-all", "Help Center, a section after See all", 2.5,
                     [] { return stage({.configs = threeArticles(), .steps = expandFirstSeeAll}); }});
    shots.push_back({"hc-overview-empty", "Help Center, no articles with the labels", 1.5, [] {
                         auto labels = std::make_shared<belvakit::HelpCenterUiConfiguration>();
                         labels->setLabels(std::vector<std::string>{"no-such-label"});
                         return stage({.configs = {labels}});
                     }});
    shots.push_back({"hc-overview-error", "Help Center, the help desk failed", 1.5,
                     [] { return stage({.prepare = [](sandbox::HelpCenterDesk& desk) { desk.failNext(1); }}); }});
    shots.push_back({"hc-overview-offline", "Help Center offline", 1.5,
                     [] { return stage({.prepare = [](sandbox::HelpCenterDesk& desk) { desk.setOffline(true); }}); }});
    shots.push_back({"hc-overview-landscape", "Help Center in landscape", 2.5,
                     [] { return stage({.environment = uikit::Environment::phoneLandscape(), .steps = expandFirstSeeAll}); }});
    shots.push_back({"hc-overview-tablet", "Help Center on a tablet", 1.5,
                     [] { return stage({.environment = uikit::Environment::tablet()}); }});
    return shots;
}

} // namespace belvademo
