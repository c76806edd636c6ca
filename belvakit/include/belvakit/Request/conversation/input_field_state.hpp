#pragma once

#include "belvakit/Request/createrequest/attachment_button_state.hpp"
#include "belvakit/attachments/input_attachment.hpp"
#include "platform/color.hpp"
#include "platform/image.hpp"
#include "tivra/middleware.hpp"
#include "tivra/reducer.hpp"

#include <optional>
#include <string>

namespace belvakit {

// The text being written, and what the conversation holds so far (the prompt differs for a reply).
struct ConversationTextViewState {
    std::string text;
    bool hasMessages = false;
    bool hasAgentMessages = false;
    bool operator==(const ConversationTextViewState&) const = default;
};

struct InputTextAndImageViewState {
    ConversationTextViewState textViewState;
    InputAttachmentCollectionViewState attachmentsState;
    bool operator==(const InputTextAndImageViewState&) const = default;
};

// The input field under a conversation.
struct InputFieldState {
    platform::Color primaryColor = platform::Color::fromRGB(0, 122, 255);
    platform::ImagePtr attachButtonImage;
    InputTextAndImageViewState inputTextAndImageViewState;
    AttachmentButtonState attachmentState = AttachmentButtonState::normal;
    bool ticketClosed = false;

    const std::string& text() const { return inputTextAndImageViewState.textViewState.text; }
    const std::vector<InputAttachmentViewStatePtr>& attachments() const {
        return inputTextAndImageViewState.attachmentsState.attachments;
    }
    // Something to send, and a ticket that takes it.
    bool canSend() const;
    bool operator==(const InputFieldState&) const = default;
};

// A fresh field in the current theme's colour.
InputFieldState initialInputFieldState();

class InputFieldReducer final : public tivra::Reducer<InputFieldState> {
public:
    InputFieldState initialState() const override { return initialInputFieldState(); }
    std::optional<InputFieldState> reduce(const InputFieldState& state, const tivra::Action& action) const override;
};

// Keeps attachments over the account's size limit out of the input field; every other action
// goes on down the chain.
class RequestControllerMiddleware final : public tivra::Middleware {
public:
    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;
};

} // namespace belvakit
