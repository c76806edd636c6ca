#pragma once

#include "tivra/action.hpp"

#include <chrono>
#include <cstdint>
#include <string>

namespace belvakit::Actions {

using Date = std::chrono::system_clock::time_point;

struct TicketCreated final : tivra::Action {
    std::string localId;
    std::string remoteRequestId;
    std::string remoteCommentId;
    Date remoteCreatedAt;
    std::string subject;
    std::string body;
};

struct TicketCreationError final : tivra::Action {
    std::string id;
    std::string requestDescription;
    Date createdAtDate;
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
