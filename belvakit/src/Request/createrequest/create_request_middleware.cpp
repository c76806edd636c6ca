#include "belvakit/Request/createrequest/create_request_middleware.hpp"

#include "belvakit/Request/conversation/local_messages.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "corvane/core_logger.hpp"
#include "platform/serial_queue.hpp"
#include "platform/trimming.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

namespace belvakit {

namespace {

// The trimmed text when the form asked for it and it holds something; absent otherwise.
std::optional<std::string> askedFor(bool required, const std::string& text) {
    if (!required) return std::nullopt;
    std::string trimmed = platform::trimmingWhitespaceAndNewlines(text);
    if (trimmed.empty()) return std::nullopt;
    return trimmed;
}

} // namespace

void CreateRequestMiddleware::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                       const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    const auto* send = tivra::actionAs<CreateRequestActions::SendPressed>(action);
    if (!send) {
        next(action);
        return;
    }
    const tivra::State state = getState();
    const auto* form = state.value<CreateRequestState>(tivra::stateKeyOf<CreateRequestState>());
    if (!form) {
        next(action);
        return;
    }

    // The slice may be another form's, opened over this one: the sender's fields are then all it
    // asked for, since a form sends no text for a field it does not show.
    const bool ownSlice = form->formId == send->formId;
    updateIdentityFromForm(corvane::Corvane::instance(), askedFor(!ownSlice || form->requiresName, send->name),
                           askedFor(!ownSlice || form->requiresEmail, send->email));

    const std::vector<InputAttachmentViewStatePtr> attachments(send->attachments.begin(), send->attachments.end());
    // The form waits for the outcome of the message with its send's id.
    const UserMessage text =
        makeUserMessage(send->description, send->id.empty() ? std::nullopt : std::optional(send->id));
    // The files take a while; a form opened meanwhile must not take this send for its own.
    RequestQueueActions::SendComing coming;
    coming.id = text.id;
    dispatch(coming);
    prepareDispatchDetails(makeLocalMessages(text, attachments), attachments,
                           [dispatch](const RequestQueueActions::DispatchDetails& details) { dispatch(details); });

    next(action);
}

void updateIdentityFromForm(const std::shared_ptr<corvane::Corvane>& core, const std::optional<std::string>& name,
                            const std::optional<std::string>& email) {
    if (!name && !email) return;
    if (!core) return;
    const auto identity = core->identity();
    std::optional<std::string> newName = name;
    std::optional<std::string> newEmail = email;
    if (std::dynamic_pointer_cast<corvane::Jwt>(identity)) {
        corvane::CoreLogger::debug("JWT is set, not updating");
        return;
    }
    if (const auto anonymous = std::dynamic_pointer_cast<corvane::Anonymous>(identity)) {
        corvane::CoreLogger::debug("Anonymous identity found.");
        if (anonymous->name()) corvane::CoreLogger::debug("Found name: " + *anonymous->name() + " in existing identity.");
        if (anonymous->email())
            corvane::CoreLogger::debug("Found email: " + *anonymous->email() + " in existing identity.");
        if (!newName) newName = anonymous->name();
        if (!newEmail) newEmail = anonymous->email();
    }
    corvane::CoreLogger::debug("No conversations screen; Updating identity with: " + newName.value_or("") + " " +
                               newEmail.value_or(""));
    core->setIdentity(corvane::Identity::createAnonymous(newName, newEmail));
}

void prepareDispatchDetails(std::vector<Message> messages, std::vector<InputAttachmentViewStatePtr> attachments,
                            std::function<void(const RequestQueueActions::DispatchDetails&)> dispatchDetails) {
    if (messages.empty() || !dispatchDetails) return;
    const auto* text = messages.front().getIf<UserMessage>();
    if (!text) return;
    RequestQueueActions::DispatchDetails details;
    details.id = text->id;
    details.body = text->body;
    // Encoding files takes time, so no send is prepared on the main thread. One serial queue keeps
    // the sends in the order they were pressed, which is the order the send queue runs them in.
    static const platform::SerialQueue preparing("CreateRequestPrepareQueue");
    preparing.async([details = std::move(details), attachments = std::move(attachments),
                     dispatchDetails = std::move(dispatchDetails)]() mutable {
        for (const auto& attachment : attachments) {
            const auto* attachable = dynamic_cast<const Attachable*>(attachment.get());
            if (!attachable) continue;
            if (auto file = attachable->attachment()) details.attachments.push_back(std::move(*file));
        }
        dispatchDetails(details);
    });
}

} // namespace belvakit
