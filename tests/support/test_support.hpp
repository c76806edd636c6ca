#pragma once

#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/scheduler.hpp"

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
    void clear() { sink_->clear(); }

private:
    std::shared_ptr<platform::MemoryLogSink> sink_;
    std::shared_ptr<platform::LogSink> previous_;
};

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
