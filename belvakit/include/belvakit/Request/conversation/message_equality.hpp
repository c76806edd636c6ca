#pragma once

#include "belvakit/Request/conversation/message.hpp"

namespace belvakit {

// A row as the table diff sees it: equal rows need no reload.
class EquatableMessage {
public:
    explicit EquatableMessage(Message message) : message_(std::move(message)) {}
    const Message& message() const { return message_; }
    bool operator==(const EquatableMessage& other) const;

private:
    Message message_;
};

class EquatableCellItem {
public:
    explicit EquatableCellItem(CellItem item) : item_(std::move(item)) {}
    const CellItem& item() const { return item_; }
    bool operator==(const EquatableCellItem& other) const;

private:
    CellItem item_;
};

// `left == right` answers whether `right` continues the group of `left`. Not symmetric: a failed
// row ends its group, but a failed row may still join the group before it.
class GroupingEqutable {
public:
    explicit GroupingEqutable(Message message) : message_(std::move(message)) {}
    const Message& message() const { return message_; }
    bool operator==(const GroupingEqutable& other) const;

private:
    Message message_;
};

// The rules of the wrappers above, without copying the messages into wrappers first.
bool rowsEqual(const Message& left, const Message& right);
bool continuesGroup(const Message& left, const Message& right);

} // namespace belvakit
