#include "belvakit/Request/conversation/message_equality.hpp"
#include "fixtures.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using namespace conversation_fixtures;

namespace {
bool sameRow(Message left, Message right) { return EquatableMessage(std::move(left)) == EquatableMessage(std::move(right)); }
bool continues(Message left, Message right) {
    return GroupingEqutable(std::move(left)) == GroupingEqutable(std::move(right));
}
} // namespace

TEST(EquatableMessage, ComparesIdGroupEndAndTheFieldsOfSharedCapabilities) {
    EXPECT_TRUE(sameRow(userMessage("1"), userMessage("1")));
    EXPECT_FALSE(sameRow(userMessage("1"), userMessage("2")));

    EXPECT_FALSE(sameRow(userMessage("1"), Message(userMessage("1"), true)));

    auto bodyChanged = userMessage("1");
    bodyChanged.body = "Other";
    EXPECT_FALSE(sameRow(userMessage("1"), bodyChanged));
    // The html body and the date take no part.
    auto htmlChanged = userMessage("1");
    htmlChanged.htmlBody = "<i>x</i>";
    htmlChanged.createdAt = 5;
    EXPECT_TRUE(sameRow(userMessage("1"), htmlChanged));

    EXPECT_FALSE(sameRow(userMessage("1", DeliveryStatus::failed), userMessage("1", DeliveryStatus::delivered)));

    auto downloaded = userFile("5");
    downloaded.downloaded = !downloaded.downloaded;
    EXPECT_FALSE(sameRow(userFile("5"), downloaded));

    // A user message and a user file of one id share only the status.
    auto text = userMessage("same", DeliveryStatus::failed);
    auto file = userFile("same", DeliveryStatus::failed);
    EXPECT_TRUE(sameRow(text, file));
    file.status = DeliveryStatus::delivered;
    EXPECT_FALSE(sameRow(text, file));
}

TEST(EquatableMessage, ImagesMustHoldTheVeryBitmapObjects) {
    auto left = userImage("3");
    auto right = userImage("3");
    left.image = platform::makeImage(1, 1);
    right.image = platform::makeImage(1, 1);
    EXPECT_FALSE(sameRow(left, right)) << "equal pixels, different objects";
    right.image = left.image;
    EXPECT_TRUE(sameRow(left, right));
    right.thumbnailUrl = "elsewhere";
    EXPECT_FALSE(sameRow(left, right));
}

TEST(EquatableCellItem, MatchesByKindThenByContent) {
    auto cell = [](auto item) { return EquatableCellItem(CellItem(std::move(item))); };
    EXPECT_TRUE(cell(DateItem{"d", 10}) == cell(DateItem{"d", 10}));
    EXPECT_FALSE(cell(DateItem{"d", 10}) == cell(DateItem{"d", 11}));
    EXPECT_TRUE(cell(SystemMessage{"s", "closed"}) == cell(SystemMessage{"s", "closed"}));
    EXPECT_FALSE(cell(SystemMessage{"s", "closed"}) == cell(SystemMessage{"s", "reopened"}));
    EXPECT_FALSE(cell(SystemMessage{"x", "m"}) == cell(DateItem{"x", 0}));
    EXPECT_TRUE(cell(Message(agentMessage("2"))) == cell(Message(agentMessage("2"))));
    auto edited = agentMessage("2");
    edited.body = "changed";
    EXPECT_FALSE(cell(Message(agentMessage("2"))) == cell(Message(edited)));
    // Same id, other type.
    EXPECT_FALSE(cell(Message(userMessage("2"))) == cell(Message(agentMessage("2"))));
}

TEST(GroupingEqutable, AgentsByAuthorUsersWhateverTheirTimeAndAFailedRowEndsItsGroup) {
    EXPECT_FALSE(continues(agentMessage("1", 5), agentFile("2")));
    auto file = agentFile("2");
    file.userID = 5;
    EXPECT_TRUE(continues(agentMessage("1", 5), file));
    EXPECT_FALSE(continues(agentMessage("1", 5), agentMessage("3", 6)));

    auto later = userFile("2", DeliveryStatus::delivered);
    later.createdAt = userMessage("1").createdAt + 7 * 24 * 3600;
    EXPECT_TRUE(continues(userMessage("1"), later));
    EXPECT_FALSE(continues(userMessage("1"), agentMessage("2")));
    EXPECT_FALSE(continues(agentMessage("2"), userMessage("1")));

    // A failed row ends its group but may join the previous one.
    EXPECT_FALSE(continues(userMessage("1", DeliveryStatus::failed), userMessage("2", DeliveryStatus::delivered)));
    EXPECT_TRUE(continues(userMessage("1", DeliveryStatus::delivered), userMessage("2", DeliveryStatus::failed)));
    EXPECT_TRUE(continues(userMessage("1", DeliveryStatus::failed), userImage("2", DeliveryStatus::failed)));
}
