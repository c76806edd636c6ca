#include "belvakit/Request/conversation/local_messages.hpp"

#include "platform/clock.hpp"
#include "platform/uuid.hpp"

namespace belvakit {

UserMessage makeUserMessage(std::string body, std::optional<std::string> id, std::optional<Date> createdAt) {
    UserMessage message;
    message.id = id ? std::move(*id) : platform::uuidString();
    message.status = DeliveryStatus::notDelivered;
    message.body = std::move(body);
    message.createdAt = createdAt ? *createdAt : platform::now();
    return message;
}

std::optional<Message> makeAttachmentMessage(const InputAttachmentViewState& attachment, const std::string& parentId,
                                             Date createdAt) {
    if (const auto* image = dynamic_cast<const InputImageViewModel*>(&attachment)) {
        UserImage message;
        message.id = image->identifier();
        message.parentId = parentId;
        message.filename = image->filename().value_or("");
        message.status = DeliveryStatus::notDelivered;
        message.image = image->image();
        message.thumbnailImage = image->image();
        message.fileType = image->type();
        if (image->image()) message.imageSize = image->image()->size();
        message.createdAt = createdAt;
        return message;
    }
    if (const auto* file = dynamic_cast<const InputFileViewModel*>(&attachment)) {
        UserFile message;
        message.id = file->identifier();
        message.parentId = parentId;
        message.filename = file->title() + "." + file->fileExtension();
        message.status = DeliveryStatus::notDelivered;
        message.size = file->size();
        message.fileType = file->fileType();
        message.createdAt = createdAt;
        message.downloaded = true;
        return message;
    }
    return std::nullopt;
}

std::vector<Message> makeLocalMessages(const UserMessage& text,
                                       const std::vector<InputAttachmentViewStatePtr>& attachments) {
    std::vector<Message> messages{text};
    for (const auto& attachment : attachments) {
        if (!attachment) continue;
        if (auto message = makeAttachmentMessage(*attachment, text.id, text.createdAt))
            messages.push_back(std::move(*message));
    }
    return messages;
}

} // namespace belvakit
