// The article factories of CRVHelpCenterUi.
#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"

namespace belvakit {

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticle(const dastrel::CRVHelpCenterArticle& article) {
    return buildHelpCenterArticle(article, {});
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                                  mirrowset::ConfigurationList andConfigs) {
    return CRVArticleViewController::initWithArticle(article, std::move(andConfigs));
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(const std::string& articleId) {
    return buildHelpCenterArticleWithArticleId(articleId, {});
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(const std::string& articleId,
                                                                                               mirrowset::ConfigurationList andConfigs) {
    return CRVArticleViewController::initWithArticleId(articleId, std::move(andConfigs));
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(std::int64_t articleId) {
    return buildHelpCenterArticleWithArticleId(std::to_string(articleId), {});
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(std::int64_t articleId,
                                                                                               mirrowset::ConfigurationList andConfigs) {
    return buildHelpCenterArticleWithArticleId(std::to_string(articleId), std::move(andConfigs));
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleUi(const dastrel::CRVHelpCenterArticle& article) {
    return buildHelpCenterArticle(article);
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleUi(const dastrel::CRVHelpCenterArticle& article,
                                                                                    mirrowset::ConfigurationList andConfigs) {
    return buildHelpCenterArticle(article, std::move(andConfigs));
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleUiWithArticleId(const std::string& articleId) {
    return buildHelpCenterArticleWithArticleId(articleId);
}

std::shared_ptr<CRVArticleViewController> CRVHelpCenterUi::buildHelpCenterArticleUiWithArticleId(
    const std::string& articleId, mirrowset::ConfigurationList andConfigs) {
    return buildHelpCenterArticleWithArticleId(articleId, std::move(andConfigs));
}

} // namespace belvakit
