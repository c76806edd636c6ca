#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/Request/queue/request_records.hpp"
#include "belvakit/attachments/upload.hpp"
#include "belvakit/date.hpp"
#include "tivra/action.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What happens to a conversation: local messages, the outcome of sends, what the server and the
// disk hold. The conversation's reducer reads them all; the list and the form read a few.
namespace belvakit::Actions {

// A remote attachment id paired with the local file it came from.
using SentAttachments = std::vector<std::pair<std::string, Upload::Attachment>>;

struct InitializeRequestControllerState final : tivra::Action {};

struct NewMessage final : tivra::Action {
    Message message;
};

struct NewMessages final : tivra::Action {
    std::vector<Message> messages;
};

struct AttachmentFetched final : tivra::Action {
    Message message;
};

struct TicketCreated final : tivra::Action {
    std::string localId;
    std::string remoteRequestId;
    std::string remoteCommentId;
    Date remoteCreatedAt = 0;
    std::string subject;
    std::string body;
    SentAttachments attachments;
};

struct CommentCreated final : tivra::Action {
    std::string localId;
    std::string remoteCommentId;
    Date remoteCreatedAt = 0;
    SentAttachments attachments;
};

struct TicketCreationError final : tivra::Action {
    std::string id;
    std::string requestDescription;
    Date createdAtDate = 0;
};

struct CommentCreationError final : tivra::Action {
    std::string requestRemoteId;
    std::string id;
    std::optional<long> error;
};

struct AttachmentsUploadError final : tivra::Action {
    std::string id;
};

struct AttachmentsPrepared final : tivra::Action {
    std::vector<Upload::Attachment> attachments;
};

struct MergeMessages final : tivra::Action {
    std::vector<Message> messages;
};

struct NewCommentsFetched final : tivra::Action {
    std::vector<Request::Comment> comments;
};

struct FetchCommentsError final : tivra::Action {};

struct SetMessages final : tivra::Action {
    std::vector<Message> messages;
};

struct InitalFetchCommentsError final : tivra::Action {};

struct MessagesLoadedFromDisk final : tivra::Action {
    std::vector<Message> messages;
    std::map<std::string, std::string> mapLocalToRemote;
    std::string localId;
};

struct MessagesLoadedFromNetwork final : tivra::Action {
    std::string requestId;
    std::vector<Message> messages;
};

struct DeleteMessages final : tivra::Action {
    std::vector<Message> messages;
    bool isDeletingWholeTicket = false;
};

struct MoveMessagesToBottom final : tivra::Action {
    std::vector<Message> messages;
};

struct SettingsFetched final : tivra::Action {
    bool isAttachmentsEnabled = false;
    std::int64_t maxAttachmentSize = 0;
    std::string systemMessage;
};

// The id a conversation of the device's own is kept under, for a table that has none yet: known
// when its screen opens, before the disk answers. `replacing` renames a table that has one: a
// ticket shown under a key of its own takes the key of the device conversation that made it, so
// the ticket is kept in one place.
struct NameConversation final : tivra::Action {
    std::string localId;
    bool replacing = false;
};

struct SetRemoteId final : tivra::Action {
    std::string remoteRequestID;
    // The id its conversation is kept under on the device, for a table that has none yet.
    std::optional<std::string> localId;
};

struct TicketClosed final : tivra::Action {};

// Sent by the attachment views when the picker opens or closes.
struct AttachmentButtonStateChanged final : tivra::Action {
    bool isSelected = false;
};

struct PlaceHolderTextViewEditingBegan final : tivra::Action {
    std::string text;
};

struct PlaceHolderTextViewEditingEnded final : tivra::Action {
    std::string text;
};

} // namespace belvakit::Actions
