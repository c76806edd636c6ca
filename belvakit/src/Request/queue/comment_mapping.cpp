#include "belvakit/Request/queue/comment_mapping.hpp"

#include <string>

namespace belvakit {

namespace {

Request::Attachment attachmentFromProvider(const dastrel::CRVAttachment& attachment, const dastrel::CRVComment& comment) {
    Request::Attachment result;
    result.commentId = comment.commentId;
    result.id = attachment.attachmentId;
    result.fileName = attachment.filename;
    result.fileUrl = attachment.contentURLString;
    result.thumbUrl = attachment.thumbnailURLString;
    result.imageSize = {attachment.width, attachment.height};
    result.thumbSize = {attachment.thumbnailWidth, attachment.thumbnailHeight};
    result.fileType = fileTypeFromMimeType(attachment.contentType);
    result.fileSize = attachment.size;
    result.createdAt = comment.createdAt;
    return result;
}

// The body a user's comment gets when it was sent with attachments and no text.
std::string attachmentOnlyText(const std::vector<Request::Attachment>& attachments) {
    std::string text = "[";
    for (std::size_t i = 0; i < attachments.size(); ++i) {
        if (i > 0) text += ", ";
        text += attachments[i].fileName;
    }
    return text + "]";
}

template <class Record>
Record attachmentRecord(const Request::Attachment& attachment, const Request::Comment& comment) {
    Record record;
    record.id = std::to_string(attachment.id);
    record.parentId = std::to_string(comment.id);
    record.filename = attachment.fileName;
    record.fileType = attachment.fileType;
    record.createdAt = attachment.createdAt;
    if constexpr (ImageMessage<Record>) {
        record.image = attachment.image;
        record.thumbnailImage = attachment.thumbImage;
        record.imageUrl = attachment.fileUrl;
        record.thumbnailUrl = attachment.thumbUrl;
        record.imageSize = attachment.imageSize;
    } else {
        record.size = attachment.fileSize;
        record.attachmentUrl = attachment.fileUrl;
        record.downloaded = false;
    }
    if constexpr (DeliverableEvent<Record>) {
        record.status = DeliveryStatus::delivered;
    } else {
        record.userID = comment.userID;
        record.name = comment.name;
        record.avatarURL = comment.avatarURL;
    }
    return record;
}

Message attachmentMessage(const Request::Attachment& attachment, const Request::Comment& comment) {
    const bool image = isImageFileType(attachment.fileType);
    if (comment.isAgent)
        return image ? Message(attachmentRecord<AgentImage>(attachment, comment))
                     : Message(attachmentRecord<AgentFile>(attachment, comment));
    return image ? Message(attachmentRecord<UserImage>(attachment, comment))
                 : Message(attachmentRecord<UserFile>(attachment, comment));
}

} // namespace

bool isImageFileType(FileType type) {
    return type == FileType::png || type == FileType::jpeg || type == FileType::heic;
}

Request::Comment commentFromProvider(const dastrel::CRVCommentWithUser& source) {
    const auto& comment = source.comment;
    Request::Comment result;
    result.id = comment.commentId;
    result.body = comment.body;
    result.htmlBody = comment.htmlBody;
    result.isAgent = source.user.isAgent;
    result.attachments.reserve(comment.attachments.size());
    for (const auto& attachment : comment.attachments)
        result.attachments.push_back(attachmentFromProvider(attachment, comment));
    result.createdAt = comment.createdAt;
    result.userID = source.user.userId;
    result.name = source.user.name;
    result.avatarURL = source.user.avatarURL;
    return result;
}

std::vector<Message> messagesFromComment(const Request::Comment& comment) {
    std::vector<Message> messages;
    messages.reserve(comment.attachments.size() + 1);
    if (comment.isAgent) {
        AgentMessage text;
        text.id = std::to_string(comment.id);
        text.body = comment.body;
        text.htmlBody = comment.htmlBody;
        text.createdAt = comment.createdAt;
        text.userID = comment.userID;
        text.name = comment.name;
        text.avatarURL = comment.avatarURL;
        messages.emplace_back(std::move(text));
    } else if (comment.body != attachmentOnlyText(comment.attachments)) {
        UserMessage text;
        text.id = std::to_string(comment.id);
        text.status = DeliveryStatus::delivered;
        text.body = comment.body;
        text.htmlBody = comment.htmlBody;
        text.createdAt = comment.createdAt;
        messages.emplace_back(std::move(text));
    }
    for (const auto& attachment : comment.attachments) messages.push_back(attachmentMessage(attachment, comment));
    return messages;
}

} // namespace belvakit
