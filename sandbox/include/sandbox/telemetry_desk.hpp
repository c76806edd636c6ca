#pragma once

#include "corvane/pingrel.hpp"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace sandbox {

// The help desk's analytics intake: it keeps every usage event it is sent, in order.
class TelemetryDesk final : public corvane::PingrelProvider {
public:
    void send(const corvane::UserAction& pingrel, corvane::PingrelGroup group) override;

    std::vector<std::pair<corvane::UserAction, corvane::PingrelGroup>> received() const;
    // How many events named `action` arrived.
    std::size_t count(const std::string& action) const;

private:
    mutable std::mutex mutex_;
    std::vector<std::pair<corvane::UserAction, corvane::PingrelGroup>> received_;
};

} // namespace sandbox
