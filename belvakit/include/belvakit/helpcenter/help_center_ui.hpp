#pragma once

#include "dastrel/help_center.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace belvakit {

class CRVArticleViewController;
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
