#pragma once

#include "belvakit/entry/ui_configurations.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>

namespace belvakit {

// Where the Help Center's contact buttons lead: the request list, or the messaging screen with
// the engines the host configured.
class HelpCenterContactUsRouter {
public:
    // The messaging library's screen for a list of engines. The host links that library and
    // installs its screen here; without one the engines path is not available.
    using MessagingScreenBuilder =
        std::function<uikit::ViewController::Ptr(const EngineList& engines, const mirrowset::ConfigurationList&)>;
    static void setMessagingScreenBuilder(MessagingScreenBuilder builder);
    static MessagingScreenBuilder messagingScreenBuilder();

    HelpCenterContactUsRouter(mirrowset::ConfigurationList configurationList,
                              const std::shared_ptr<uikit::ViewController>& presenting, EngineList engineList)
        : configurations(std::move(configurationList)), presentingViewController(presenting), engines(std::move(engineList)) {}

    mirrowset::ConfigurationList configurations;
    std::weak_ptr<uikit::ViewController> presentingViewController;
    EngineList engines;

    // The contact button of the navigation bar.
    void decideButtonActionForNavBar() const;
    // The button under an empty search result: the same decision.
    void decideButtonActionForEmptySearch() const;

private:
    void decide() const;
    // Pushed on the presenting screen's navigation, or presented in a navigation of its own.
    void show(const uikit::ViewController::Ptr& screen) const;
};

using CRVHelpCenterContactUsRouter = HelpCenterContactUsRouter;

} // namespace belvakit
