#pragma once

#include "belvakit/date.hpp"
#include "platform/calendar.hpp"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace belvakit {

// A date as a ticket row shows it: the time for today, else day and month, in the user's
// calendar. Empty when the calendar can't format.
std::string requestListDateText(Date date);

// The same texts for a whole list: the calendar, the present and today are read once, and a day
// other than today is formatted once however many rows fall on it.
class RequestListDateTexts {
public:
    RequestListDateTexts();
    RequestListDateTexts(const RequestListDateTexts&) = delete;
    RequestListDateTexts& operator=(const RequestListDateTexts&) = delete;

    std::string text(Date date);

private:
    struct Day {
        Date end = 0;
        std::string text;
    };

    const Day* knownDay(Date date);

    platform::Calendar calendar_;
    Date now_;
    std::optional<std::pair<Date, Date>> today_;
    // By the day's first instant.
    std::map<Date, Day> days_;
    // A row's two dates mostly fall on one day.
    std::map<Date, Day>::const_iterator lastDay_ = days_.end();
};

// The texts of a ticket's dates and the date its row is compared by.
struct RequestListTimestampCalculator {
    std::string ticketCreatedAt;
    std::optional<std::string> ticketUpdatedAt;
    Date timeToCompare = 0;

    RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt);
};

} // namespace belvakit
