#include "belvakit/deeplinks/help_center_action_handler.hpp"

#include "belvakit/deeplinks/action_info.hpp"
#include "belvakit/deeplinks/help_center_link.hpp"
#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "platform/url.hpp"

namespace belvakit {

std::shared_ptr<HelpCenterActionHandler> HelpCenterActionHandler::forCurrentAccount() {
    const auto core = corvane::Corvane::instance();
    return core ? std::make_shared<HelpCenterActionHandler>(core->accountDetails().accountUrl) : nullptr;
}

bool HelpCenterActionHandler::canHandle(const std::string& actionName) const {
    return platform::URL::parse(actionName) && actionName.starts_with(accountUrl);
}

void HelpCenterActionHandler::handle(const std::map<std::string, std::any>& info) {
    const auto* url = actionInfoValue<platform::URL>(info, "url");
    if (!url) return;
    const auto* controller = actionInfoValue<uikit::ViewController::Ptr>(info, "controller");
    const auto* configs = actionInfoValue<mirrowset::ConfigurationList>(info, "configs");
    if (!controller || !*controller || !configs) return;
    const auto articleId = parseHelpCenterArticleId(url->absoluteString(), accountUrl);
    if (!articleId) return;
    if (helpCenterStarter) {
        helpCenterStarter(*articleId, *controller, *configs);
        return;
    }
    (*controller)->showViewController(
        CRVHelpCenterUi::buildHelpCenterArticleUiWithArticleId(std::to_string(*articleId), *configs));
}

bool HelpCenterActionHandler::isEqual(const corvane::ActionHandler& other) const {
    const auto* handler = dynamic_cast<const HelpCenterActionHandler*>(&other);
    return handler && handler->accountUrl == accountUrl;
}

} // namespace belvakit
