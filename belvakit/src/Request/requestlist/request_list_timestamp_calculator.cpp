#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include "platform/clock.hpp"

#include <cmath>
#include <iterator>

namespace belvakit {

namespace {

constexpr const char* todayPattern = "HH:mm";
constexpr const char* otherDayPattern = "d MMM";
constexpr double secondsPerDay = 86400;

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

std::optional<std::size_t> RequestListDateTexts::placeBack(Date date) const {
    // Far enough for the usual list, near enough to keep the index small.
    constexpr double indexedDays = 4096;
    const double back = std::ceil((today_->first - date) / secondsPerDay) - 1;
    if (!(back >= 0 && back < indexedDays)) return std::nullopt;
    return static_cast<std::size_t>(back);
}

void RequestListDateTexts::remember(Date date, const Day* day) {
    const auto place = placeBack(date);
    if (!place) return;
    if (*place >= daysBack_.size()) daysBack_.resize(*place + 1);
    daysBack_[*place] = day;
}

const RequestListDateTexts::Day* RequestListDateTexts::knownDay(Date date) {
    const auto holds = [date](const Day& day) { return contains({day.start, day.end}, date); };
    if (const auto place = placeBack(date); place && *place < daysBack_.size())
        if (const auto* day = daysBack_[*place]; day && holds(*day)) return day;
    const auto after = days_.upper_bound(date);
    if (after == days_.begin() || !holds(std::prev(after)->second)) return nullptr;
    const Day* day = &std::prev(after)->second;
    remember(date, day);
    return day;
}

std::string RequestListDateTexts::text(Date date) {
    // Dates the calendar can't place in a day of its own take the slow road, as one-off texts do.
    if (!today_ || !std::isfinite(date)) return dateText(calendar_, date, calendar_.isSameDay(date, now_));
    if (contains(*today_, date)) return dateText(calendar_, date, true);
    if (const auto* day = knownDay(date)) return day->text;
    auto text = dateText(calendar_, date, false);
    const auto interval = calendar_.dayInterval(date);
    if (interval && contains(*interval, date)) {
        auto& day = days_[interval->first];
        day = Day{interval->first, interval->second, text};
        remember(date, &day);
    }
    return text;
}

RequestListTimestampCalculator::RequestListTimestampCalculator(Date createdAt, std::optional<Date> updatedAt)
    : ticketCreatedAt(requestListDateText(createdAt)),
      ticketUpdatedAt(updatedAt ? std::optional(requestListDateText(*updatedAt)) : std::nullopt),
      timeToCompare(updatedAt.value_or(createdAt)) {}

} // namespace belvakit
