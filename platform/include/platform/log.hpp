#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class LogLevel { verbose, debug, info, warn, error };

std::string_view toString(LogLevel level);

class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(LogLevel level, std::string_view message) = 0;
};

// Writes "[level] message" lines to standard error.
class StderrLogSink final : public LogSink {
public:
    void write(LogLevel level, std::string_view message) override;
};

// Keeps every record, for tests and for hosts that show logs themselves.
class MemoryLogSink final : public LogSink {
public:
    struct Record {
        LogLevel level;
        std::string message;
        bool operator==(const Record&) const = default;
    };

    void write(LogLevel level, std::string_view message) override;
    std::vector<Record> records() const;
    std::vector<std::string> messages(LogLevel level) const;
    void clear();

private:
    mutable std::mutex mutex_;
    std::vector<Record> records_;
};

// The process's log destination. Thread-safe.
namespace log {
void write(LogLevel level, std::string_view message);
// Replaces the sink and returns the previous one.
std::shared_ptr<LogSink> setSink(std::shared_ptr<LogSink> sink);
std::shared_ptr<LogSink> sink();
} // namespace log

} // namespace platform
