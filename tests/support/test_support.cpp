#include "test_support.hpp"

#include <filesystem>
#include <gtest/gtest.h>

#include "platform/uuid.hpp"

namespace testing_support {

VirtualTime::VirtualTime()
    : scheduler_(std::make_shared<platform::ManualScheduler>()),
      previous_(platform::MainQueue::shared().setScheduler(scheduler_)) {}

VirtualTime::~VirtualTime() { platform::MainQueue::shared().setScheduler(previous_); }

CapturedLog::CapturedLog()
    : sink_(std::make_shared<platform::MemoryLogSink>()), previous_(platform::log::setSink(sink_)) {}

CapturedLog::~CapturedLog() { platform::log::setSink(previous_); }

bool pumpMainQueueUntil(const std::function<bool()>& done, platform::Duration timeout) {
    const bool reached = platform::MainQueue::shared().runUntil(done, timeout);
    EXPECT_TRUE(reached) << "the main queue did not reach the expected point in time";
    return reached;
}

TemporaryDirectory::TemporaryDirectory()
    : path_((std::filesystem::temp_directory_path() / ("belva-test-" + platform::uuidString())).string()) {
    std::filesystem::create_directories(path_);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace testing_support
