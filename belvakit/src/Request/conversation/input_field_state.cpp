#include "belvakit/Request/conversation/input_field_state.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/core_logger.hpp"
#include "platform/trimming.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

#include <algorithm>
#include <typeinfo>

namespace belvakit {

namespace {

// The actions are final classes: a type match is an exact one, and every action of the store
// passes here, so one type lookup decides.
template <class A>
const A* exactly(const tivra::Action& action, const std::type_info& type) {
    return type == typeid(A) ? static_cast<const A*>(&action) : nullptr;
}

// Space as the platform knows it, no-break and ideographic spaces included.
bool blank(const std::string& text) { return platform::trimmingWhitespaceAndNewlines(text).empty(); }

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
    const std::type_info& type = typeid(action);
    if (exactly<Actions::InitializeRequestControllerState>(action, type)) return initialState();
    if (const auto* initial = exactly<Actions::InitialFileAttachmentsAdded>(action, type)) {
        InputFieldState next = state;
        for (const auto& file : initial->fileAttachments) append(next, file.inputAttachment(initial->maxFileAttachmentSize));
        return next;
    }
    if (const auto* changed = exactly<Actions::PlaceHolderTextViewTextChanged>(action, type)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.text = changed->text;
        return next;
    }
    if (const auto* removed = exactly<Actions::AttachmentRemoved>(action, type)) {
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
    if (const auto* added = exactly<Actions::AttachmentAdded>(action, type)) {
        InputFieldState next = state;
        append(next, added->viewModel);
        return next;
    }
    if (const auto* button = exactly<Actions::AttachmentButtonStateChanged>(action, type)) {
        InputFieldState next = state;
        if (next.attachmentState != AttachmentButtonState::hidden)
            next.attachmentState = button->isSelected ? AttachmentButtonState::selected : AttachmentButtonState::normal;
        return next;
    }
    if (exactly<Actions::MessagesPosted>(action, type)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.hasMessages = true;
        return next;
    }
    if (exactly<Actions::AgentMessagesPosted>(action, type)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.hasMessages = true;
        next.inputTextAndImageViewState.textViewState.hasAgentMessages = true;
        return next;
    }
    if (exactly<Actions::SendButtonTapped>(action, type)) {
        InputFieldState next = state;
        next.inputTextAndImageViewState.textViewState.text.clear();
        attachmentsOf(next).clear();
        if (next.attachmentState == AttachmentButtonState::selected) next.attachmentState = AttachmentButtonState::normal;
        return next;
    }
    if (const auto* pasted = exactly<Actions::ImagePasted>(action, type)) {
        InputFieldState next = state;
        append(next, pasted->viewModel);
        return next;
    }
    if (const auto* settings = exactly<Actions::SettingsFetched>(action, type)) {
        InputFieldState next = state;
        if (!settings->isAttachmentsEnabled) {
            next.attachmentState = AttachmentButtonState::hidden;
            attachmentsOf(next).clear();
        } else if (next.attachmentState == AttachmentButtonState::hidden) {
            next.attachmentState = AttachmentButtonState::normal;
        }
        return next;
    }
    if (exactly<Actions::TicketClosed>(action, type)) {
        InputFieldState next = state;
        next.ticketClosed = true;
        return next;
    }
    return std::nullopt;
}

void RequestControllerMiddleware::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                           const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    const std::type_info& type = typeid(action);
    InputAttachmentViewStatePtr attachment;
    if (const auto* added = exactly<Actions::AttachmentAdded>(action, type))
        attachment = added->viewModel;
    else if (const auto* pasted = exactly<Actions::ImagePasted>(action, type))
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
