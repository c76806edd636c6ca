#pragma once

#include "belvakit/date.hpp"
#include "platform/calendar.hpp"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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
        Date start = 0;
        Date end = 0;
        std::string text;
    };

    const Day* knownDay(Date date);
    // Where a date before today is kept in `daysBack_`, if at all.
    std::optional<std::size_t> placeBack(Date date) const;
    void remember(Date date, const Day* day);

    platform::Calendar calendar_;
    Date now_;
    std::optional<std::pair<Date, Date>> today_;
    // By the day's first instant.
    std::map<Date, Day> days_;
    // The past days by how many whole days before today they are, so that most dates find their
    // day without a search. A change of offset can put a date in its neighbour's place: the map
    // then answers.
    std::vector<const Day*> daysBack_;
};

// The texts of a ticket's dates and the date its row is compared by.
struct RequestListTimestampCalculator {
    std::string ticketCreatedAt;
    std::optional<std::string> ticketUpdatedAt;
    Date timeToCompare = 0;

    RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt);
};

} // namespace belvakit
