#include "platform/base64.hpp"
#include "platform/calendar.hpp"

#include <gtest/gtest.h>

using namespace platform;

TEST(Base64, KnownVectorsRoundTripAndRejectBadText) {
    const std::pair<std::string, std::string> vectors[] = {
        {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"},
        {"2023-11-14 22:13:20 +0000", "MjAyMy0xMS0xNCAyMjoxMzoyMCArMDAwMA=="}};
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(base64Encode(plain), encoded);
        EXPECT_EQ(base64Decode(encoded), plain);
    }
    const std::string binary("\x00\xff\x10\x80", 4);
    EXPECT_EQ(base64Decode(base64Encode(binary)), binary);
    EXPECT_EQ(base64Decode("Zm9"), std::nullopt);
    EXPECT_EQ(base64Decode("Zm9*"), std::nullopt);
}

TEST(Calendar, SameDayAndTheDayIntervalFollowTheTimeZone) {
    const Calendar berlin("en_US", "Europe/Berlin");
    // 2023-11-14 00:30 and 23:30 in Berlin (UTC+1): one day, 23 hours apart.
    const double earlyBerlin = 1699918200;  // 2023-11-13 23:30 UTC
    EXPECT_TRUE(berlin.isSameDay(earlyBerlin, earlyBerlin + 23 * 3600));
    // 23:55 and 00:05 the next day: ten minutes, two days.
    const double beforeMidnight = 1700002500;  // 2023-11-14 22:55 UTC = 23:55 Berlin
    EXPECT_FALSE(berlin.isSameDay(beforeMidnight, beforeMidnight + 600));
    // The same two instants in UTC lie on one day.
    EXPECT_TRUE(Calendar("en_US", "UTC").isSameDay(beforeMidnight, beforeMidnight + 600));

    // The day interval is the local day around the instant.
    EXPECT_EQ(berlin.dayInterval(1700046000), std::pair(1700002800.0, 1700089200.0));  // 15 Nov 2023, UTC+1
    const auto shortDay = berlin.dayInterval(1711886400);  // 31 Mar 2024, clocks go forward
    ASSERT_TRUE(shortDay);
    EXPECT_EQ(shortDay->second - shortDay->first, 23 * 3600);
}

TEST(Calendar, FormatsPatternsInItsLocaleAndZone) {
    const Calendar calendar("en_US", "UTC");
    EXPECT_EQ(calendar.format(1700000000, "HH:mm"), "22:13");
    EXPECT_EQ(calendar.format(1700000000, "d MMM"), "14 Nov");
    EXPECT_EQ(Calendar("de_DE", "Asia/Tokyo").format(1700000000, "d MMM"), "15 Nov.");
    // The platform's description is UTC whatever the calendar, seconds truncated.
    EXPECT_EQ(dateDescription(1700000000.75), "2023-11-14 22:13:20 +0000");
    EXPECT_EQ(dateDescription(0), "1970-01-01 00:00:00 +0000");
}
