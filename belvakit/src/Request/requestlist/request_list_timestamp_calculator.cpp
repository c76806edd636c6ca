#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include "platform/clock.hpp"

#include <cmath>
#include <iterator>

namespace belvakit {

namespace {

constexpr const char* todayPattern = "HH:mm";
constexpr const char* otherDayPattern = "d MMM";

std::string dateText(const platform::Calendar& calendar, Date date, bool today) {
    return calendar.format(date, today ? todayPattern : otherDayPattern).value_or("");
}

bool contains(const std::pair<Date, Date>& day, Date date) { return day.first <= date && date < day.second; }

} // namespace

std::string requestListDateText(Date date) {
    const auto calendar = platform::Calendar::current();
    return dateText(calendar, date, calendar.isSameDay(date, platform::now()));
}

RequestListDateTexts::RequestListDateTexts()
    : calendar_(platform::Calendar::current()), now_(platform::now()), today_(calendar_.dayInterval(now_)) {
    if (today_ && !contains(*today_, now_)) today_.reset();
}

const RequestListDateTexts::Day* RequestListDateTexts::knownDay(Date date) {
    const auto holds = [date](std::map<Date, Day>::const_iterator day) {
        return contains({day->first, day->second.end}, date);
    };
    if (lastDay_ != days_.end() && holds(lastDay_)) return &lastDay_->second;
    const auto after = days_.upper_bound(date);
    if (after == days_.begin() || !holds(std::prev(after))) return nullptr;
    lastDay_ = std::prev(after);
    return &lastDay_->second;
}

std::string RequestListDateTexts::text(Date date) {
    // Dates the calendar can't place in a day of its own take the slow road, as one-off texts do.
    if (!today_ || !std::isfinite(date)) return dateText(calendar_, date, calendar_.isSameDay(date, now_));
    if (contains(*today_, date)) return dateText(calendar_, date, true);
    if (const auto* day = knownDay(date)) return day->text;
    auto text = dateText(calendar_, date, false);
    const auto interval = calendar_.dayInterval(date);
    if (interval && contains(*interval, date)) days_[interval->first] = Day{interval->second, text};
    return text;
}

RequestListTimestampCalculator::RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt)
    : ticketCreatedAt(requestListDateText(createdAt)),
      ticketUpdatedAt(updatedAt ? std::optional(requestListDateText(*updatedAt)) : std::nullopt),
      timeToCompare(updatedAt.value_or(createdAt)) {}

} // namespace belvakit
