#include "belvakit/Request/queue/comment_conversion.hpp"

namespace belvakit::Request {

namespace {

Attachment attachmentFrom(const dastrel::CRVAttachment& file, const dastrel::CRVComment& comment) {
    Attachment attachment;
    attachment.commentId = comment.commentId;
    attachment.id = file.attachmentId;
    attachment.fileName = file.filename;
    attachment.fileUrl = file.contentURLString;
    attachment.thumbUrl = file.thumbnailURLString;
    attachment.imageSize = {file.width, file.height};
    attachment.thumbSize = {file.thumbnailWidth, file.thumbnailHeight};
    attachment.fileType = fileTypeFromMimeType(file.contentType);
    attachment.fileSize = file.size;
    attachment.createdAt = comment.createdAt;
    return attachment;
}

} // namespace

Comment commentFrom(const dastrel::CRVCommentWithUser& commentWithUser) {
    const auto& [comment, user] = commentWithUser;
    Comment out;
    out.id = comment.commentId;
    out.body = comment.body;
    out.htmlBody = comment.htmlBody;
    out.isAgent = user.isAgent;
    for (const auto& file : comment.attachments) out.attachments.push_back(attachmentFrom(file, comment));
    out.createdAt = comment.createdAt;
    out.userID = user.userId;
    out.name = user.name;
    out.avatarURL = user.avatarURL;
    return out;
}

} // namespace belvakit::Request
