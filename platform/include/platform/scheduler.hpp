#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace platform {

using Duration = std::chrono::nanoseconds;
using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

constexpr Duration milliseconds(long long ms) { return std::chrono::milliseconds(ms); }
constexpr Duration seconds(double s) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(s));
}

// Handle of delayed work; cancelling after the work ran does nothing.
class TimerHandle {
public:
    TimerHandle() = default;
    explicit TimerHandle(std::shared_ptr<std::atomic<bool>> cancelled) : cancelled_(std::move(cancelled)) {}
    void cancel() const {
        if (cancelled_) cancelled_->store(true);
    }
    bool isCancelled() const { return cancelled_ && cancelled_->load(); }

private:
    std::shared_ptr<std::atomic<bool>> cancelled_;
};

// Where every delay of the system goes, so that tests can run in virtual time.
// Work always runs on the main queue.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    virtual TimePoint now() const = 0;
    virtual TimerHandle schedule(Duration delay, std::function<void()> work) = 0;
};

// Real time: timers on the main queue's loop.
class LoopScheduler final : public Scheduler {
public:
    TimePoint now() const override;
    TimerHandle schedule(Duration delay, std::function<void()> work) override;
};

// Virtual time for tests: nothing runs until `advance` moves the clock.
class ManualScheduler final : public Scheduler {
public:
    TimePoint now() const override;
    TimerHandle schedule(Duration delay, std::function<void()> work) override;

    // Moves the clock forward, running due work in time order (ties in order of scheduling).
    // Work scheduled meanwhile runs too if it falls due within the window. Main thread only.
    void advance(Duration by);
    std::size_t pendingCount() const;

private:
    struct Entry {
        std::function<void()> work;
        std::shared_ptr<std::atomic<bool>> cancelled;
    };
    mutable std::mutex mutex_;
    TimePoint now_{};
    unsigned long long sequence_ = 0;
    std::multimap<std::pair<TimePoint, unsigned long long>, Entry> entries_;
};

} // namespace platform
