#include "belvakit/Request/conversation/request_table_state.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "platform/base64.hpp"
#include "table_fixtures.hpp"

#include <algorithm>
#include <random>

using namespace table_fixtures;

namespace {

RequestTableState stateWith(std::vector<Message> messages, std::optional<std::string> notice = std::nullopt) {
    RequestTableState state;
    state.tableData = std::move(messages);
    state.systemMessage = std::move(notice);
    recompute(state);
    return state;
}

class RequestTableRows : public FixedCalendar {};

} // namespace

TEST_F(RequestTableRows, GroupsEndWhereTheAuthorOrTheFailureChanges) {
    auto renamed = agent("a2", t0 + 1);
    renamed.name = "Ada Lovelace";
    const auto grouped = groupedMessages({agent("a1", t0), renamed, text("u1", t0, DeliveryStatus::failed),
                                          text("u2", t0, DeliveryStatus::notDelivered), text("u3", t0, DeliveryStatus::failed),
                                          agent("a3", t0, 8)});
    std::vector<bool> ends;
    for (const auto& message : grouped) ends.push_back(isEndOfGroup(message));
    EXPECT_EQ(ends, (std::vector<bool>{false, true, true, false, true, true}));
}

TEST_F(RequestTableRows, DateRowsFollowTheUsersCalendarDays) {
    const Date midnight = 1700006400;  // 2023-11-15 00:00 UTC
    const auto rows = dateRows({text("u1", midnight + 60), text("u2", midnight + 23 * 3600),
                                text("u3", midnight + 86405), text("u4", midnight + 60)});  // and back a day
    EXPECT_EQ(rowIds(rows), (Strings{"date", "u1", "u2", "date", "u3", "date", "u4"}));
    EXPECT_EQ(id(rows[0]), platform::base64Encode("2023-11-15 00:01:00 +0000"));
    EXPECT_EQ(id(rows[5]), id(rows[0])) << "the id comes from the date, not the position";

    // 23:55 and 00:05 in New York are one day in UTC.
    const std::vector<Message> nearMidnight{text("u1", 1700024100), text("u2", 1700024700)};
    EXPECT_EQ(rowIds(stateWith(nearMidnight).cellItems), (Strings{"date", "u1", "u2"}));
    platform::Calendar::setCurrent(platform::Calendar("en_US", "America/New_York"));
    EXPECT_EQ(rowIds(stateWith(nearMidnight).cellItems), (Strings{"date", "u1", "date", "u2"}));
}

TEST_F(RequestTableRows, SystemMessageFollowsTheFirstDeliveredTextAndItsAttachments) {
    const auto state = stateWith({text("q", t0, DeliveryStatus::notDelivered), text("u1", t0, DeliveryStatus::lastDelivered),
                                  image("i1", "u1", t0), image("i2", "u1", t0), agent("a1", t0)},
                                 "We answer within a day");
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "q", "u1", "i1", "i2", "system", "a1"}));
    EXPECT_EQ(id(state.cellItems[5]), platform::base64Encode("We answer within a day"));
    // Date rows before the text or between it and its attachments don't move the notice.
    EXPECT_EQ(rowIds(stateWith({agent("a1", t0), agent("a2", t0 + 86400), text("u1", t0 + 86401)}, "N").cellItems),
              (Strings{"date", "a1", "date", "a2", "u1", "system"}));
    EXPECT_EQ(rowIds(stateWith({agent("a1", t0), text("u1", t0 + 86400), image("i1", "u1", t0 + 2 * 86400),
                                agent("a2", t0 + 3 * 86400)},
                               "N")
                         .cellItems),
              (Strings{"date", "a1", "date", "u1", "date", "i1", "system", "date", "a2"}));
    // An attachment a merge put after another row still comes before the notice.
    EXPECT_EQ(rowIds(stateWith({text("u1", t0), agent("a1", t0), image("i1", "u1", t0)}, "N").cellItems),
              (Strings{"date", "u1", "a1", "i1", "system"}));
    EXPECT_EQ(rowIds(stateWith({text("u1", t0, DeliveryStatus::failed)}, "N").cellItems), (Strings{"date", "u1"}));
}

TEST_F(RequestTableRows, ClosedTicketEndsWithTheClosedNotice) {
    RequestTableState state;
    state.ticketClosed = true;
    recompute(state);
    ASSERT_EQ(state.cellItems.size(), 1u);
    const auto& closed = std::get<SystemMessage>(state.cellItems[0]);
    EXPECT_EQ(closed.message, localized("ios.CRVRequests.createRequest.failed.closed"));
    EXPECT_EQ(closed.id, platform::base64Encode(closed.message));
}

TEST_F(RequestTableRows, RecomputeIsTheFourStepsInOrderAndLeavesTheMessagesAlone) {
    const std::vector<std::vector<Message>> conversations{
        {},
        {agent("a1", t0), agent("a2", t0 + 86400), text("u1", t0 + 86401), image("i1", "u1", t0 + 86402)},
        {text("u1", t0, DeliveryStatus::failed), text("u2", t0 + 1), image("i1", "u2", t0 + 2), image("i2", "u2", t0 + 3),
         agent("a1", t0 + 200000), text("u3", t0 + 5, DeliveryStatus::lastDelivered)},
        {image("i9", "u9", t0 - 5), text("u9", t0 + 1), image("i8", "u9", t0 + 2)},
        {text("u1", 10), text("u2", 20)},  // on the first day of 1970: no date row
    };
    for (const auto& messages : conversations)
        for (const bool closed : {false, true})
            for (const auto& notice : {std::optional<std::string>(), std::optional<std::string>("Notice")}) {
                auto state = stateWith(messages, notice);
                state.ticketClosed = closed;
                const auto rows = recompute(state.tableData, state);
                const auto steps = appendingClosedMessage(
                    insertingSystemMessage(dateRows(groupedMessages(state.tableData)), state), state);
                ASSERT_EQ(rows.size(), steps.size());
                for (std::size_t i = 0; i < rows.size(); ++i)
                    EXPECT_TRUE(EquatableCellItem(rows[i]) == EquatableCellItem(steps[i])) << i;
                for (const auto& message : state.tableData) EXPECT_FALSE(isEndOfGroup(message));
            }
}

// A conversation is held once: its rows refer to the records of its messages, whichever group
// ends they show, and a state copied by a reduction refers to the same records again.
TEST_F(RequestTableRows, RowsShareTheRecordsOfTheirMessages) {
    std::vector<Message> messages{Message(text("u1", t0), true), text("u2", t0 + 1), image("i1", "u2", t0 + 2),
                                  Message(agent("a1", t0 + 86400), true), agent("a2", t0 + 86401)};
    const auto state = stateWith(messages, "Notice");
    std::size_t shared = 0;
    for (const auto& row : state.cellItems) {
        const auto* message = std::get_if<Message>(&row);
        if (!message) continue;
        const auto same = std::find_if(state.tableData.begin(), state.tableData.end(),
                                       [&](const Message& kept) { return id(kept) == id(*message); });
        ASSERT_NE(same, state.tableData.end());
        EXPECT_TRUE(message->sharesRecordWith(*same)) << id(*message);
        EXPECT_TRUE(same->sharesRecordWith(messages[static_cast<std::size_t>(same - state.tableData.begin())]));
        ++shared;
    }
    EXPECT_EQ(shared, messages.size());
    std::vector<bool> rowEnds;
    std::vector<bool> keptEnds;
    for (const auto& row : state.cellItems)
        if (const auto* message = std::get_if<Message>(&row)) rowEnds.push_back(isEndOfGroup(*message));
    for (const auto& message : state.tableData) keptEnds.push_back(isEndOfGroup(message));
    EXPECT_EQ(rowEnds, (std::vector<bool>{false, false, true, false, true}));
    EXPECT_EQ(keptEnds, (std::vector<bool>{true, false, false, true, false})) << "the messages keep their own flags";
}

namespace {

// A conversation of a few days, of every kind that groups or dates differently.
Message randomMessage(std::mt19937& random, int serial, Date& at) {
    at += random() % 4 == 0 ? 86400 * static_cast<int>(random() % 3) - 3600 : 60;
    const std::string id = "m" + std::to_string(serial);
    const auto status = static_cast<DeliveryStatus>(random() % 4);
    switch (random() % 4) {
    case 0: return agent(id, at, 7 + static_cast<int>(random() % 2));
    case 1: return image(id, "m" + std::to_string(serial - 1 - static_cast<int>(random() % 3)), at, status);
    default: return text(id, at, status);
    }
}

std::optional<std::string> randomNotice(std::mt19937& random) {
    return random() % 3 == 0 ? std::nullopt : std::optional<std::string>("notice " + std::to_string(random() % 2));
}

} // namespace

// Rows kept from an earlier state are the rows a derivation from scratch gives, whatever changed
// in between: messages added, gone, changed or moved anywhere, the notice, the closed flag, the
// calendar, or an earlier state whose notice changed after its rows were made.
TEST_F(RequestTableRows, RowsKeptFromAnEarlierStateAreTheRowsOfAFreshDerivation) {
    int kept = 0;  // states that kept rows
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        std::mt19937 random(seed);
        platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
        Date at = t0;
        int serial = 0;
        RequestTableState previous;
        const int count = static_cast<int>(random() % 14);
        for (int i = 0; i < count; ++i) previous.tableData.push_back(randomMessage(random, serial++, at));
        previous.systemMessage = randomNotice(random);
        previous.ticketClosed = random() % 4 == 0;
        recompute(previous);
        if (random() % 6 == 0) previous.systemMessage = randomNotice(random);  // changed without new rows

        RequestTableState next;
        next.tableData = previous.tableData;
        next.systemMessage = random() % 5 == 0 ? randomNotice(random) : previous.systemMessage;
        next.ticketClosed = random() % 5 == 0 ? !previous.ticketClosed : previous.ticketClosed;
        auto& messages = next.tableData;
        for (int changes = static_cast<int>(random() % 3); changes > 0; --changes) {
            const std::size_t place = messages.empty() ? 0 : random() % messages.size();
            switch (random() % 5) {
            case 0: messages.push_back(randomMessage(random, serial++, at)); break;
            case 1: messages.insert(messages.begin() + static_cast<std::ptrdiff_t>(place), randomMessage(random, serial++, at)); break;
            case 2: if (!messages.empty()) messages.erase(messages.begin() + static_cast<std::ptrdiff_t>(place)); break;
            case 3: if (!messages.empty()) setStatus(messages[place], static_cast<DeliveryStatus>(random() % 4)); break;
            default: if (!messages.empty()) setCreatedAt(messages[place], createdAt(messages[place]) + 86400); break;
            }
        }
        if (random() % 10 == 0) platform::Calendar::setCurrent(platform::Calendar("en_US", "America/New_York"));

        const std::size_t keptRows = recompute(next, previous);
        const auto fresh = recompute(next.tableData, next);
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_EQ(rowIds(next.cellItems), rowIds(fresh));
        for (std::size_t row = 0; row < fresh.size(); ++row) {
            ASSERT_TRUE(EquatableCellItem(next.cellItems[row]) == EquatableCellItem(fresh[row])) << "row " << row;
            ASSERT_EQ(id(next.cellItems[row]), id(fresh[row])) << "row " << row;
        }
        std::size_t message = 0;
        for (const auto& row : next.cellItems) {
            if (const auto* shown = std::get_if<Message>(&row)) {
                ASSERT_TRUE(shown->sharesRecordWith(messages[message++]));
            }
        }
        kept += keptRows > 0;
    }
    EXPECT_GT(kept, 1000) << "most changes keep the rows before them";
}

TEST(RequestTableState, EqualityLooksAtActionTypeClosedFlagAndMessageRows) {
    RequestTableState left;
    left.tableData = {text("u1", t0)};
    RequestTableState right = left;
    right.remoteId = "99";
    right.cellItems = {DateItem{"d", 0}};
    EXPECT_EQ(left, right);
    right.lastActionType = ActionTypes::setMessages;
    EXPECT_NE(left, right);
    right = left;
    right.ticketClosed = true;
    EXPECT_NE(left, right);
    right = left;
    right.tableData[0].edit<UserMessage>([](UserMessage& text) { text.status = DeliveryStatus::failed; });
    EXPECT_NE(left, right);
}
