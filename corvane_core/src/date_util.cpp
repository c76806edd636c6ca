#include "corvane/date_util.hpp"

#include "platform/calendar.hpp"

namespace corvane {

std::string CRVDateUtil::stringFromDate(double date, std::string_view format) {
    return platform::Calendar::current().format(date, format).value_or("");
}

} // namespace corvane
