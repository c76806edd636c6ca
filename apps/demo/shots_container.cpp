#include "shots_container.hpp"

#include "belvakit/entry/request_ui.hpp"
#include "corvane/corvane.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"

#include <filesystem>

namespace belvademo {

namespace {

// A help desk of the shot's own, whose settings answer as `prepare` says, made the core's.
std::shared_ptr<sandbox::HelpDesk> shotDesk(const std::function<void(sandbox::SettingsDesk&)>& prepare) {
    const auto storage = std::filesystem::temp_directory_path() / "belva-demo-container-shots";
    auto desk = sandbox::HelpDesk::make({.storageDirectory = storage});
    prepare(*desk->settings());
    desk->initializeCorvane(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
    return desk;
}

GalleryShot containerShot(std::string name, std::string title, double seconds,
                          std::function<void(sandbox::SettingsDesk&)> prepare) {
    return {std::move(name), std::move(title), seconds, [prepare = std::move(prepare)] {
                auto desk = shotDesk(prepare);
                auto container = belvakit::RequestUi::buildRequestUi();
                // The screen keeps its help desk for as long as it lives.
                container->setAssociatedObject("BelvaDemoHelpDesk", desk);
                return std::make_shared<uikit::NavigationController>(container);
            }};
}

} // namespace

std::vector<GalleryShot> containerShots() {
    return {
        containerShot("container-loading", "Request: waiting for settings", 0.6,
                      [](sandbox::SettingsDesk& settings) { settings.setLatency(platform::seconds(60)); }),
        containerShot("container-settings-failed", "Request: settings could not be had", 1.0,
                      [](sandbox::SettingsDesk& settings) { settings.setFailing(true); }),
        containerShot("container-new-request-form", "Request: the form, conversations off", 1.0,
                      [](sandbox::SettingsDesk& settings) {
                          settings.setConversationsEnabled(false);
                          settings.setReferrer(true, "https://belva.example.com");
                      }),
    };
}

} // namespace belvademo
