#include "belvakit/deeplinks/create_request_action_handler.hpp"

#include "belvakit/deeplinks/action_info.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

void CreateRequestActionHandler::handle(const std::map<std::string, std::any>& info) {
    const auto* controller = actionInfoValue<uikit::ViewController::Ptr>(info, "controller");
    const auto* configs = actionInfoValue<mirrowset::ConfigurationList>(info, "configs");
    if (!controller || !*controller || !configs) {
        corvane::CoreLogger::error("ActionInfo dictionary is not formatted correctly. Cannot handle Action.");
        return;
    }
    const auto core = corvane::Corvane::instance();
    auto container = RequestContainerController::make(
        std::nullopt, *configs, core ? std::optional(core->storeModule()) : std::nullopt);
    (*controller)->presentViewController(std::make_shared<uikit::NavigationController>(container), true);
    corvane::CoreLogger::debug("Deeplinking to Create Request screen via action handler");
}

bool CreateRequestActionHandler::isEqual(const corvane::ActionHandler& other) const {
    const auto* handler = dynamic_cast<const CreateRequestActionHandler*>(&other);
    return handler && handler->actionName == actionName;
}

} // namespace belvakit
