#pragma once

#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/scheduler.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace testing_support {

// Puts the main queue on virtual time for the life of the object.
class VirtualTime {
public:
    VirtualTime();
    ~VirtualTime();
    void advance(platform::Duration by) { scheduler_->advance(by); }
    // Moves time on in strides of 50 ms, running what the main queue is handed on the way and
    // calling `eachStride` (a frame's layout, say) after each stride and at the end.
    void run(double seconds, const std::function<void()>& eachStride = {});
    platform::ManualScheduler& scheduler() { return *scheduler_; }

private:
    std::shared_ptr<platform::ManualScheduler> scheduler_;
    std::shared_ptr<platform::Scheduler> previous_;
};

// Captures the process log for the life of the object.
class CapturedLog {
public:
    CapturedLog();
    ~CapturedLog();
    std::vector<platform::MemoryLogSink::Record> records() const { return sink_->records(); }
    std::vector<std::string> messages(platform::LogLevel level) const { return sink_->messages(level); }
    // How many times the exact line was logged at the level.
    std::size_t count(platform::LogLevel level, const std::string& line) const;
    bool contains(platform::LogLevel level, const std::string& line) const { return count(level, line) > 0; }
    void clear() { sink_->clear(); }

private:
    std::shared_ptr<platform::MemoryLogSink> sink_;
    std::shared_ptr<platform::LogSink> previous_;
};

// Runs what the main queue holds until nothing is left, without moving time.
void drainMainQueue();

// Pumps the main queue until `done` holds; fails the test after `timeout` of real time.
bool pumpMainQueueUntil(const std::function<bool()>& done, platform::Duration timeout = platform::seconds(10));

// A temporary directory, removed with its contents when the object goes.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

} // namespace testing_support
