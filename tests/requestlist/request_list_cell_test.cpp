#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include "platform/calendar.hpp"
#include "platform/clock.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

// 2023-11-15 10:00:00 UTC.
constexpr Date now = 1700042400;

class RequestListCell : public ::testing::Test {
protected:
    void SetUp() override {
        platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
        previousClock_ = platform::setWallClock(std::make_shared<platform::FixedWallClock>(now));
    }
    void TearDown() override {
        platform::setWallClock(previousClock_);
        platform::Calendar::setCurrent(previousCalendar_);
    }

private:
    platform::Calendar previousCalendar_ = platform::Calendar::current();
    std::shared_ptr<platform::WallClock> previousClock_;
};

dastrel::CRVRequest request() {
    dastrel::CRVRequest result;
    result.requestId = "42";
    result.requestDescription = "Printer on fire";
    result.status = "pending";
    result.createdAt = now - 3600;  // 09:00 today
    result.commentCount = 3;
    result.lastComment = "Have you tried water?";
    result.commentingAgentsIds = {8, 7};
    return result;
}

const std::vector<dastrel::CRVSupportUser> agents{
    {6, "Nobody", std::nullopt, true}, {7, "Ada", "https://avatars/7", true}, {8, "Grace", std::nullopt, true}};

} // namespace

TEST_F(RequestListCell, DatesShowTheTimeTodayAndDayAndMonthOtherwise) {
    EXPECT_EQ(requestListDateText(now - 3600), "09:00");
    EXPECT_EQ(requestListDateText(now - 11 * 3600), "14 Nov");
    EXPECT_EQ(requestListDateText(now - 400 * 86400), "11 Oct") << "no year, however old";
    platform::Calendar::setCurrent(platform::Calendar("en_US", "Asia/Tokyo"));
    EXPECT_EQ(requestListDateText(now - 11 * 3600), "08:00") << "today in Tokyo";
}

TEST_F(RequestListCell, CalculatorComparesByTheUpdateWhenThereIsOne) {
    const RequestListTimestampCalculator created(now - 3600, std::nullopt);
    EXPECT_EQ(created.ticketCreatedAt, "09:00");
    EXPECT_FALSE(created.ticketUpdatedAt);
    EXPECT_EQ(created.timeToCompare, now - 3600);
    const RequestListTimestampCalculator updated(now - 86400, now - 60);
    EXPECT_EQ(updated.ticketCreatedAt, "14 Nov");
    EXPECT_EQ(updated.ticketUpdatedAt, "09:59");
    EXPECT_EQ(updated.timeToCompare, now - 60);
}

TEST_F(RequestListCell, RowOfARequestTakesItsFieldsAndAgents) {
    const auto cell = RequestListCellData::fromRequest(request(), agents, true);
    EXPECT_EQ(cell.displayTimestamp, "09:00");
    EXPECT_EQ(cell.updatedAtDate, now - 3600);
    EXPECT_EQ(cell.requestId, "42");
    EXPECT_EQ(cell.requestTitle, "Printer on fire");
    EXPECT_EQ(cell.requestDescription, "Printer on fire");
    EXPECT_EQ(cell.requestLastComment, "Have you tried water?");
    EXPECT_EQ(cell.requestStatus, RequestStatus::pending);
    EXPECT_EQ(cell.commentCount, 3);
    EXPECT_TRUE(cell.hasUnreadComments);
    EXPECT_FALSE(cell.isErrored);
    ASSERT_TRUE(cell.agents);
    ASSERT_EQ(cell.agents->size(), 2u);
    EXPECT_EQ((*cell.agents)[0].name, "Ada") << "in the order of the response's list";
    EXPECT_EQ(cell.agentAvatarInfo,
              (AgentAvatarInfo{"https://avatars/7", nullptr, "42", "Ada", 7}));
}

TEST_F(RequestListCell, RowOfAnUpdatedRequestShowsAndSortsByTheUpdate) {
    auto updated = request();
    updated.createdAt = now - 5 * 86400;
    updated.publicUpdatedAt = now - 120;
    const auto cell = RequestListCellData::fromRequest(updated, agents, false);
    EXPECT_EQ(cell.displayTimestamp, "09:58");
    EXPECT_EQ(cell.updatedAtDate, now - 120);
}

TEST_F(RequestListCell, StatusTextsMapToTheirCasesAndAnythingElseIsOpen) {
    for (const auto status : {RequestStatus::new_, RequestStatus::open, RequestStatus::pending, RequestStatus::hold,
                              RequestStatus::solved, RequestStatus::closed}) {
        auto source = request();
        source.status = std::string(rawValue(status));
        EXPECT_EQ(RequestListCellData::fromRequest(source, agents, false).requestStatus, status);
    }
    EXPECT_EQ(rawValue(RequestStatus::new_), "new");
    auto odd = request();
    odd.status = "Closed";
    EXPECT_EQ(RequestListCellData::fromRequest(odd, agents, false).requestStatus, RequestStatus::open);
}

TEST_F(RequestListCell, RowWithoutCommentingAgentsHasNoAvatar) {
    auto lonely = request();
    lonely.commentingAgentsIds = {99};
    const auto cell = RequestListCellData::fromRequest(lonely, agents, false);
    EXPECT_FALSE(cell.agentAvatarInfo);
    EXPECT_TRUE(cell.agents && cell.agents->empty());
}

TEST_F(RequestListCell, LocalRowIsANewTicketOfOneComment) {
    const auto cell = RequestListCellData::local("local-1", "Help me", now - 86400, true);
    EXPECT_EQ(cell.displayTimestamp, "14 Nov");
    EXPECT_EQ(cell.updatedAtDate, now - 86400);
    EXPECT_EQ(cell.requestTitle, "Help me");
    EXPECT_EQ(cell.requestDescription, "Help me");
    EXPECT_FALSE(cell.requestLastComment);
    EXPECT_EQ(cell.requestStatus, RequestStatus::new_);
    EXPECT_EQ(cell.commentCount, 1);
    EXPECT_FALSE(cell.hasUnreadComments);
    EXPECT_FALSE(cell.agents);
    EXPECT_FALSE(cell.agentAvatarInfo);
    EXPECT_TRUE(cell.isErrored);
}
