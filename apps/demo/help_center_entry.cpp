// The Help Center's factories join the library screen by screen; the demo offers each as it comes.
#include "help_center_entry.hpp"

#if __has_include("belvakit/helpcenter/help_center_ui.hpp")
#include "belvakit/helpcenter/help_center_ui.hpp"
#define BELVA_DEMO_HELP_CENTER 1
#endif
#if __has_include("belvakit/helpcenter/article_view_controller.hpp")
#include "belvakit/helpcenter/article_view_controller.hpp"
#define BELVA_DEMO_HELP_CENTER_ARTICLE 1
#endif
#if __has_include("belvakit/helpcenter/help_center_overview_controller.hpp")
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#endif

#include <string>

namespace belvademo {

bool helpCenterAvailable() {
#ifdef BELVA_DEMO_HELP_CENTER
    return true;
#else
    return false;
#endif
}

bool helpCenterArticlesAvailable() {
#ifdef BELVA_DEMO_HELP_CENTER_ARTICLE
    return true;
#else
    return false;
#endif
}

uikit::ViewController::Ptr buildHelpCenter() {
#ifdef BELVA_DEMO_HELP_CENTER
    return belvakit::CRVHelpCenterUi::buildHelpCenterOverview();
#else
    return nullptr;
#endif
}

uikit::ViewController::Ptr buildHelpCenterArticle(std::int64_t articleId) {
#ifdef BELVA_DEMO_HELP_CENTER_ARTICLE
    return belvakit::CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(std::to_string(articleId));
#else
    (void)articleId;
    return nullptr;
#endif
}

} // namespace belvademo
