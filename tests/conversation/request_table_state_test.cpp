#include "belvakit/Request/conversation/request_table_state.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "platform/base64.hpp"
#include "table_fixtures.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using namespace table_fixtures;
using Strings = std::vector<std::string>;

namespace {

std::vector<bool> endsOfGroups(const std::vector<Message>& messages) {
    std::vector<bool> ends;
    for (const auto& message : messages) ends.push_back(isEndOfGroup(message));
    return ends;
}

RequestTableState stateWith(std::vector<Message> messages) {
    RequestTableState state;
    state.tableData = std::move(messages);
    return state;
}

class RequestTableRows : public FixedCalendar {};

} // namespace

TEST_F(RequestTableRows, GroupsEndWhereTheAuthorOrTheFailureChanges) {
    const std::vector<Message> messages{
        agent("a1", t0, 7, "Ada"),       agent("a2", t0 + 1, 7, "Ada Lovelace"),  // one author, two names
        text("u1", t0 + 2, DeliveryStatus::failed), text("u2", t0 + 3, DeliveryStatus::notDelivered),
        text("u3", t0 + 4, DeliveryStatus::notDelivered), text("u4", t0 + 5, DeliveryStatus::failed),
        agent("a3", t0 + 6, 8),
    };
    const auto grouped = groupedMessages(messages);
    // Failed then queued ends a group; queued then failed doesn't; the last row always ends one.
    EXPECT_EQ(endsOfGroups(grouped), (std::vector<bool>{false, true, true, false, false, true, true}));
    EXPECT_EQ(ids(grouped), ids(messages));
}

TEST_F(RequestTableRows, RecomputeLeavesTheMessagesAsTheyCame) {
    auto state = stateWith({text("u1", t0), text("u2", t0 + 1)});
    recompute(state);
    EXPECT_EQ(endsOfGroups(state.tableData), (std::vector<bool>{false, false}));
    ASSERT_EQ(state.cellItems.size(), 3u);
    EXPECT_TRUE(isEndOfGroup(std::get<Message>(state.cellItems[2])));
}

TEST_F(RequestTableRows, DateRowsComeAtEachChangeOfDayWithStableIds) {
    const Date midnight = 1700006400;  // 2023-11-15 00:00:00 UTC
    const auto rows = dateRows({text("u1", midnight + 60), text("u2", midnight + 23 * 3600),  // same day
                                text("u3", midnight + 24 * 3600 + 5), text("u4", midnight + 60)});  // and back
    EXPECT_EQ(rowIds(rows), (Strings{"date", "u1", "u2", "date", "u3", "date", "u4"}));
    const auto& first = std::get<DateItem>(rows[0]);
    EXPECT_EQ(first.date, midnight + 60);
    EXPECT_EQ(first.id, platform::base64Encode("2023-11-15 00:01:00 +0000"));
    EXPECT_EQ(std::get<DateItem>(rows[5]).id, first.id) << "the id comes from the date, not the position";
}

TEST_F(RequestTableRows, DaysAreTheUsersCalendarDays) {
    // 23:55 and 00:05 in New York are one day in UTC.
    const Date beforeMidnightInNewYork = 1700024100;  // 2023-11-15 04:55 UTC
    const std::vector<Message> messages{text("u1", beforeMidnightInNewYork), text("u2", beforeMidnightInNewYork + 600)};
    EXPECT_EQ(rowIds(dateRows(messages)), (Strings{"date", "u1", "u2"}));
    platform::Calendar::setCurrent(platform::Calendar("en_US", "America/New_York"));
    EXPECT_EQ(rowIds(dateRows(messages)), (Strings{"date", "u1", "date", "u2"}));
}

TEST_F(RequestTableRows, SystemMessageFollowsTheFirstDeliveredTextAndItsAttachments) {
    auto state = stateWith({text("q", t0, DeliveryStatus::notDelivered), text("u1", t0 + 1, DeliveryStatus::lastDelivered),
                            image("i1", "u1", t0 + 2), image("i2", "u1", t0 + 3), agent("a1", t0 + 4)});
    state.systemMessage = "We answer within a day";
    recompute(state);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "q", "u1", "i1", "i2", "system", "a1"}));
    const auto& notice = std::get<SystemMessage>(state.cellItems[5]);
    EXPECT_EQ(notice.message, "We answer within a day");
    EXPECT_EQ(notice.id, platform::base64Encode("We answer within a day"));
}

TEST_F(RequestTableRows, SystemMessageCountsMessagesOnlyAcrossDays) {
    auto state = stateWith({agent("a1", t0), agent("a2", t0 + 86400), text("u1", t0 + 86401)});
    state.systemMessage = "Notice";
    recompute(state);
    // The second date row isn't counted, so the notice lands one row early.
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "a1", "date", "a2", "system", "u1"}));
}

TEST_F(RequestTableRows, SystemMessageFollowsATextWithoutAttachments) {
    auto state = stateWith({text("u1", t0, DeliveryStatus::delivered), agent("a1", t0 + 1)});
    state.systemMessage = "Notice";
    recompute(state);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "system", "a1"}));
}

TEST_F(RequestTableRows, NoSystemMessageWithoutADeliveredText) {
    auto state = stateWith({text("u1", t0, DeliveryStatus::failed), agent("a1", t0 + 1)});
    state.systemMessage = "Notice";
    recompute(state);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "a1"}));
}

TEST_F(RequestTableRows, ClosedTicketEndsWithTheClosedNotice) {
    auto state = stateWith({});
    state.ticketClosed = true;
    recompute(state);
    ASSERT_EQ(state.cellItems.size(), 1u);
    const auto& closed = std::get<SystemMessage>(state.cellItems[0]);
    EXPECT_EQ(closed.message, localized("ios.CRVRequests.createRequest.failed.closed"));
    EXPECT_EQ(closed.id, platform::base64Encode(closed.message));
    state.ticketClosed = false;
    recompute(state);
    EXPECT_TRUE(state.cellItems.empty());
}

TEST(RequestTableState, EqualityLooksAtActionTypeClosedFlagAndMessageRows) {
    RequestTableState left = stateWith({text("u1", t0)});
    RequestTableState right = left;
    right.remoteId = "99";
    right.maxAttachmentSize = 5;
    right.cellItems.clear();
    EXPECT_EQ(left, right);
    right.lastActionType = ActionTypes::setMessages;
    EXPECT_NE(left, right);
    right = left;
    right.ticketClosed = true;
    EXPECT_NE(left, right);
    right = left;
    std::get<UserMessage>(right.tableData[0]).status = DeliveryStatus::failed;
    EXPECT_NE(left, right);
    right = left;
    right.tableData.push_back(text("u2", t0));
    EXPECT_NE(left, right);
}

namespace {

std::vector<CellItem> stepByStep(const RequestTableState& state) {
    return appendingClosedMessage(insertingSystemMessage(dateRows(groupedMessages(state.tableData)), state), state);
}

bool sameRows(const std::vector<CellItem>& left, const std::vector<CellItem>& right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (!(EquatableCellItem(left[i]) == EquatableCellItem(right[i]))) return false;
    return true;
}

} // namespace

TEST_F(RequestTableRows, RecomputeIsTheFourStepsInOrder) {
    const std::vector<std::vector<Message>> conversations{
        {},
        {text("u1", t0)},
        {agent("a1", t0), agent("a2", t0 + 86400), text("u1", t0 + 86401), image("i1", "u1", t0 + 86402)},
        {text("u1", t0, DeliveryStatus::failed), text("u2", t0 + 1), image("i1", "u2", t0 + 2), image("i2", "u2", t0 + 3),
         agent("a1", t0 + 200000), text("u3", t0 + 5, DeliveryStatus::lastDelivered)},
        {image("i9", "u9", t0 - 5), text("u9", t0 + 1), image("i8", "u9", t0 + 2)},  // attachment before its text
        {text("u1", 10), text("u2", 20)},  // on the first day of 1970: no date row
    };
    for (const auto& messages : conversations) {
        for (const bool closed : {false, true}) {
            for (const auto& notice : {std::optional<std::string>(), std::optional<std::string>("Notice")}) {
                auto state = stateWith(messages);
                state.ticketClosed = closed;
                state.systemMessage = notice;
                EXPECT_TRUE(sameRows(recompute(state.tableData, state), stepByStep(state)))
                    << messages.size() << " messages, closed " << closed << ", notice " << notice.has_value();
            }
        }
    }
}
