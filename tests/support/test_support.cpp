#include "test_support.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>


namespace testing_support {

VirtualTime::VirtualTime()
    : scheduler_(std::make_shared<platform::ManualScheduler>()),
      previous_(platform::MainQueue::shared().setScheduler(scheduler_)) {}

VirtualTime::~VirtualTime() { platform::MainQueue::shared().setScheduler(previous_); }

void VirtualTime::run(double seconds, const std::function<void()>& eachStride) {
    const long strides = std::lround(seconds / 0.05);
    for (long i = 0; i < strides; ++i) {
        drainMainQueue();
        advance(platform::milliseconds(50));
        if (eachStride) eachStride();
    }
    drainMainQueue();
    if (eachStride) eachStride();
}

void drainMainQueue() {
    while (platform::MainQueue::shared().runPending() > 0) {}
}

CapturedLog::CapturedLog()
    : sink_(std::make_shared<platform::MemoryLogSink>()), previous_(platform::log::setSink(sink_)) {}

CapturedLog::~CapturedLog() { platform::log::setSink(previous_); }

std::size_t CapturedLog::count(platform::LogLevel level, const std::string& line) const {
    const auto lines = messages(level);
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
}

bool pumpMainQueueUntil(const std::function<bool()>& done, platform::Duration timeout) {
    const bool reached = platform::MainQueue::shared().runUntil(done, timeout);
    EXPECT_TRUE(reached) << "the main queue did not reach the expected point in time";
    return reached;
}

// Named from the system's randomness, not the id generator: a test that seeds that generator
// would give two processes running at once the same directory.
TemporaryDirectory::TemporaryDirectory() {
    std::random_device device;
    for (;;) {
        const std::uint64_t word = (std::uint64_t{device()} << 32) | device();
        const auto candidate = std::filesystem::temp_directory_path() / ("belva-test-" + std::to_string(word));
        if (std::filesystem::create_directories(candidate)) {
            path_ = candidate.string();
            return;
        }
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace testing_support
