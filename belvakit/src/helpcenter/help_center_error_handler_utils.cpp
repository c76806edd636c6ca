#include "belvakit/helpcenter/help_center_error_handler_utils.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"

namespace belvakit {

namespace {

// The retry buttons hold the screen weakly: the toast lives in the screen's own view.
std::function<void()> retry(const std::shared_ptr<CRVHelpCenterOverviewController>& controller,
                            std::function<void(CRVHelpCenterOverviewController&)> then) {
    std::weak_ptr<CRVHelpCenterOverviewController> weak = controller;
    return [weak, then = std::move(then)] {
        auto strong = weak.lock();
        if (!strong) return;
        strong->loadingSpinner->startAnimating();
        strong->tableView->setHidden(true);
        then(*strong);
    };
}

} // namespace

void CRVHelpCenterErrorHandlerUtils::handleError(const dastrel::ProviderError& error,
                                                 const std::shared_ptr<CRVHelpCenterOverviewController>& inViewController) {
    if (!inViewController) return;
    const bool noResults = error.code == dastrel::CRVHelpCenterErrorNoCategories ||
                           error.code == dastrel::CRVHelpCenterErrorNoSections ||
                           error.code == dastrel::CRVHelpCenterErrorNoArticlesForLabels;
    if (noResults) return showToastForNoResultsIn(inViewController);
    showToastforContactIssueIn(inViewController);
}

void CRVHelpCenterErrorHandlerUtils::showToastForNoResultsIn(const std::shared_ptr<CRVHelpCenterOverviewController>& controller) {
    controller->loadingSpinner->stopAnimating();
    controller->toastWrapper->showErrorInViewController(
        controller, localized(LocalizedKey::helpCenterNoArticlesTitle), localized(LocalizedKey::helpCenterToastRetryButton),
        retry(controller, [](CRVHelpCenterOverviewController& screen) { screen.fetchTableData(); }));
}

void CRVHelpCenterErrorHandlerUtils::showToastforContactIssueIn(const std::shared_ptr<CRVHelpCenterOverviewController>& controller) {
    controller->loadingSpinner->stopAnimating();
    controller->toastWrapper->showErrorInViewController(
        controller, errorMessageForToast(), localized(LocalizedKey::helpCenterToastRetryButton),
        retry(controller, [](CRVHelpCenterOverviewController& screen) {
            std::weak_ptr<CRVHelpCenterOverviewController> weak =
                std::static_pointer_cast<CRVHelpCenterOverviewController>(screen.shared_from_this());
            screen.fetchSettingsWithCompletionBlock([weak](bool enabled, std::optional<std::string>) {
                auto strong = weak.lock();
                if (!strong) return;
                strong->isConversationsEnabled = enabled;
                strong->setupNavBar();
                strong->provider = dastrel::CRVHelpCenterProvider::make();
                strong->fetchTableData();
            });
        }));
}

const std::string& CRVHelpCenterErrorHandlerUtils::errorMessageForToast() {
    return localized(LocalizedKey::helpCenterSupportContactError);
}

dastrel::ProviderError CRVHelpCenterErrorHandlerUtils::buildErrorForEmptyReturnForHelpCenterModel(
    const dastrel::CRVHelpCenterOverviewContentModel& model) {
    using GroupType = dastrel::CRVHelpCenterOverviewGroupType;
    const auto error = [](long code, const char* text) { return dastrel::ProviderError{dastrel::CRVHelpCenterErrorDomain, code, text}; };
    switch (model.groupType) {
    case GroupType::none:
        if (model.labels && !model.labels->empty())
            return error(dastrel::CRVHelpCenterErrorNoArticlesForLabels, CRVHelpCenterNoArticlesForLabelsDescription);
        return error(dastrel::CRVHelpCenterErrorEmptyHelpCenter, CRVHelpCenterEmptyHelpCenterDescription);
    case GroupType::section: return error(dastrel::CRVHelpCenterErrorNoSections, CRVHelpCenterNoSectionsLocalisedDescription);
    case GroupType::category: return error(dastrel::CRVHelpCenterErrorNoCategories, CRVHelpCenterNoCategoriesLocalisedDescription);
    }
    return error(dastrel::CRVHelpCenterErrorEmptyHelpCenter, CRVHelpCenterEmptyHelpCenterDescription);
}

} // namespace belvakit
