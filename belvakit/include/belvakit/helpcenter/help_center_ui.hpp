#pragma once

#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <memory>

namespace belvakit {

class CRVHelpCenterOverviewController;

// The host's factories of Help Center screens.
class CRVHelpCenterUi {
public:
    CRVHelpCenterUi() = delete;

    static std::shared_ptr<CRVHelpCenterOverviewController> buildHelpCenterOverview();
    static std::shared_ptr<CRVHelpCenterOverviewController> buildHelpCenterOverviewWithConfigs(mirrowset::ConfigurationList configs);
    // Older names.
    static std::shared_ptr<CRVHelpCenterOverviewController> buildHelpCenterOverviewUi() { return buildHelpCenterOverview(); }
    static std::shared_ptr<CRVHelpCenterOverviewController> buildHelpCenterOverviewUiWithConfigs(mirrowset::ConfigurationList configs) {
        return buildHelpCenterOverviewWithConfigs(std::move(configs));
    }
};

} // namespace belvakit
