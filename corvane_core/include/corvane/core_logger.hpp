#pragma once

#include "platform/log.hpp"

#include <string_view>

namespace corvane {

using LogLevel = platform::LogLevel;

// The core's logger: messages go to the process log sink, with no prefix of their own.
class CoreLogger {
public:
    CoreLogger() = delete;
    static void log(LogLevel level, std::string_view message) { platform::log::write(level, message); }
    static void verbose(std::string_view message) { log(LogLevel::verbose, message); }
    static void debug(std::string_view message) { log(LogLevel::debug, message); }
    static void info(std::string_view message) { log(LogLevel::info, message); }
    static void warn(std::string_view message) { log(LogLevel::warn, message); }
    static void error(std::string_view message) { log(LogLevel::error, message); }
};

// The Help Center code's logger, with the short names it uses.
class CRVLogger {
public:
    CRVLogger() = delete;
    static void d(std::string_view message) { CoreLogger::debug(message); }
    static void w(std::string_view message) { CoreLogger::warn(message); }
    static void e(std::string_view message) { CoreLogger::error(message); }
};

} // namespace corvane
