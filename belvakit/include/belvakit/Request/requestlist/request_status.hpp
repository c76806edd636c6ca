#pragma once

#include <optional>
#include <string_view>

namespace belvakit {

// Where a ticket stands, as the help desk names it.
enum class RequestStatus { new_, open, pending, hold, solved, closed };

std::string_view rawValue(RequestStatus status);
std::optional<RequestStatus> requestStatusFromRawValue(std::string_view raw);

} // namespace belvakit
