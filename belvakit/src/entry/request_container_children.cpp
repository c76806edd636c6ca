#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/entry/request_container_controller.hpp"

namespace belvakit {

// The conversation is wired in here when it is part of the library; until then the container
// logs that it could not make it.
RequestContainerController::ConversationScreenBuilder RequestContainerController::defaultConversationScreenBuilder() {
    return nullptr;
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
