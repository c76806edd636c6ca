#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "platform/calendar.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace table_fixtures {

using namespace belvakit;

// 2023-11-14 22:13:20 UTC.
inline constexpr Date t0 = 1700000000;

inline UserMessage text(std::string id, Date at, DeliveryStatus status = DeliveryStatus::delivered) {
    UserMessage message;
    message.id = std::move(id);
    message.status = status;
    message.body = "body of " + message.id;
    message.createdAt = at;
    return message;
}

inline AgentMessage agent(std::string id, Date at, std::int64_t userID = 7, std::string name = "Ada") {
    AgentMessage message;
    message.id = std::move(id);
    message.body = "agent says " + message.id;
    message.createdAt = at;
    message.userID = userID;
    message.name = std::move(name);
    return message;
}

inline UserImage image(std::string id, std::string parentId, Date at, DeliveryStatus status = DeliveryStatus::delivered) {
    UserImage message;
    message.id = std::move(id);
    message.parentId = std::move(parentId);
    message.filename = "pic.png";
    message.status = status;
    message.fileType = FileType::png;
    message.createdAt = at;
    return message;
}

inline std::vector<std::string> ids(const std::vector<Message>& messages) {
    std::vector<std::string> out;
    for (const auto& message : messages) out.push_back(id(message));
    return out;
}

inline std::vector<std::string> rowIds(const std::vector<CellItem>& rows) {
    std::vector<std::string> out;
    for (const auto& row : rows) {
        if (std::holds_alternative<DateItem>(row))
            out.push_back("date");
        else if (std::holds_alternative<SystemMessage>(row))
            out.push_back("system");
        else
            out.push_back(id(row));
    }
    return out;
}

inline const Message& find(const std::vector<Message>& messages, const std::string& wanted) {
    for (const auto& message : messages)
        if (id(message) == wanted) return message;
    throw std::runtime_error("no message " + wanted);
}

// Runs each test in a fixed calendar and restores the process's one afterwards.
class FixedCalendar : public ::testing::Test {
protected:
    void SetUp() override { platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC")); }
    void TearDown() override { platform::Calendar::setCurrent(previous_); }

private:
    platform::Calendar previous_ = platform::Calendar::current();
};

} // namespace table_fixtures
