#pragma once

#include "belvakit/Request/conversation/event_type.hpp"
#include "belvakit/Request/conversation/file_type.hpp"
#include "platform/image.hpp"

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace belvakit {

// Seconds since 1970.
using Date = double;

// The records of a conversation. Each is a plain value; a change is a copy with a field replaced.
// `parentId` is the id of the text message an attachment belongs to.

struct UserMessage {
    static constexpr EventType type = EventType::userMessage;
    std::string id;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    std::string body;
    std::optional<std::string> htmlBody;
    Date createdAt = 0;
    bool isEndOfGroup = false;
};

struct AgentMessage {
    static constexpr EventType type = EventType::agentMessage;
    std::string id;
    std::string body;
    std::optional<std::string> htmlBody;
    Date createdAt = 0;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
    bool isEndOfGroup = false;
};

struct UserImage {
    static constexpr EventType type = EventType::userImage;
    std::string id;
    std::string parentId;
    std::string filename;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    platform::ImagePtr image;
    platform::ImagePtr thumbnailImage;
    FileType fileType = FileType::unknown;
    std::string imageUrl;
    std::string thumbnailUrl;
    platform::Size imageSize;
    Date createdAt = 0;
    bool isEndOfGroup = false;
};

struct AgentImage {
    static constexpr EventType type = EventType::agentImage;
    std::string id;
    std::string parentId;
    std::string filename;
    platform::ImagePtr image;
    platform::ImagePtr thumbnailImage;
    FileType fileType = FileType::unknown;
    std::string imageUrl;
    std::string thumbnailUrl;
    platform::Size imageSize;
    Date createdAt = 0;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
    bool isEndOfGroup = false;
};

struct UserFile {
    static constexpr EventType type = EventType::userFile;
    std::string id;
    std::string parentId;
    std::string filename;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    std::int64_t size = 0;
    std::string attachmentUrl;
    FileType fileType = FileType::unknown;
    Date createdAt = 0;
    bool downloaded = false;
    bool isEndOfGroup = false;
};

struct AgentFile {
    static constexpr EventType type = EventType::agentFile;
    std::string id;
    std::string parentId;
    std::string filename;
    std::int64_t size = 0;
    std::string attachmentUrl;
    FileType fileType = FileType::unknown;
    Date createdAt = 0;
    bool downloaded = false;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
    bool isEndOfGroup = false;
};

// Rows that are not messages and are never persisted.
struct SystemMessage {
    static constexpr EventType type = EventType::systemMessage;
    std::string id;
    std::string message;
};

struct DateItem {
    static constexpr EventType type = EventType::date;
    std::string id;
    Date date = 0;
};

// A persisted record of any kind.
using Message = std::variant<UserMessage, AgentMessage, UserImage, AgentImage, UserFile, AgentFile>;
// Anything that can occupy a row of the conversation table.
using CellItem = std::variant<Message, DateItem, SystemMessage>;

// Capabilities, by the fields a record has.
template <class T>
concept DeliverableEvent = requires(const T& record) {
    { record.status } -> std::convertible_to<DeliveryStatus>;
};
template <class T>
concept IdentifiableUserMessage = requires(const T& record) {
    { record.userID } -> std::convertible_to<std::int64_t>;
    record.name;
    record.avatarURL;
};
template <class T>
concept TextMessage = requires(const T& record) {
    { record.body } -> std::convertible_to<std::string>;
    record.htmlBody;
};
template <class T>
concept AttachmentMessage = requires(const T& record) {
    record.parentId;
    record.filename;
    { record.fileType } -> std::convertible_to<FileType>;
};
template <class T>
concept ImageMessage = AttachmentMessage<T> && requires(const T& record) {
    record.image;
    record.thumbnailImage;
    record.imageUrl;
    record.thumbnailUrl;
    record.imageSize;
};
template <class T>
concept FileMessage = AttachmentMessage<T> && requires(const T& record) {
    record.size;
    record.attachmentUrl;
    record.downloaded;
};

// What every message has.
const std::string& id(const Message& message);
EventType type(const Message& message);
Date createdAt(const Message& message);
bool isEndOfGroup(const Message& message);
void setCreatedAt(Message& message, Date createdAt);
void setIsEndOfGroup(Message& message, bool isEndOfGroup);
// Absent for agent rows, which have no status.
std::optional<DeliveryStatus> status(const Message& message);
// False (and no change) for agent rows.
bool setStatus(Message& message, DeliveryStatus status);
bool hasAttachment(const Message& message);
// The text an attachment belongs to; null for text rows.
const std::string* parentIdOf(const Message& message);
// The text of a text message; null for an attachment.
const std::string* bodyOf(const Message& message);

const std::string& id(const CellItem& item);
EventType type(const CellItem& item);

} // namespace belvakit
