#include "belvakit/helpcenter/help_center_ui.hpp"

#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"

namespace belvakit {

std::shared_ptr<CoordinatingViewController> CRVHelpCenterUi::buildHelpCenterOverview() {
    return buildHelpCenterOverviewWithConfigs({});
}

std::shared_ptr<CoordinatingViewController> CRVHelpCenterUi::buildHelpCenterOverviewWithConfigs(mirrowset::ConfigurationList configs) {
    auto overview = buildHelpCenterOverviewController(configs);
    return buildCoordinatorWithHelpCenter(overview, std::move(configs));
}

std::shared_ptr<CoordinatingViewController> CRVHelpCenterUi::buildCoordinatorWithHelpCenter(
    const std::shared_ptr<CRVHelpCenterOverviewController>& helpCenter, mirrowset::ConfigurationList configs) {
    auto coordinator = std::make_shared<HelpCenterCoordinator>(helpCenter, std::move(configs));
    auto container = std::make_shared<CoordinatingViewController>(coordinator);
    // The overview's title, search bar and buttons go on the container's bar.
    if (helpCenter) helpCenter->childDelegate = std::static_pointer_cast<CRVContainerChildControllerDelegate>(container);
    return container;
}

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterUi::buildHelpCenterOverviewController(
    mirrowset::ConfigurationList configs) {
    installArticleRoutes();
    return std::make_shared<CRVHelpCenterOverviewController>(std::move(configs));
}

} // namespace belvakit
