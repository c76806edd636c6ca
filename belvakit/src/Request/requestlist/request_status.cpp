#include "belvakit/Request/requestlist/request_status.hpp"

#include <array>
#include <utility>

namespace belvakit {

namespace {

constexpr std::array<std::pair<RequestStatus, std::string_view>, 6> statusNames{{
    {RequestStatus::new_, "new"},
    {RequestStatus::open, "open"},
    {RequestStatus::pending, "pending"},
    {RequestStatus::hold, "hold"},
    {RequestStatus::solved, "solved"},
    {RequestStatus::closed, "closed"},
}};

} // namespace

std::string_view rawValue(RequestStatus status) {
    for (const auto& [candidate, name] : statusNames)
        if (candidate == status) return name;
    return {};
}

std::optional<RequestStatus> requestStatusFromRawValue(std::string_view raw) {
    for (const auto& [status, name] : statusNames)
        if (name == raw) return status;
    return std::nullopt;
}

} // namespace belvakit
