#include "belvakit/Request/createrequest/create_request_reducer.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "platform/url_opener.hpp"

namespace belvakit {

namespace {

CreateRequestState withSending(CreateRequestState state, CreateRequestState::Sending sending) {
    state.sending = sending;
    return state;
}

CreateRequestState withAttachmentButton(CreateRequestState state, AttachmentButtonState buttonState) {
    state.attachmentButtonState = buttonState;
    return state;
}

} // namespace

CreateRequestReducer::CreateRequestReducer(CreateRequestState initialState)
    : initialState_(std::move(initialState)) {}

std::optional<CreateRequestState> CreateRequestReducer::reduce(const CreateRequestState& state,
                                                               const tivra::Action& action) const {
    using Sending = CreateRequestState::Sending;
    using tivra::actionAs;

    if (const auto* initialize = actionAs<CreateRequestActions::InitializeCreateRequest>(action)) {
        CreateRequestState fresh = initialState_;
        fresh.requiresEmail = initialize->requiresEmail;
        fresh.requiresName = initialize->requiresName;
        fresh.showCorvaneLogo = initialize->showCorvnaeLogo;
        fresh.referrerUrl = initialize->referrerUrl;
        return fresh;
    }
    if (actionAs<CreateRequestActions::SendPressed>(action))
        return withAttachmentButton(withSending(state, Sending::sending), AttachmentButtonState::normal);
    if (actionAs<RequestQueueActions::QueueCompleted>(action)) {
        // The queue drains after the creation result; a failure must stay on screen.
        if (state.sending == Sending::failure) return std::nullopt;
        return withSending(state, Sending::sent);
    }
    if (actionAs<Actions::TicketCreated>(action)) return withSending(state, Sending::success);
    if (actionAs<Actions::TicketCreationError>(action)) return withSending(state, Sending::failure);
    if (actionAs<CreateRequestActions::ReferOpen>(action)) {
        // Opened here rather than in a middleware: the form has no middleware step for the logo.
        if (auto url = platform::URL::parse(state.referrerUrl)) platform::URLOpener::shared()->open(*url);
        return std::nullopt;
    }
    if (const auto* edited = actionAs<CreateRequestActions::Edited>(action)) {
        CreateRequestState next = state;
        next.hasEdits = edited->hasEdits;
        return next;
    }
    if (const auto* changed = actionAs<Actions::AttachmentButtonStateChanged>(action))
        return withAttachmentButton(state, changed->isSelected ? AttachmentButtonState::selected
                                                               : AttachmentButtonState::normal);
    if (const auto* settings = actionAs<Actions::SettingsFetched>(action))
        return withAttachmentButton(state, settings->isAttachmentsEnabled ? AttachmentButtonState::normal
                                                                          : AttachmentButtonState::hidden);
    return std::nullopt;
}

} // namespace belvakit
