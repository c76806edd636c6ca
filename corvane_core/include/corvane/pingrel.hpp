#pragma once

#include <optional>
#include <string>
#include <variant>

namespace corvane {

enum class PingrelGroup { behavioural, operational };

// The value of a usage event about one ticket.
struct RequestUserAction {
    std::string requestId;
    bool operator==(const RequestUserAction&) const = default;
};

// The value of a usage event that carries none.
struct NoActionPingrel {
    bool operator==(const NoActionPingrel&) const = default;
};

// One usage event, as the core sends it on to the host's analytics.
struct UserAction {
    std::string action;
    std::optional<std::string> label;
    std::string channel;
    std::string category;
    std::variant<NoActionPingrel, RequestUserAction> value;
    std::string version;
    bool operator==(const UserAction&) const = default;
};

class PingrelProvider {
public:
    virtual ~PingrelProvider() = default;
    virtual void send(const UserAction& pingrel, PingrelGroup group) = 0;
};

} // namespace corvane
