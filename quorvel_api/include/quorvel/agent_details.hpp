#pragma once

#include <optional>
#include <string>

namespace quorvel {

// Who speaks for an engine in the messaging screen.
struct AgentDetails {
    std::string agentId;
    std::string agentName;
    bool isBot = false;
    std::optional<std::string> avatarPath;

    // The bot an engine shows until the screen hands it the real one.
    static AgentDetails initialBot() { return {"initial-bot", "", true, std::nullopt}; }

    bool operator==(const AgentDetails&) const = default;
};

} // namespace quorvel
