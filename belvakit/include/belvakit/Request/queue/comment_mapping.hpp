#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/Request/queue/request_records.hpp"
#include "dastrel/comment.hpp"

#include <vector>

namespace belvakit {

// A provider's comment in the shape the conversation reads; each attachment's kind comes from its
// mime type.
Request::Comment commentFromProvider(const dastrel::CRVCommentWithUser& comment);

// The text message of a comment (none for a user's comment of attachments alone) followed by one
// message per attachment, in attachment order. No row ends a group yet.
std::vector<Message> messagesFromComment(const Request::Comment& comment);

// Whether an attachment of this kind is shown as an image.
bool isImageFileType(FileType type);

} // namespace belvakit
