#pragma once

#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"
#include "dastrel/help_center.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace belvakit {

class CRVArticleViewController;
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

    // An article screen for an article in hand, or for an article id.
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticle(const dastrel::CRVHelpCenterArticle& article);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                            mirrowset::ConfigurationList andConfigs);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleWithArticleId(const std::string& articleId);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleWithArticleId(const std::string& articleId,
                                                                                         mirrowset::ConfigurationList andConfigs);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleWithArticleId(std::int64_t articleId);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleWithArticleId(std::int64_t articleId,
                                                                                         mirrowset::ConfigurationList andConfigs);
    // Older names.
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleUi(const dastrel::CRVHelpCenterArticle& article);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleUi(const dastrel::CRVHelpCenterArticle& article,
                                                                              mirrowset::ConfigurationList andConfigs);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleUiWithArticleId(const std::string& articleId);
    static std::shared_ptr<CRVArticleViewController> buildHelpCenterArticleUiWithArticleId(const std::string& articleId,
                                                                                           mirrowset::ConfigurationList andConfigs);
};

} // namespace belvakit
