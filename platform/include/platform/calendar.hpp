#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

// The user's calendar: a locale and a time zone, for day comparisons and date texts.
// Dates are seconds since 1970.
class Calendar {
public:
    // Empty ids mean the system's own locale and time zone.
    explicit Calendar(std::string localeId = {}, std::string timeZoneId = {});

    // The process-wide calendar of the user; hosts and tests may replace it.
    static Calendar current();
    static void setCurrent(Calendar calendar);

    // Whether both instants fall on the same calendar day in this time zone.
    bool isSameDay(double first, double second) const;
    // The local day around an instant, as [start, end) in seconds since 1970; nothing if the
    // calendar can't tell. Comparing against it answers `isSameDay` for many dates at once.
    std::optional<std::pair<double, double>> dayInterval(double date) const;
    // The date in an ICU pattern ("HH:mm", "d MMM"), or nothing if the pattern can't be used.
    std::optional<std::string> format(double date, std::string_view pattern) const;

    const std::string& localeId() const { return localeId_; }
    const std::string& timeZoneId() const { return timeZoneId_; }

private:
    std::string localeId_;
    std::string timeZoneId_;
};

// The platform's textual description of an instant, in UTC: "2023-11-14 22:13:20 +0000".
std::string dateDescription(double secondsSince1970);

} // namespace platform
