#include "belvakit/Request/conversation/message.hpp"

namespace belvakit {

const std::string& id(const Message& message) {
    return std::visit([](const auto& record) -> const std::string& { return record.id; }, message);
}

EventType type(const Message& message) {
    return std::visit([](const auto& record) { return record.type; }, message);
}

Date createdAt(const Message& message) {
    return std::visit([](const auto& record) { return record.createdAt; }, message);
}

bool isEndOfGroup(const Message& message) {
    return std::visit([](const auto& record) { return record.isEndOfGroup; }, message);
}

void setCreatedAt(Message& message, Date value) {
    std::visit([&](auto& record) { record.createdAt = value; }, message);
}

void setIsEndOfGroup(Message& message, bool value) {
    std::visit([&](auto& record) { record.isEndOfGroup = value; }, message);
}

std::optional<DeliveryStatus> status(const Message& message) {
    return std::visit(
        [](const auto& record) -> std::optional<DeliveryStatus> {
            if constexpr (DeliverableEvent<std::decay_t<decltype(record)>>)
                return record.status;
            else
                return std::nullopt;
        },
        message);
}

bool setStatus(Message& message, DeliveryStatus value) {
    return std::visit(
        [&](auto& record) {
            if constexpr (DeliverableEvent<std::decay_t<decltype(record)>>) {
                record.status = value;
                return true;
            } else {
                return false;
            }
        },
        message);
}

bool hasAttachment(const Message& message) {
    return std::visit([](const auto& record) { return AttachmentMessage<std::decay_t<decltype(record)>>; }, message);
}

const std::string* parentIdOf(const Message& message) {
    return std::visit(
        [](const auto& record) -> const std::string* {
            if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>)
                return &record.parentId;
            else
                return nullptr;
        },
        message);
}

const std::string* bodyOf(const Message& message) {
    return std::visit(
        [](const auto& record) -> const std::string* {
            if constexpr (TextMessage<std::decay_t<decltype(record)>>)
                return &record.body;
            else
                return nullptr;
        },
        message);
}

const std::string& id(const CellItem& item) {
    return std::visit(
        [](const auto& row) -> const std::string& {
            if constexpr (std::is_same_v<std::decay_t<decltype(row)>, Message>)
                return id(row);
            else
                return row.id;
        },
        item);
}

EventType type(const CellItem& item) {
    return std::visit(
        [](const auto& row) {
            if constexpr (std::is_same_v<std::decay_t<decltype(row)>, Message>)
                return type(row);
            else
                return row.type;
        },
        item);
}

} // namespace belvakit
