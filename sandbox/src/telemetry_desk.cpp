#include "sandbox/telemetry_desk.hpp"

#include <algorithm>

namespace sandbox {

void TelemetryDesk::send(const corvane::UserAction& pingrel, corvane::PingrelGroup group) {
    std::lock_guard lock(mutex_);
    received_.emplace_back(pingrel, group);
}

std::vector<std::pair<corvane::UserAction, corvane::PingrelGroup>> TelemetryDesk::received() const {
    std::lock_guard lock(mutex_);
    return received_;
}

std::size_t TelemetryDesk::count(const std::string& action) const {
    std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(
        std::ranges::count_if(received_, [&](const auto& entry) { return entry.first.action == action; }));
}

} // namespace sandbox
