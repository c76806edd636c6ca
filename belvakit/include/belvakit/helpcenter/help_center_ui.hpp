#pragma once

#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <memory>

namespace belvakit {

class CRVHelpCenterOverviewController;

// The host's factories of Help Center screens. Each form without configurations passes an empty list.
class CRVHelpCenterUi {
public:
    CRVHelpCenterUi() = delete;

    // The overview behind its coordinator.
    static std::shared_ptr<CoordinatingViewController> buildHelpCenterOverview();
    static std::shared_ptr<CoordinatingViewController> buildHelpCenterOverviewWithConfigs(mirrowset::ConfigurationList configs);
    static std::shared_ptr<CoordinatingViewController> buildCoordinatorWithHelpCenter(
        const std::shared_ptr<CRVHelpCenterOverviewController>& helpCenter, mirrowset::ConfigurationList configs);
    // The overview screen alone, for a host's own container.
    static std::shared_ptr<CRVHelpCenterOverviewController> buildHelpCenterOverviewController(mirrowset::ConfigurationList configs);
    // Older names.
    static std::shared_ptr<CoordinatingViewController> buildHelpCenterOverviewUi() { return buildHelpCenterOverview(); }
    static std::shared_ptr<CoordinatingViewController> buildHelpCenterOverviewUiWithConfigs(mirrowset::ConfigurationList configs) {
        return buildHelpCenterOverviewWithConfigs(std::move(configs));
    }
};

} // namespace belvakit
