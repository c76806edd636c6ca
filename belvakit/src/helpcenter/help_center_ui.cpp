#include "belvakit/helpcenter/help_center_ui.hpp"

#include "belvakit/helpcenter/help_center_overview_controller.hpp"

namespace belvakit {

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterUi::buildHelpCenterOverview() {
    return buildHelpCenterOverviewWithConfigs({});
}

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterUi::buildHelpCenterOverviewWithConfigs(
    mirrowset::ConfigurationList configs) {
    return std::make_shared<CRVHelpCenterOverviewController>(std::move(configs));
}

} // namespace belvakit
