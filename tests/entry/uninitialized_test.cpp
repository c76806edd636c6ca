#include "belvakit/entry/support_ui.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

TEST(SupportUIBeforeInitialisation, EveryReadOfTheInstanceWarnsAndGivesNothing) {
    testing_support::CapturedLog log;
    EXPECT_EQ(belvakit::SupportUI::instance(), nullptr);
    EXPECT_EQ(belvakit::SupportUI::instance(), nullptr);
    const std::string warning = "Instance of SupportUI is nil, have you initialized SupportUI?";
    EXPECT_EQ(log.messages(platform::LogLevel::warn), (std::vector<std::string>{warning, warning}));
}
