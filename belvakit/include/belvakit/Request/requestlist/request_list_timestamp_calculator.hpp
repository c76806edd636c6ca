#pragma once

#include "belvakit/date.hpp"

#include <optional>
#include <string>

namespace belvakit {

// A date as a ticket row shows it: the time for today, else day and month, in the user's
// calendar. Empty when the calendar can't format.
std::string requestListDateText(Date date);

// The texts of a ticket's dates and the date its row is compared by.
struct RequestListTimestampCalculator {
    std::string ticketCreatedAt;
    std::optional<std::string> ticketUpdatedAt;
    Date timeToCompare = 0;

    RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt);
};

} // namespace belvakit
