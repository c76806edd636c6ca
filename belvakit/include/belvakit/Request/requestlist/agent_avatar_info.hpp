#pragma once

#include "platform/image.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace belvakit {

// The agent shown on a ticket's row, with the avatar once it has been fetched.
struct AgentAvatarInfo {
    std::optional<std::string> avatarUrl;
    platform::ImagePtr avatarImage;
    std::string requestId;
    std::string agentName;
    std::int64_t userId = 0;

    bool operator==(const AgentAvatarInfo&) const = default;
};

} // namespace belvakit
