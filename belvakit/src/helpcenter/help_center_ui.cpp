#include "belvakit/helpcenter/help_center_ui.hpp"

#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"

namespace belvakit {

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterUi::buildHelpCenterOverview() {
    return buildHelpCenterOverviewWithConfigs({});
}

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterUi::buildHelpCenterOverviewWithConfigs(
    mirrowset::ConfigurationList configs) {
    installArticleRoutes();
    return std::make_shared<CRVHelpCenterOverviewController>(std::move(configs));
}

} // namespace belvakit
