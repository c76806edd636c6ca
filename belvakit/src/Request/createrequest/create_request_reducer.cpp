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

// The send an outcome reports, and whether it went out.
std::optional<std::pair<std::string, bool>> outcomeOf(const tivra::Action& action) {
    using tivra::actionAs;
    if (const auto* a = actionAs<Actions::TicketCreated>(action)) return std::pair(a->localId, true);
    if (const auto* b = actionAs<Actions::TicketCreationError>(action)) return std::pair(b->id, false);
    if (const auto* c = actionAs<Actions::AttachmentsUploadError>(action)) return std::pair(c->id, false);
    if (const auto* d = actionAs<Actions::CommentCreated>(action)) return std::pair(d->localId, true);
    if (const auto* e = actionAs<Actions::CommentCreationError>(action)) return std::pair(e->id, false);
    if (const auto* f = actionAs<RequestQueueActions::SendOutcomeKept>(action)) return std::pair(f->id, f->delivered);
    return std::nullopt;
}

// An action from a form concerns that form only; one that names none, whichever form the state is.
bool concernsForm(std::uint64_t formId, const CreateRequestState& state) { return !formId || formId == state.formId; }

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
        fresh.formId = initialize->formId;
        return fresh;
    }
    if (const auto* send = actionAs<CreateRequestActions::SendPressed>(action)) {
        if (!concernsForm(send->formId, state)) return std::nullopt;
        CreateRequestState next = withAttachmentButton(withSending(state, Sending::sending), AttachmentButtonState::normal);
        next.sendId = send->id.empty() ? std::nullopt : std::optional(send->id);
        return next;
    }
    if (actionAs<RequestQueueActions::QueueCompleted>(action)) {
        // The queue drains after the send's outcome: a failure stays on screen, and a send whose
        // outcome has not come yet (its work was still being prepared) waits for it.
        if (state.sending == Sending::failure || state.sending == Sending::sending) return std::nullopt;
        return withSending(state, Sending::sent);
    }
    if (const auto outcome = outcomeOf(action)) {
        // Only the outcome of the send this form waits on: another form's, or another screen's, is not its own.
        if (state.sending != Sending::sending || state.sendId != outcome->first) return std::nullopt;
        return withSending(state, outcome->second ? Sending::success : Sending::failure);
    }
    if (actionAs<CreateRequestActions::ReferOpen>(action)) {
        // Opened here rather than in a middleware: the form has no middleware step for the logo.
        if (auto url = platform::URL::parse(state.referrerUrl)) platform::URLOpener::shared()->open(*url);
        return std::nullopt;
    }
    if (const auto* edited = actionAs<CreateRequestActions::Edited>(action)) {
        if (!concernsForm(edited->formId, state)) return std::nullopt;
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
