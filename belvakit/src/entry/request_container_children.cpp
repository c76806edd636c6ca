#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "corvane/core_logger.hpp"

namespace belvakit {

RequestContainerController::ConversationScreenBuilder RequestContainerController::defaultConversationScreenBuilder() {
    return [](const ConversationScreenInput& input, RequestContainerController&) -> uikit::ViewController::Ptr {
        if (!input.configuration) {
            corvane::CoreLogger::debug("No configuration found, please use RequestUi to present");
            return nullptr;
        }
        auto conversation = RequestController::make(*input.configuration, input.requestId, input.progressBar,
                                                    input.toastWrapper, input.attachmentsEnabled,
                                                    input.maxAttachmentSize, input.ticketsCache);
        conversation->ticketClosed = input.ticketClosed;
        return conversation;
    };
}

RequestContainerController::CreateRequestScreenBuilder RequestContainerController::defaultCreateRequestScreenBuilder() {
    return [](const CreateRequestScreenInput& input, RequestContainerController& container) -> uikit::ViewController::Ptr {
        auto form = CreateRequestController::make(input.requiresName, input.requiresEmail, input.showReferrerLogo,
                                                  input.referrerUrl.value_or(""), input.attachmentsEnabled,
                                                  input.maxAttachmentSize, input.configs, input.progressBar);
        if (!form) return nullptr;
        const auto self = std::static_pointer_cast<RequestContainerController>(container.shared_from_this());
        form->childDelegate = self;
        form->navigationItemEnabler = self;
        return form;
    };
}

} // namespace belvakit
