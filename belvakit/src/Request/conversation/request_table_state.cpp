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
        if (!hasAttachment(messages[index])) continue;
        if (*parentIdOf(messages[index]) == parent) after = index;
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

namespace {

// The running date's day as [start, end), so that one calendar lookup serves all its messages.
class Dating {
public:
    explicit Dating(const platform::Calendar& calendar) : calendar_(calendar) { enter(0); }

    bool sameDay(Date date) const {
        return knownDay_ ? dayStart_ <= date && date < dayEnd_ : calendar_.isSameDay(date, runningDate_);
    }
    void enter(Date date) {
        runningDate_ = date;
        const auto day = calendar_.dayInterval(date);
        knownDay_ = day.has_value();
        if (day) std::tie(dayStart_, dayEnd_) = *day;
    }

private:
    const platform::Calendar& calendar_;
    Date runningDate_ = 0;
    Date dayStart_ = 0;
    Date dayEnd_ = 0;
    bool knownDay_ = false;
};

std::string calendarKey(const platform::Calendar& calendar) {
    return calendar.localeId() + '\n' + calendar.timeZoneId();
}

// The rows of messages [from, end), after those of the messages before `from`.
void appendRows(std::vector<CellItem>& rows, const std::vector<Message>& tableData, std::size_t from, Dating& dating,
                std::optional<std::size_t> noticeAfter, const RequestTableState& state) {
    for (std::size_t i = from; i < tableData.size(); ++i) {
        const Message& message = tableData[i];
        const Date date = createdAt(message);
        if (!dating.sameDay(date)) {
            dating.enter(date);
            rows.emplace_back(DateItem{platform::base64Encode(platform::dateDescription(date)), date});
        }
        const bool endOfGroup = i + 1 == tableData.size() || !continuesGroup(message, tableData[i + 1]);
        // The row shares the message's record; only its flag is its own.
        std::get<Message>(rows.emplace_back(message)).setIsEndOfGroup(endOfGroup);
        // The same place as insertingSystemMessage finds.
        if (noticeAfter && i == *noticeAfter) rows.emplace_back(systemRow(*state.systemMessage));
    }
    if (noticeAfter && *noticeAfter >= tableData.size()) rows.emplace_back(systemRow(*state.systemMessage));
}

void reserveRows(std::vector<CellItem>& rows, std::size_t messages) {
    // Room for a date row every few dozen messages and the two notices; more days cost one regrowth.
    rows.reserve(messages + messages / 32 + 3);
}

// Copies to `rows` the rows of `previous` that stay the rows of the messages before `from`: the
// rows of those messages and the notice after the last of them, without the date row of message
// `from`. `lastDate` is the last date row among them, where the dating goes on. False when those
// rows don't hold the earlier messages in order, or not the notice `notice` (the message it
// follows and its text) alone.
bool keepRows(const RequestTableState& previous, std::size_t from,
              std::optional<std::pair<std::size_t, const std::string*>> notice, std::vector<CellItem>& rows,
              std::optional<Date>& lastDate) {
    std::size_t messages = 0;
    std::size_t count = 0;  // the row after the last kept message
    bool noticeSeen = false;
    const auto& shown = previous.cellItems;
    const auto isNotice = [&](const CellItem& row) {
        const auto* text = std::get_if<SystemMessage>(&row);
        if (!text || noticeSeen || !notice || notice->first + 1 != messages || text->message != *notice->second)
            return false;
        noticeSeen = true;
        return true;
    };
    for (std::size_t row = 0; row < shown.size() && messages < from; ++row) {
        const CellItem& item = shown[row];
        if (const auto* message = std::get_if<Message>(&item)) {
            if (!message->sharesRecordWith(previous.tableData[messages])) return false;
            ++messages;
            count = row + 1;
        } else if (const auto* date = std::get_if<DateItem>(&item)) {
            lastDate = date->date;  // every date row walked here comes before a kept message
        } else if (!isNotice(item)) {
            return false;
        }
        rows.push_back(item);
    }
    if (messages < from) return false;
    if (count < shown.size() && std::holds_alternative<SystemMessage>(shown[count])) {
        if (!isNotice(shown[count])) return false;
        rows.push_back(shown[count]);
    }
    return notice.has_value() == noticeSeen;
}

} // namespace

// The four steps in one pass over the messages: a conversation can hold thousands of them, and
// every change recomputes its rows.
std::vector<CellItem> recompute(const std::vector<Message>& tableData, const RequestTableState& state) {
    const platform::Calendar calendar = platform::Calendar::current();
    std::vector<CellItem> rows;
    reserveRows(rows, tableData.size());
    Dating dating(calendar);
    appendRows(rows, tableData, 0, dating, systemMessageAfter(state), state);
    return appendingClosedMessage(std::move(rows), state);
}

void recompute(RequestTableState& state) {
    state.cellItems = recompute(state.tableData, state);
    state.rowsCalendar = calendarKey(platform::Calendar::current());
}

std::size_t recompute(RequestTableState& state, const RequestTableState& previous) {
    const platform::Calendar calendar = platform::Calendar::current();
    const auto& messages = state.tableData;
    const auto& before = previous.tableData;
    std::size_t same = 0;
    for (const std::size_t common = std::min(messages.size(), before.size());
         same < common && messages[same].sharesRecordWith(before[same]);)
        ++same;
    // The last of them ends its group or not by the message after it, which may be another now.
    const std::size_t from = same == 0 ? 0 : same - 1;
    const auto noticeAfter = systemMessageAfter(state);
    // The notice among the kept rows, if it goes there.
    std::optional<std::pair<std::size_t, const std::string*>> keptNotice;
    if (noticeAfter && *noticeAfter < from) keptNotice.emplace(*noticeAfter, &*state.systemMessage);
    const std::string calendarUsed = calendarKey(calendar);
    std::vector<CellItem> rows;
    std::optional<Date> lastDate;
    bool kept = false;
    if (from > 0 && previous.rowsCalendar == calendarUsed) {
        reserveRows(rows, messages.size());
        kept = keepRows(previous, from, keptNotice, rows, lastDate);
    }
    if (!kept) {
        recompute(state);
        return 0;
    }
    const std::size_t keptCount = rows.size();
    Dating dating(calendar);
    if (lastDate) dating.enter(*lastDate);
    appendRows(rows, messages, from, dating, noticeAfter, state);
    state.cellItems = appendingClosedMessage(std::move(rows), state);
    state.rowsCalendar = calendarUsed;
    return keptCount;
}

} // namespace belvakit
