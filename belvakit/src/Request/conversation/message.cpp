#include "belvakit/Request/conversation/message.hpp"

namespace belvakit {

const Message::Box& Message::emptyBox() {
    // Never freed: Messages in static storage may outlive any other owner.
    static const Box* const empty = new BoxOf<UserMessage>(UserMessage{});
    return *empty;
}

std::size_t Message::emptyIdHash() {
    static const std::size_t hash = std::hash<std::string_view>{}({});
    return hash;
}

void Message::sync() {
    visit([&](const auto& record) {
        createdAt_ = record.createdAt;
        idHash_ = std::hash<std::string_view>{}(record.id);
    });
}

Message::Box& Message::own() {
    if (box_ && box_->references.load(std::memory_order_acquire) == 1) return *box_;
    Box* mine = dispatch(index(), [&]<class Record>(std::type_identity<Record>) -> Box* {
        return new BoxOf<Record>(static_cast<const BoxOf<Record>&>(box()).record);
    });
    release();
    box_ = mine;
    return *box_;
}

void Message::destroy() noexcept {
    dispatch(index(), [&]<class Record>(std::type_identity<Record>) { delete static_cast<BoxOf<Record>*>(box_); });
    box_ = nullptr;
}

const std::string& id(const Message& message) {
    return message.visit([](const auto& record) -> const std::string& { return record.id; });
}

EventType type(const Message& message) {
    return message.visit([](const auto& record) { return record.type; });
}

bool isEndOfGroup(const Message& message) { return message.isEndOfGroup(); }

void setCreatedAt(Message& message, Date value) {
    if (createdAt(message) == value) return;
    message.update([&](auto& record) { record.createdAt = value; });
}

void setIsEndOfGroup(Message& message, bool value) { message.setIsEndOfGroup(value); }

std::optional<DeliveryStatus> status(const Message& message) {
    return message.visit([](const auto& record) -> std::optional<DeliveryStatus> {
        if constexpr (DeliverableEvent<std::decay_t<decltype(record)>>)
            return record.status;
        else
            return std::nullopt;
    });
}

bool setStatus(Message& message, DeliveryStatus value) {
    const auto now = status(message);
    if (!now) return false;
    if (*now == value) return true;
    message.update([&](auto& record) {
        if constexpr (DeliverableEvent<std::decay_t<decltype(record)>>) record.status = value;
    });
    return true;
}

const std::string* parentIdOf(const Message& message) {
    return message.visit([](const auto& record) -> const std::string* {
        if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>)
            return &record.parentId;
        else
            return nullptr;
    });
}

const std::string* bodyOf(const Message& message) {
    return message.visit([](const auto& record) -> const std::string* {
        if constexpr (TextMessage<std::decay_t<decltype(record)>>)
            return &record.body;
        else
            return nullptr;
    });
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
