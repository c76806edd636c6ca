#include "belvakit/entry/Coordinator/help_center_contact_us_router.hpp"

#include "belvakit/entry/request_ui.hpp"
#include "corvane/core_logger.hpp"
#include "uikit/navigation_controller.hpp"

#include <mutex>

namespace belvakit {

namespace {
std::mutex builderMutex;
HelpCenterContactUsRouter::MessagingScreenBuilder& installedBuilder() {
    static HelpCenterContactUsRouter::MessagingScreenBuilder builder;
    return builder;
}
} // namespace

void HelpCenterContactUsRouter::setMessagingScreenBuilder(MessagingScreenBuilder builder) {
    std::lock_guard lock(builderMutex);
    installedBuilder() = std::move(builder);
}

HelpCenterContactUsRouter::MessagingScreenBuilder HelpCenterContactUsRouter::messagingScreenBuilder() {
    std::lock_guard lock(builderMutex);
    return installedBuilder();
}

void HelpCenterContactUsRouter::decideButtonActionForNavBar() const { decide(); }

void HelpCenterContactUsRouter::decideButtonActionForEmptySearch() const { decide(); }

void HelpCenterContactUsRouter::decide() const {
    if (engines.empty()) {
        corvane::CoreLogger::debug("Presenting Request List UI");
        show(RequestUi::buildRequestList(configurations));
        return;
    }
    corvane::CoreLogger::debug("Presenting Messaging screen");
    const auto builder = messagingScreenBuilder();
    if (!builder) {
        corvane::CoreLogger::error("No messaging screen is installed; the engines cannot be shown");
        return;
    }
    show(builder(engines, configurations));
}

void HelpCenterContactUsRouter::show(const uikit::ViewController::Ptr& screen) const {
    const auto presenting = presentingViewController.lock();
    if (!presenting || !screen) return;
    if (auto* navigation = presenting->navigationController()) {
        navigation->pushViewController(screen, true);
        return;
    }
    presenting->presentViewController(std::make_shared<uikit::NavigationController>(screen), true);
}

} // namespace belvakit
