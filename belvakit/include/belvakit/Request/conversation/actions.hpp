#pragma once

#include "belvakit/date.hpp"
#include "tivra/action.hpp"

#include <cstdint>
#include <string>

namespace belvakit::Actions {

struct TicketCreated final : tivra::Action {
    std::string localId;
    std::string remoteRequestId;
    std::string remoteCommentId;
    Date remoteCreatedAt = 0;
    std::string subject;
    std::string body;
};

struct TicketCreationError final : tivra::Action {
    std::string id;
    std::string requestDescription;
    Date createdAtDate = 0;
};

struct SettingsFetched final : tivra::Action {
    bool isAttachmentsEnabled = false;
    std::int64_t maxAttachmentSize = 0;
    std::string systemMessage;
};

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
