#pragma once

#include "belvakit/Request/conversation/message.hpp"

// One record of each kind with every field set to something other than its default.
namespace conversation_fixtures {

using namespace belvakit;

inline UserMessage userMessage(std::string id, DeliveryStatus status = DeliveryStatus::delivered) {
    return {.id = std::move(id), .status = status, .body = "Hello there", .htmlBody = "<p>Hello there</p>",
            .createdAt = 1700000000.25};
}

inline AgentMessage agentMessage(std::string id, std::int64_t userID = 77) {
    return {.id = std::move(id), .body = "We are on it", .htmlBody = "<b>We</b> are on it", .createdAt = 1700000100.5,
            .userID = userID, .name = "Ada", .avatarURL = "https://belva.example.com/a.png"};
}

inline UserImage userImage(std::string id, DeliveryStatus status = DeliveryStatus::failed) {
    return {.id = std::move(id), .parentId = "P1", .filename = "photo.png", .status = status,
            .fileType = FileType::png, .imageUrl = "https://belva.example.com/i/1",
            .thumbnailUrl = "https://belva.example.com/t/1", .imageSize = {640.5, 480}, .createdAt = 1700000200};
}

inline AgentImage agentImage(std::string id) {
    return {.id = std::move(id), .parentId = "P2", .filename = "screen.jpeg", .fileType = FileType::heic,
            .imageUrl = "https://belva.example.com/i/2", .thumbnailUrl = "https://belva.example.com/t/2",
            .imageSize = {1024, 768.75}, .createdAt = 1700000300, .userID = 78, .name = "Grace"};
}

inline UserFile userFile(std::string id, DeliveryStatus status = DeliveryStatus::lastDelivered) {
    return {.id = std::move(id), .parentId = "P3", .filename = "report.pdf", .status = status, .size = 123456,
            .attachmentUrl = "https://belva.example.com/f/3", .fileType = FileType::pdf, .createdAt = 1700000400,
            .downloaded = true};
}

inline AgentFile agentFile(std::string id) {
    return {.id = std::move(id), .parentId = "P4", .filename = "sheet.xls", .size = 42,
            .attachmentUrl = "https://belva.example.com/f/4", .fileType = FileType::xls, .createdAt = 1700000500,
            .userID = 79, .name = "Linus", .avatarURL = "https://belva.example.com/l.png"};
}

} // namespace conversation_fixtures
