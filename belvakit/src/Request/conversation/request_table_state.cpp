#include "belvakit/Request/conversation/request_table_state.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "platform/base64.hpp"
#include "platform/calendar.hpp"

#include <algorithm>
#include <tuple>

namespace belvakit {

namespace {

SystemMessage systemRow(const std::string& text) {
    return SystemMessage{platform::base64Encode(text), text};
}

bool isDeliveredUserText(const Message& message) {
    const auto* text = message.getIf<UserMessage>();
    return text && (text->status == DeliveryStatus::delivered || text->status == DeliveryStatus::lastDelivered);
}

// Where the notice goes, as the index into `tableData` of the message it follows.
std::optional<std::size_t> systemMessageAfter(const RequestTableState& state) {
    if (!state.systemMessage) return std::nullopt;
    const auto& messages = state.tableData;
    const auto delivered = std::find_if(messages.begin(), messages.end(), isDeliveredUserText);
    if (delivered == messages.end()) return std::nullopt;
    // After the text and the last of its attachments, wherever a merge put them.
    const std::string& parent = id(*delivered);
    std::size_t after = static_cast<std::size_t>(delivered - messages.begin());
    for (std::size_t index = after + 1; index < messages.size(); ++index) {
        const auto* parentId = parentIdOf(messages[index]);
        if (parentId && *parentId == parent) after = index;
    }
    return after;
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
    const auto after = systemMessageAfter(state);
    if (!after) return cells;
    // Right after that message's row, counting message rows only, so date rows never split a
    // message from its attachments.
    std::size_t messages = 0;
    auto at = std::find_if(cells.begin(), cells.end(), [&](const CellItem& item) {
        return std::holds_alternative<Message>(item) && messages++ == *after;
    });
    if (at != cells.end()) ++at;
    cells.insert(at, systemRow(*state.systemMessage));
    return cells;
}

std::vector<CellItem> appendingClosedMessage(std::vector<CellItem> cells, const RequestTableState& state) {
    if (state.ticketClosed) cells.emplace_back(systemRow(localized(LocalizedKey::requestsCreateRequestFailedClosed)));
    return cells;
}

// The four steps in one pass over the messages: a conversation can hold thousands of them, and
// every change recomputes its rows.
std::vector<CellItem> recompute(const std::vector<Message>& tableData, const RequestTableState& state) {
    const platform::Calendar calendar = platform::Calendar::current();
    const auto noticeAfter = systemMessageAfter(state);
    std::vector<CellItem> rows;
    // Room for a date row every few dozen messages and the two notices; more days cost one regrowth.
    rows.reserve(tableData.size() + tableData.size() / 32 + 3);
    // The running date's day as [start, end), so that one calendar lookup serves all its messages.
    Date runningDate = 0;
    Date dayStart = 0;
    Date dayEnd = 0;
    bool knownDay = false;
    const auto enterDay = [&](Date date) {
        runningDate = date;
        const auto day = calendar.dayInterval(date);
        knownDay = day.has_value();
        if (day) std::tie(dayStart, dayEnd) = *day;
    };
    enterDay(0);
    for (std::size_t i = 0; i < tableData.size(); ++i) {
        const Message& message = tableData[i];
        const Date date = createdAt(message);
        const bool sameDay = knownDay ? dayStart <= date && date < dayEnd : calendar.isSameDay(date, runningDate);
        if (!sameDay) {
            enterDay(date);
            rows.emplace_back(DateItem{platform::base64Encode(platform::dateDescription(date)), date});
        }
        const bool endOfGroup = i + 1 == tableData.size() || !continuesGroup(message, tableData[i + 1]);
        // The row shares the message's record; only its flag is its own.
        std::get<Message>(rows.emplace_back(message)).setIsEndOfGroup(endOfGroup);
        // The same place as insertingSystemMessage finds.
        if (noticeAfter && i == *noticeAfter) rows.emplace_back(systemRow(*state.systemMessage));
    }
    if (noticeAfter && *noticeAfter >= tableData.size()) rows.emplace_back(systemRow(*state.systemMessage));
    return appendingClosedMessage(std::move(rows), state);
}

void recompute(RequestTableState& state) { state.cellItems = recompute(state.tableData, state); }

} // namespace belvakit
