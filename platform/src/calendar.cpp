#include "platform/calendar.hpp"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cmath>
#include <ctime>
#include <map>
#include <mutex>

namespace platform {

namespace {

std::mutex currentMutex;
Calendar& currentCalendar() {
    static Calendar calendar;
    return calendar;
}

icu::Locale localeFor(const std::string& id) { return id.empty() ? icu::Locale::getDefault() : icu::Locale(id.c_str()); }

icu::TimeZone* timeZoneFor(const std::string& id) {
    return id.empty() ? icu::TimeZone::createDefault() : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(id));
}

// ICU objects are costly to make and not shareable across threads: keep one per thread and key.
struct ThreadCache {
    std::map<std::string, std::unique_ptr<icu::Calendar>> calendars;
    std::map<std::string, std::unique_ptr<icu::SimpleDateFormat>> formats;
};
thread_local ThreadCache cache;

icu::Calendar* calendarFor(const std::string& localeId, const std::string& timeZoneId) {
    const std::string key = localeId + '\n' + timeZoneId;
    auto& slot = cache.calendars[key];
    if (!slot) {
        UErrorCode status = U_ZERO_ERROR;
        slot.reset(icu::Calendar::createInstance(timeZoneFor(timeZoneId), localeFor(localeId), status));
        if (U_FAILURE(status)) slot.reset();
    }
    return slot.get();
}

icu::SimpleDateFormat* formatFor(const std::string& localeId, const std::string& timeZoneId, std::string_view pattern) {
    const std::string key = localeId + '\n' + timeZoneId + '\n' + std::string(pattern);
    auto& slot = cache.formats[key];
    if (!slot) {
        UErrorCode status = U_ZERO_ERROR;
        auto format = std::make_unique<icu::SimpleDateFormat>(
            icu::UnicodeString::fromUTF8(icu::StringPiece(pattern.data(), static_cast<int32_t>(pattern.size()))),
            localeFor(localeId), status);
        if (U_FAILURE(status)) return nullptr;
        format->adoptTimeZone(timeZoneFor(timeZoneId));
        slot = std::move(format);
    }
    return slot.get();
}

} // namespace

Calendar::Calendar(std::string localeId, std::string timeZoneId)
    : localeId_(std::move(localeId)), timeZoneId_(std::move(timeZoneId)) {}

Calendar Calendar::current() {
    std::lock_guard lock(currentMutex);
    return currentCalendar();
}

void Calendar::setCurrent(Calendar calendar) {
    std::lock_guard lock(currentMutex);
    currentCalendar() = std::move(calendar);
}

bool Calendar::isSameDay(double first, double second) const {
    icu::Calendar* calendar = calendarFor(localeId_, timeZoneId_);
    if (!calendar) return false;
    const auto dayOf = [calendar](double date) {
        UErrorCode status = U_ZERO_ERROR;
        calendar->setTime(date * 1000.0, status);
        const int32_t year = calendar->get(UCAL_EXTENDED_YEAR, status);
        const int32_t day = calendar->get(UCAL_DAY_OF_YEAR, status);
        return U_SUCCESS(status) ? std::optional(std::pair(year, day)) : std::nullopt;
    };
    const auto a = dayOf(first);
    const auto b = dayOf(second);
    return a && b && *a == *b;
}

std::optional<std::pair<double, double>> Calendar::dayInterval(double date) const {
    icu::Calendar* calendar = calendarFor(localeId_, timeZoneId_);
    if (!calendar) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(date * 1000.0, status);
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->set(UCAL_MILLISECOND, 0);
    const UDate start = calendar->getTime(status);
    calendar->add(UCAL_DATE, 1, status);
    const UDate end = calendar->getTime(status);
    if (U_FAILURE(status)) return std::nullopt;
    return std::pair(start / 1000.0, end / 1000.0);
}

std::optional<std::string> Calendar::format(double date, std::string_view pattern) const {
    icu::SimpleDateFormat* format = formatFor(localeId_, timeZoneId_, pattern);
    if (!format) return std::nullopt;
    icu::UnicodeString text;
    format->format(date * 1000.0, text);
    std::string out;
    text.toUTF8String(out);
    return out;
}

std::string dateDescription(double secondsSince1970) {
    const auto seconds = static_cast<std::time_t>(std::floor(secondsSince1970));
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S +0000", &utc);
    return text;
}

} // namespace platform
