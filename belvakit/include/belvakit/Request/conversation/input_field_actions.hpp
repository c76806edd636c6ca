#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/attachments/input_attachment.hpp"
#include "belvakit/attachments/request_attachment.hpp"
#include "corvane/action_handler.hpp"
#include "platform/url.hpp"
#include "tivra/action.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What the conversation screen and its input field send: gestures on the field and the table,
// and the attachments chosen for the next message.
namespace belvakit::Actions {

struct SendButtonTapped final : tivra::Action {};

struct PlaceHolderTextViewTextChanged final : tivra::Action {
    std::string text;
};

struct PlaceholderTextViewHeightChanged final : tivra::Action {};

// Chosen in the picker; the conversation's middleware refuses one over the size limit.
struct AttachmentAdded final : tivra::Action {
    InputAttachmentViewStatePtr viewModel;
};

// By position in the strip when known, else by identifier (an image's asset identifier counts).
struct AttachmentRemoved final : tivra::Action {
    std::optional<int> index;
    std::string identifier;
};

struct AttachmentTooBig final : tivra::Action {
    std::int64_t maxSize = 0;
};

struct ImagePasted final : tivra::Action {
    std::shared_ptr<const InputImageViewModel> viewModel;
};

// The host's files for a new message, each checked against the limit.
struct InitialFileAttachmentsAdded final : tivra::Action {
    std::vector<RequestAttachment> fileAttachments;
    std::int64_t maxFileAttachmentSize = 0;
};

// The conversation holds messages, or messages from an agent: the field's prompt follows.
struct MessagesPosted final : tivra::Action {};
struct AgentMessagesPosted final : tivra::Action {};

struct CellTapped final : tivra::Action {
    Message message;
};

struct FetchAttachment final : tivra::Action {
    Message message;
};

// A link in an agent's comment that a handler of the core takes.
struct OpenHelpCenter final : tivra::Action {
    OpenHelpCenter(std::shared_ptr<corvane::ActionHandler> handler, platform::URL link)
        : actionHandler(std::move(handler)), url(std::move(link)) {}
    std::shared_ptr<corvane::ActionHandler> actionHandler;
    platform::URL url;
};

// A conversation that exists only on the device was opened.
struct LoadedFailedRequest final : tivra::Action {
    std::string requestId;
};

// Fetch what was written on the ticket since the latest known comment.
struct FetchRequest final : tivra::Action {
    std::string requestId;
};

struct StartNewConversation final : tivra::Action {};

// Give the keyboard back to the text field that had it.
struct BecomeFirstResponder final : tivra::Action {};

} // namespace belvakit::Actions
