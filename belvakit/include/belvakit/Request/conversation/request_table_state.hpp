#pragma once

#include "belvakit/Request/conversation/message.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// What the latest reduction did; the screen picks its scrolling and refreshing by it.
enum class ActionTypes {
    remoteTicketCreated,
    remoteCommentCreated,
    fetchedNewComments,
    fetchedNewCommentsError,
    setMessages,
    deleteMessages,
    moveMessagesToBottom,
    noAction,
    reset,
};

// One conversation: its messages as known, and the rows derived from them.
struct RequestTableState {
    std::vector<CellItem> cellItems;
    // Never holds date or system rows.
    std::vector<Message> tableData;
    std::optional<std::string> systemMessage;
    bool ticketClosed = false;
    std::map<std::string, std::string> mapLocalToRemote;
    // The key of the conversation in the "Tickets" cache.
    std::optional<std::string> localId;
    std::optional<std::string> remoteId;
    ActionTypes lastActionType = ActionTypes::noAction;
    bool finishedLoading = false;
    std::int64_t maxAttachmentSize = 0;
    // The calendar `recompute` dated `cellItems` in; empty for rows it didn't derive. Rows are
    // taken over from an earlier state only when it dated them in the calendar of the time.
    std::string rowsCalendar;

    // Only what the table's listener redraws for: the action type, the closed flag and the
    // messages as rows.
    bool operator==(const RequestTableState& other) const;
};

const RequestTableState& initialRequestTableState();

// The steps of the row derivation, in the order `recompute` applies them.
std::vector<Message> groupedMessages(const std::vector<Message>& tableData);
std::vector<CellItem> dateRows(std::vector<Message> grouped);
std::vector<CellItem> insertingSystemMessage(std::vector<CellItem> cells, const RequestTableState& state);
std::vector<CellItem> appendingClosedMessage(std::vector<CellItem> cells, const RequestTableState& state);

// The rows of `tableData` under the notices of `state`. `tableData` itself is left as it is.
std::vector<CellItem> recompute(const std::vector<Message>& tableData, const RequestTableState& state);
// Stores the rows of the state's own messages in it.
void recompute(RequestTableState& state);
// The same, keeping the rows of `previous` for the messages at the start of the conversation that
// are still the very same records, where those rows cannot have changed: a change near the end
// of a long conversation costs a copy of its rows, not their derivation. The number of rows kept.
std::size_t recompute(RequestTableState& state, const RequestTableState& previous);

} // namespace belvakit
