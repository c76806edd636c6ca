#include "platform/scheduler.hpp"

#include "platform/main_queue.hpp"

#include <boost/asio/steady_timer.hpp>

namespace platform {

TimePoint LoopScheduler::now() const { return std::chrono::steady_clock::now(); }

TimerHandle LoopScheduler::schedule(Duration delay, std::function<void()> work) {
    auto cancelled = std::make_shared<std::atomic<bool>>(false);
    auto timer = std::make_shared<boost::asio::steady_timer>(MainQueue::shared().context(), delay);
    timer->async_wait([timer, cancelled, work = std::move(work)](const boost::system::error_code& error) {
        if (!error && !cancelled->load()) work();
    });
    return TimerHandle(cancelled);
}

TimePoint ManualScheduler::now() const {
    std::lock_guard lock(mutex_);
    return now_;
}

TimerHandle ManualScheduler::schedule(Duration delay, std::function<void()> work) {
    auto cancelled = std::make_shared<std::atomic<bool>>(false);
    std::lock_guard lock(mutex_);
    entries_.emplace(std::pair{now_ + std::max(delay, Duration::zero()), sequence_++},
                     Entry{std::move(work), cancelled});
    return TimerHandle(cancelled);
}

void ManualScheduler::advance(Duration by) {
    std::unique_lock lock(mutex_);
    const TimePoint end = now_ + by;
    while (!entries_.empty() && entries_.begin()->first.first <= end) {
        auto node = entries_.extract(entries_.begin());
        now_ = node.key().first;
        lock.unlock();
        if (!node.mapped().cancelled->load()) node.mapped().work();
        lock.lock();
    }
    now_ = end;
}

std::size_t ManualScheduler::pendingCount() const {
    std::lock_guard lock(mutex_);
    return entries_.size();
}

} // namespace platform
