#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include "platform/calendar.hpp"
#include "platform/clock.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using namespace belvakit;

namespace {

constexpr Date now = 1700042400;  // 2023-11-15 10:00 UTC

class RequestListCell : public ::testing::Test {
protected:
    void SetUp() override {
        platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
        previousClock_ = platform::setWallClock(clock_);
    }
    void TearDown() override {
        platform::setWallClock(previousClock_);
        platform::Calendar::setCurrent(previousCalendar_);
    }

    static dastrel::CRVRequest request(std::string status = "pending") {
        dastrel::CRVRequest result;
        result.requestId = "42";
        result.requestDescription = "Printer on fire";
        result.status = std::move(status);
        result.createdAt = now - 3600;
        result.commentCount = 3;
        result.lastComment = "Tried water?";
        result.commentingAgentsIds = {8, 7};
        return result;
    }
    const std::shared_ptr<platform::FixedWallClock> clock_ = std::make_shared<platform::FixedWallClock>(now);
    const std::vector<dastrel::CRVSupportUser> agents{
        {6, "Nobody", std::nullopt, true}, {7, "Ada", "https://avatars/7", true}, {8, "Grace", std::nullopt, true}};

private:
    platform::Calendar previousCalendar_ = platform::Calendar::current();
    std::shared_ptr<platform::WallClock> previousClock_;
};

} // namespace

TEST_F(RequestListCell, DatesShowTheTimeTodayAndDayAndMonthOtherwise) {
    EXPECT_EQ(requestListDateText(now - 11 * 3600), "14 Nov");
    EXPECT_EQ(requestListDateText(now - 400 * 86400), "11 Oct") << "no year, however old";
    const RequestListTimestampCalculator updated(now - 86400, now - 60);
    EXPECT_EQ(updated.ticketCreatedAt, "14 Nov");
    EXPECT_EQ(updated.ticketUpdatedAt, "09:59");
    EXPECT_EQ(updated.timeToCompare, now - 60);
    platform::Calendar::setCurrent(platform::Calendar("en_US", "Asia/Tokyo"));
    EXPECT_EQ(requestListDateText(now - 11 * 3600), "08:00") << "today in Tokyo";
}

TEST_F(RequestListCell, TextsOfAWholeListAreTheOneOffTextsAcrossMidnightsZonesAndDaylightSaving) {
    // Around the end of daylight saving in New York as well as on a plain day, and back over a
    // year of days, in both directions so that the way back meets days already known.
    std::vector<Date> offsets;
    for (Date offset = -3 * 86400; offset < 2 * 86400; offset += 1800 + 7) offsets.push_back(offset);
    for (Date offset = -400 * 86400; offset < 0; offset += 7 * 3600 + 11) offsets.push_back(offset);
    offsets.insert(offsets.end(), offsets.rbegin(), offsets.rend());
    for (const Date present : {now, Date(1699185600)}) {
        clock_->set(present);
        for (const char* zone : {"UTC", "Asia/Kolkata", "America/New_York"}) {
            platform::Calendar::setCurrent(platform::Calendar("en_US", zone));
            RequestListDateTexts texts;
            for (const Date offset : offsets)
                ASSERT_EQ(texts.text(present + offset), requestListDateText(present + offset)) << zone << " " << offset;
            for (const Date odd : {std::numeric_limits<Date>::quiet_NaN(), std::numeric_limits<Date>::infinity()})
                EXPECT_EQ(texts.text(odd), requestListDateText(odd)) << zone;
        }
    }
}

TEST_F(RequestListCell, RowOfARequestTakesItsFieldsAndAgents) {
    const auto cell = RequestListCellData::fromRequest(request(), agents, true);
    EXPECT_EQ(cell.displayTimestamp, "09:00");
    EXPECT_EQ(cell.updatedAtDate, now - 3600);
    EXPECT_EQ(cell.requestTitle, "Printer on fire");
    EXPECT_EQ(cell.requestLastComment, "Tried water?");
    EXPECT_EQ(cell.requestStatus, RequestStatus::pending);
    EXPECT_EQ(cell.commentCount, 3);
    EXPECT_TRUE(cell.hasUnreadComments);
    ASSERT_TRUE(cell.agents);
    ASSERT_EQ(cell.agents->size(), 2u);
    EXPECT_EQ((*cell.agents)[0].name, "Ada") << "in the order of the response's list";
    EXPECT_EQ(cell.agentAvatarInfo, (AgentAvatarInfo{"https://avatars/7", nullptr, "42", "Ada", 7}));

    auto updated = request();
    updated.publicUpdatedAt = now - 120;
    updated.commentingAgentsIds = {99};
    const auto later = RequestListCellData::fromRequest(updated, agents, false);
    EXPECT_EQ(later.displayTimestamp, "09:58");
    EXPECT_EQ(later.updatedAtDate, now - 120);
    EXPECT_FALSE(later.agentAvatarInfo);
}

TEST_F(RequestListCell, StatusTextsMapToTheirCasesAndAnythingElseIsOpen) {
    for (const auto status : {RequestStatus::new_, RequestStatus::pending, RequestStatus::hold, RequestStatus::solved,
                              RequestStatus::closed})
        EXPECT_EQ(RequestListCellData::fromRequest(request(std::string(rawValue(status))), agents, false).requestStatus,
                  status);
    EXPECT_EQ(RequestListCellData::fromRequest(request("Closed"), agents, false).requestStatus, RequestStatus::open);
}

TEST_F(RequestListCell, LocalRowIsANewTicketOfOneComment) {
    const auto cell = RequestListCellData::local("local-1", "Help me", now - 86400, true);
    const RequestListCellData expected{"14 Nov", std::nullopt, "local-1", "Help me", std::nullopt, "Help me",
                                       RequestStatus::new_, false, std::nullopt, 1, now - 86400, true};
    EXPECT_EQ(cell, expected);
}
