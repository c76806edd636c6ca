#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include "platform/calendar.hpp"
#include "platform/clock.hpp"

namespace belvakit {

std::string requestListDateText(Date date) {
    const auto calendar = platform::Calendar::current();
    const char* pattern = calendar.isSameDay(date, platform::now()) ? "HH:mm" : "d MMM";
    return calendar.format(date, pattern).value_or("");
}

RequestListTimestampCalculator::RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt)
    : ticketCreatedAt(requestListDateText(createdAt)),
      ticketUpdatedAt(updatedAt ? std::optional(requestListDateText(*updatedAt)) : std::nullopt),
      timeToCompare(updatedAt.value_or(createdAt)) {}

} // namespace belvakit
