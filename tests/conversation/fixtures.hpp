#pragma once

#include "belvakit/Request/conversation/message.hpp"

namespace conversation_fixtures {

using namespace belvakit;

inline UserMessage userMessage(std::string id, DeliveryStatus status = DeliveryStatus::delivered) {
    UserMessage message;
    message.id = std::move(id);
    message.status = status;
    message.body = "Hello there";
    message.htmlBody = "<p>Hello there</p>";
    message.createdAt = 1700000000.25;
    message.isEndOfGroup = true;
    return message;
}

inline AgentMessage agentMessage(std::string id, std::int64_t userID = 77) {
    AgentMessage message;
    message.id = std::move(id);
    message.body = "We are on it";
    message.htmlBody = "<b>We</b> are on it";
    message.createdAt = 1700000100.5;
    message.userID = userID;
    message.name = "Ada";
    message.avatarURL = "https://belva.example.com/a.png";
    return message;
}

inline UserImage userImage(std::string id, DeliveryStatus status = DeliveryStatus::failed) {
    UserImage image;
    image.id = std::move(id);
    image.parentId = "P1";
    image.filename = "photo.png";
    image.status = status;
    image.fileType = FileType::png;
    image.imageUrl = "https://belva.example.com/i/1";
    image.thumbnailUrl = "https://belva.example.com/t/1";
    image.imageSize = {640.5, 480};
    image.createdAt = 1700000200;
    return image;
}

inline AgentImage agentImage(std::string id) {
    AgentImage image;
    image.id = std::move(id);
    image.parentId = "P2";
    image.filename = "screen.jpeg";
    image.fileType = FileType::heic;
    image.imageUrl = "https://belva.example.com/i/2";
    image.thumbnailUrl = "https://belva.example.com/t/2";
    image.imageSize = {1024, 768.75};
    image.createdAt = 1700000300;
    image.userID = 78;
    image.name = "Grace";
    image.isEndOfGroup = true;
    return image;
}

inline UserFile userFile(std::string id, DeliveryStatus status = DeliveryStatus::lastDelivered) {
    UserFile file;
    file.id = std::move(id);
    file.parentId = "P3";
    file.filename = "report.pdf";
    file.status = status;
    file.size = 123456;
    file.attachmentUrl = "https://belva.example.com/f/3";
    file.fileType = FileType::pdf;
    file.createdAt = 1700000400;
    file.downloaded = true;
    return file;
}

inline AgentFile agentFile(std::string id) {
    AgentFile file;
    file.id = std::move(id);
    file.parentId = "P4";
    file.filename = "sheet.xls";
    file.size = 42;
    file.attachmentUrl = "https://belva.example.com/f/4";
    file.fileType = FileType::xls;
    file.createdAt = 1700000500;
    file.userID = 79;
    file.name = "Linus";
    file.avatarURL = "https://belva.example.com/l.png";
    return file;
}

} // namespace conversation_fixtures
