#pragma once

#include <string>
#include <string_view>

namespace corvane {

class CRVDateUtil {
public:
    CRVDateUtil() = delete;
    // The date (seconds since 1970) in an ICU pattern ("d MMMM yyyy") in the user's calendar;
    // empty when the pattern can't be used.
    static std::string stringFromDate(double date, std::string_view format);
};

} // namespace corvane
