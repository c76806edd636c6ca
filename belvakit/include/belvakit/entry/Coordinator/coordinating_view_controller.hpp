#pragma once

#include "belvakit/entry/Coordinator/container_view_controller.hpp"
#include "belvakit/entry/Coordinator/coordinator.hpp"
#include "belvakit/entry/container_child_delegate.hpp"
#include "platform/color.hpp"
#include "uikit/image_view.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace belvakit {

// What a host gets for a coordinated flow: a spinner until the coordinator names the first
// screen, then that screen, with its title and bar buttons on this screen's bar.
class CoordinatingViewController : public ContainerViewController, public CRVContainerChildControllerDelegate {
public:
    explicit CoordinatingViewController(std::shared_ptr<CRVCoordinator> coordinator);
    std::string_view className() const override { return "CoordinatingViewController"; }

    std::shared_ptr<CRVCoordinator> coordinator;
    std::shared_ptr<uikit::ActivityIndicatorView> spinner;
    // The navigation view's own colour while the child's shows behind the bar.
    std::optional<platform::Color> navControllerViewColor;
    std::weak_ptr<uikit::View> navControllerView;

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;

    uikit::NavigationItem& navItem() override { return navigationItem(); }
    void willDismiss() override;

    // Whether the coordinator's latest start has not answered yet.
    bool isStarting() const { return startsAnswered_ < startsAsked_; }

private:
    // Shows the child's title and bar buttons as this screen's.
    void adoptNavigationItem(const uikit::ViewController& child);
    // Numbers the starts, one for each appearance, and the latest one whose answer was taken.
    std::uint64_t startsAsked_ = 0;
    std::uint64_t startsAnswered_ = 0;
};

using CRVCoordinatingViewController = CoordinatingViewController;

} // namespace belvakit
