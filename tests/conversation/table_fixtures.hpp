#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "platform/calendar.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace table_fixtures {

using namespace belvakit;
using Strings = std::vector<std::string>;

inline constexpr Date t0 = 1700000000;  // 2023-11-14 22:13:20 UTC

inline UserMessage text(std::string id, Date at, DeliveryStatus status = DeliveryStatus::delivered) {
    return UserMessage{id, status, "body of " + id, std::nullopt, at};
}

inline AgentMessage agent(std::string id, Date at, std::int64_t userID = 7) {
    return AgentMessage{id, "agent says " + id, std::nullopt, at, userID, "Ada", std::nullopt};
}

inline UserImage image(std::string id, std::string parentId, Date at, DeliveryStatus status = DeliveryStatus::delivered) {
    return {.id = std::move(id), .parentId = std::move(parentId), .filename = "pic.png", .status = status,
            .fileType = FileType::png, .createdAt = at};
}

inline Strings ids(const std::vector<Message>& messages) {
    Strings out;
    for (const auto& message : messages) out.push_back(id(message));
    return out;
}

// Date and system rows show as "date" and "system".
inline Strings rowIds(const std::vector<CellItem>& rows) {
    Strings out;
    for (const auto& row : rows)
        out.push_back(type(row) == EventType::date ? "date" : type(row) == EventType::systemMessage ? "system" : id(row));
    return out;
}

inline std::optional<DeliveryStatus> statusOf(const std::vector<Message>& messages, const std::string& wanted) {
    for (const auto& message : messages)
        if (id(message) == wanted) return status(message);
    return std::nullopt;
}

// Each test runs in UTC; the process's calendar comes back afterwards.
class FixedCalendar : public ::testing::Test {
protected:
    void SetUp() override { platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC")); }
    void TearDown() override { platform::Calendar::setCurrent(previous_); }

private:
    platform::Calendar previous_ = platform::Calendar::current();
};

} // namespace table_fixtures
