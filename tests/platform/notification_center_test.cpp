#include "platform/notification_center.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace platform;

namespace {
struct Sender : Object {};
} // namespace

TEST(NotificationCenter, DeliversByNameAndSenderInOrderOfAdding) {
    auto center = NotificationCenter::make();
    Sender first, second;
    std::vector<std::string> seen;
    auto any = center->addObserver("changed", nullptr, [&](const Notification& n) {
        seen.push_back(n.object == &first ? "any:first" : "any:second");
    });
    auto onlyFirst = center->addObserver("changed", &first, [&](const Notification&) { seen.push_back("first"); });
    auto otherName = center->addObserver("other", nullptr, [&](const Notification&) { seen.push_back("other"); });

    center->post("changed", &first);
    center->post("changed", &second);
    EXPECT_EQ(seen, (std::vector<std::string>{"any:first", "first", "any:second"}));

    std::optional<int> info;
    auto withInfo = center->addObserver("sized", nullptr, [&](const Notification& n) {
        info = std::any_cast<int>(n.userInfo);
    });
    center->post(Notification{"sized", nullptr, 42});
    EXPECT_EQ(info, 42);
}

TEST(NotificationCenter, TokensRemoveTheirObserverWhenDroppedReplacedOrResetMidPost) {
    auto center = NotificationCenter::make();
    int calls = 0;
    {
        auto token = center->addObserver("n", nullptr, [&](const Notification&) { ++calls; });
        EXPECT_EQ(center->observerCount(), 1u);
    }
    EXPECT_EQ(center->observerCount(), 0u);
    center->post("n", nullptr);
    EXPECT_EQ(calls, 0);

    auto token = center->addObserver("n", nullptr, [&](const Notification&) { calls += 10; });
    token = center->addObserver("n", nullptr, [&](const Notification&) { calls += 1; });
    center->post("n", nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(center->observerCount(), 1u);

    auto moved = std::move(token);
    EXPECT_FALSE(token);
    center->post("n", nullptr);
    EXPECT_EQ(calls, 2);

    // An observer removed during a post is not called later in it.
    std::vector<std::string> seen;
    ObservationToken second;
    auto first = center->addObserver("r", nullptr, [&](const Notification&) {
        seen.push_back("first");
        second.reset();
    });
    second = center->addObserver("r", nullptr, [&](const Notification&) { seen.push_back("second"); });
    center->post("r", nullptr);
    EXPECT_EQ(seen, std::vector<std::string>{"first"});

    first.reset();
    center.reset();  // a token may outlive its centre
    moved.reset();
    EXPECT_FALSE(moved);
}
