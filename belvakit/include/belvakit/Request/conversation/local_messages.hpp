#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/attachments/input_attachment.hpp"

#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// A text the user is about to send: queued, under the given id or a fresh UUID, dated now unless
// told otherwise.
UserMessage makeUserMessage(std::string body, std::optional<std::string> id = std::nullopt,
                            std::optional<Date> createdAt = std::nullopt);

// The row of one chosen attachment of the text `parentId`: a `UserImage` for an image, a
// `UserFile` for a file, under the view model's identifier. Its bytes are on the device already.
// Nothing for another kind of view model.
std::optional<Message> makeAttachmentMessage(const InputAttachmentViewState& attachment, const std::string& parentId,
                                             Date createdAt);

// The text followed by its attachments, all with the text's date.
std::vector<Message> makeLocalMessages(const UserMessage& text,
                                       const std::vector<InputAttachmentViewStatePtr>& attachments);

} // namespace belvakit
