#include "platform/log.hpp"

#include <iostream>

namespace platform {

std::string_view toString(LogLevel level) {
    switch (level) {
    case LogLevel::verbose: return "verbose";
    case LogLevel::debug: return "debug";
    case LogLevel::info: return "info";
    case LogLevel::warn: return "warn";
    case LogLevel::error: return "error";
    }
    return "unknown";
}

void StderrLogSink::write(LogLevel level, std::string_view message) {
    std::cerr << '[' << toString(level) << "] " << message << '\n';
}

void MemoryLogSink::write(LogLevel level, std::string_view message) {
    std::lock_guard lock(mutex_);
    records_.push_back({level, std::string(message)});
}

std::vector<MemoryLogSink::Record> MemoryLogSink::records() const {
    std::lock_guard lock(mutex_);
    return records_;
}

std::vector<std::string> MemoryLogSink::messages(LogLevel level) const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> out;
    for (const auto& record : records_)
        if (record.level == level) out.push_back(record.message);
    return out;
}

void MemoryLogSink::clear() {
    std::lock_guard lock(mutex_);
    records_.clear();
}

namespace log {
namespace {
std::mutex sinkMutex;
// Never destroyed: a worker thread may still log while the program's statics go.
std::shared_ptr<LogSink>& currentSink() {
    static auto* sink = new std::shared_ptr<LogSink>(std::make_shared<StderrLogSink>());
    return *sink;
}
} // namespace

void write(LogLevel level, std::string_view message) {
    sink()->write(level, message);
}

std::shared_ptr<LogSink> setSink(std::shared_ptr<LogSink> sink) {
    std::lock_guard lock(sinkMutex);
    std::swap(currentSink(), sink);
    return sink;
}

std::shared_ptr<LogSink> sink() {
    std::lock_guard lock(sinkMutex);
    return currentSink();
}
} // namespace log

} // namespace platform
