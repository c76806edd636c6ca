#include "belvakit/Request/conversation/request_table_state.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "platform/base64.hpp"
#include "platform/calendar.hpp"

#include <algorithm>

namespace belvakit {

namespace {

SystemMessage systemRow(const std::string& text) {
    return SystemMessage{platform::base64Encode(text), text};
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

bool isDeliveredUserText(const Message& message) {
    const auto* text = std::get_if<UserMessage>(&message);
    return text && (text->status == DeliveryStatus::delivered || text->status == DeliveryStatus::lastDelivered);
}

} // namespace

bool RequestTableState::operator==(const RequestTableState& other) const {
    return lastActionType == other.lastActionType && ticketClosed == other.ticketClosed &&
           std::equal(tableData.begin(), tableData.end(), other.tableData.begin(), other.tableData.end(), rowsEqual);
}

const RequestTableState& initialRequestTableState() {
    static const RequestTableState initial;
    return initial;
}

std::vector<Message> groupedMessages(const std::vector<Message>& tableData) {
    std::vector<Message> grouped = tableData;
    for (std::size_t i = 0; i < grouped.size(); ++i) {
        const bool last = i + 1 == grouped.size();
        setIsEndOfGroup(grouped[i], last || !continuesGroup(grouped[i], grouped[i + 1]));
    }
    return grouped;
}

std::vector<CellItem> dateRows(std::vector<Message> grouped) {
    const platform::Calendar calendar = platform::Calendar::current();
    std::vector<CellItem> rows;
    rows.reserve(grouped.size() + 1);
    Date runningDate = 0;
    for (auto& message : grouped) {
        const Date date = createdAt(message);
        if (!calendar.isSameDay(date, runningDate)) {
            runningDate = date;
            rows.emplace_back(DateItem{platform::base64Encode(platform::dateDescription(date)), date});
        }
        rows.emplace_back(std::move(message));
    }
    return rows;
}

std::vector<CellItem> insertingSystemMessage(std::vector<CellItem> cells, const RequestTableState& state) {
    if (!state.systemMessage) return cells;
    const auto& messages = state.tableData;
    const auto delivered = std::find_if(messages.begin(), messages.end(), isDeliveredUserText);
    if (delivered == messages.end()) return cells;
    const auto index = static_cast<std::size_t>(delivered - messages.begin());
    const std::string& parent = id(*delivered);
    const auto attachments = static_cast<std::size_t>(std::count_if(messages.begin(), messages.end(), [&](const Message& m) {
        const auto* parentId = parentIdOf(m);
        return parentId && *parentId == parent;
    }));
    const auto firstMessage = std::find_if(cells.begin(), cells.end(),
                                           [](const CellItem& item) { return std::holds_alternative<Message>(item); });
    const auto first = firstMessage == cells.end() ? 0 : static_cast<std::size_t>(firstMessage - cells.begin());
    // Right after the row at first + index + attachments, which is the text's last attachment on a
    // one-day conversation. Only messages are counted, so date rows in between pull it earlier.
    const auto at = std::min(first + index + attachments + 1, cells.size());
    cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(at), systemRow(*state.systemMessage));
    return cells;
}

std::vector<CellItem> appendingClosedMessage(std::vector<CellItem> cells, const RequestTableState& state) {
    if (state.ticketClosed) cells.emplace_back(systemRow(localized(LocalizedKey::requestsCreateRequestFailedClosed)));
    return cells;
}

std::vector<CellItem> recompute(const std::vector<Message>& tableData, const RequestTableState& state) {
    return appendingClosedMessage(insertingSystemMessage(dateRows(groupedMessages(tableData)), state), state);
}

void recompute(RequestTableState& state) { state.cellItems = recompute(state.tableData, state); }

} // namespace belvakit
