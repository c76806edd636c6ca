#include "belvakit/Request/conversation/message_equality.hpp"

namespace belvakit {

namespace {

template <class L, class R>
bool sameContent(const L& left, const R& right) {
    if constexpr (ImageMessage<L> && ImageMessage<R>) {
        // Bitmaps count as equal only when they are the very same image.
        if (left.image != right.image || left.thumbnailImage != right.thumbnailImage) return false;
        if (left.filename != right.filename || left.thumbnailUrl != right.thumbnailUrl ||
            left.imageUrl != right.imageUrl)
            return false;
    }
    if constexpr (FileMessage<L> && FileMessage<R>) {
        if (left.downloaded != right.downloaded) return false;
    }
    if constexpr (TextMessage<L> && TextMessage<R>) {
        if (left.body != right.body) return false;
    }
    if constexpr (DeliverableEvent<L> && DeliverableEvent<R>) {
        if (left.status != right.status) return false;
    }
    return true;
}

template <class L, class R>
bool continuesGroupOf(const L& left, const R& right) {
    if constexpr (IdentifiableUserMessage<L> && IdentifiableUserMessage<R>) {
        return left.userID == right.userID;
    } else {
        if constexpr (DeliverableEvent<L> && DeliverableEvent<R>) {
            if (left.status == DeliveryStatus::failed && right.status != DeliveryStatus::failed) return false;
        }
        return isUserSide(L::type) && isUserSide(R::type);
    }
}

} // namespace

bool rowsEqual(const Message& left, const Message& right) {
    if (isEndOfGroup(left) != isEndOfGroup(right)) return false;
    // Most rows of two states are copies of one message.
    if (left.sharesRecordWith(right)) return true;
    if (id(left) != id(right)) return false;
    return left.visit([&](const auto& l) { return right.visit([&](const auto& r) { return sameContent(l, r); }); });
}

bool continuesGroup(const Message& left, const Message& right) {
    return left.visit([&](const auto& l) { return right.visit([&](const auto& r) { return continuesGroupOf(l, r); }); });
}

bool EquatableMessage::operator==(const EquatableMessage& other) const { return rowsEqual(message_, other.message_); }

bool EquatableCellItem::operator==(const EquatableCellItem& other) const {
    if (id(item_) != id(other.item_) || type(item_) != type(other.item_)) return false;
    if (const auto* left = std::get_if<Message>(&item_)) {
        const auto* right = std::get_if<Message>(&other.item_);
        return right && rowsEqual(*left, *right);
    }
    if (const auto* left = std::get_if<DateItem>(&item_)) {
        const auto* right = std::get_if<DateItem>(&other.item_);
        return right && left->date == right->date;
    }
    if (const auto* left = std::get_if<SystemMessage>(&item_)) {
        const auto* right = std::get_if<SystemMessage>(&other.item_);
        return right && left->message == right->message;
    }
    return false;
}

bool GroupingEqutable::operator==(const GroupingEqutable& other) const {
    return continuesGroup(message_, other.message_);
}

} // namespace belvakit
