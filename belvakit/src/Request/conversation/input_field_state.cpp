#include "belvakit/Request/conversation/input_field_state.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/core_logger.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

#include <algorithm>
#include <cctype>

namespace belvakit {

namespace {

using tivra::actionAs;

bool blank(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c); });
}

// The identifier an attachment goes by when the picker takes it back.
std::string removalIdentifier(const InputAttachmentViewState& attachment) {
    if (const auto* image = dynamic_cast<const InputImageViewModel*>(&attachment); image && image->assetIdentifier())
        return *image->assetIdentifier();
    return attachment.identifier();
}

std::vector<InputAttachmentViewStatePtr>& attachmentsOf(InputFieldState& state) {
    return state.inputTextAndImageViewState.attachmentsState.attachments;
}

void append(InputFieldState& state, InputAttachmentViewStatePtr attachment) {
    if (!attachment) return;
    auto& attachments = attachmentsOf(state);
    // Picked twice, shown once.
    const bool known = std::any_of(attachments.begin(), attachments.end(), [&](const InputAttachmentViewStatePtr& other) {
        return other && other->identifier() == attachment->identifier();
    });
    if (!known) attachments.push_back(std::move(attachment));
}

} // namespace

bool InputFieldState::canSend() const { return !ticketClosed && (!blank(text()) || !attachments().empty()); }

InputFieldState initialInputFieldState() {
    InputFieldState state;
    state.primaryColor = Theme::currentTheme().primaryColor();
    return state;
}

std::optional<InputFieldState> InputFieldReducer::reduce(const InputFieldState& state, const tivra::Action& action) const {
    if (actionAs<Actions::InitializeRequestControllerState>(action)) return initialState();
    if (const auto* initial = actionAs<Actions::InitialFileAttachmentsAdded>(action)) {
        InputFieldState next = state;
        for (const auto& file : initial->fileAttachments) append(next, file.inputAttachment(initial->maxFileAttachmentSize));
        return next;
    }
    if (const auto* changed = actionAs<Actions::PlaceHolderTextViewTextChanged>(action)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.text = changed->text;
        return next;
    }
    if (const auto* removed = actionAs<Actions::AttachmentRemoved>(action)) {
        InputFieldState next = state;
        auto& attachments = attachmentsOf(next);
        if (removed->index && *removed->index >= 0 && static_cast<std::size_t>(*removed->index) < attachments.size()) {
            attachments.erase(attachments.begin() + *removed->index);
        } else {
            std::erase_if(attachments, [&](const InputAttachmentViewStatePtr& attachment) {
                return attachment && (attachment->identifier() == removed->identifier ||
                                      removalIdentifier(*attachment) == removed->identifier);
            });
        }
        return next;
    }
    if (const auto* added = actionAs<Actions::AttachmentAdded>(action)) {
        InputFieldState next = state;
        append(next, added->viewModel);
        return next;
    }
    if (const auto* button = actionAs<Actions::AttachmentButtonStateChanged>(action)) {
        InputFieldState next = state;
        if (next.attachmentState != AttachmentButtonState::hidden)
            next.attachmentState = button->isSelected ? AttachmentButtonState::selected : AttachmentButtonState::normal;
        return next;
    }
    if (actionAs<Actions::MessagesPosted>(action)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.hasMessages = true;
        return next;
    }
    if (actionAs<Actions::AgentMessagesPosted>(action)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.hasMessages = true;
        next.inputTextAndImageViewState.textViewState.hasAgentMessages = true;
        return next;
    }
    if (actionAs<Actions::SendButtonTapped>(action)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.text.clear();
        attachmentsOf(next).clear();
        if (next.attachmentState == AttachmentButtonState::selected) next.attachmentState = AttachmentButtonState::normal;
        return next;
    }
    if (const auto* pasted = actionAs<Actions::ImagePasted>(action)) {
        InputFieldState next = state;
        append(next, pasted->viewModel);
        return next;
    }
    if (const auto* settings = actionAs<Actions::SettingsFetched>(action)) {
        InputFieldState next = state;
        if (!settings->isAttachmentsEnabled) {
            next.attachmentState = AttachmentButtonState::hidden;
            attachmentsOf(next).clear();
        } else if (next.attachmentState == AttachmentButtonState::hidden) {
            next.attachmentState = AttachmentButtonState::normal;
        }
        return next;
    }
    if (actionAs<Actions::TicketClosed>(action)) {
        InputFieldState next = state;
        next.ticketClosed = true;
        return next;
    }
    return std::nullopt;
}

void RequestControllerMiddleware::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                           const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    InputAttachmentViewStatePtr attachment;
    if (const auto* added = actionAs<Actions::AttachmentAdded>(action))
        attachment = added->viewModel;
    else if (const auto* pasted = actionAs<Actions::ImagePasted>(action))
        attachment = pasted->viewModel;
    else
        return next(action);

    const tivra::State state = getState ? getState() : tivra::State();
    const auto* table = state.value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    if (!table || !attachment || attachment->size() <= table->maxAttachmentSize) return next(action);

    corvane::CoreLogger::debug("Attachment too large");
    Actions::AttachmentTooBig tooBig;
    tooBig.maxSize = table->maxAttachmentSize;
    dispatch(tooBig);
    Actions::AttachmentRemoved removed;
    removed.identifier = removalIdentifier(*attachment);
    dispatch(removed);
}

} // namespace belvakit
