#include "platform/main_queue.hpp"

#include <boost/asio/post.hpp>
#include <future>
#include <thread>

namespace platform {

namespace {
// Captured during static initialisation, which runs on the thread that starts the process.
const std::thread::id processMainThread = std::this_thread::get_id();
} // namespace

MainQueue& MainQueue::shared() {
    static MainQueue queue;
    return queue;
}

MainQueue::MainQueue()
    : guard_(boost::asio::make_work_guard(context_)), scheduler_(std::make_shared<LoopScheduler>()) {}

bool MainQueue::isMainThread() const { return std::this_thread::get_id() == processMainThread; }

void MainQueue::async(Work work) const { boost::asio::post(context_, std::move(work)); }

void MainQueue::sync(const Work& work) const {
    if (isMainThread()) {
        work();
        return;
    }
    std::promise<void> done;
    boost::asio::post(context_, [&] {
        try {
            work();
            done.set_value();
        } catch (...) {
            done.set_exception(std::current_exception());
        }
    });
    done.get_future().get();
}

TimerHandle MainQueue::asyncAfter(Duration delay, Work work) const {
    return scheduler_->schedule(delay, std::move(work));
}

Scheduler& MainQueue::scheduler() const { return *scheduler_; }

std::shared_ptr<Scheduler> MainQueue::setScheduler(std::shared_ptr<Scheduler> scheduler) {
    std::swap(scheduler_, scheduler);
    return scheduler;
}

std::size_t MainQueue::runPending() {
    if (context_.stopped()) context_.restart();
    return context_.poll();
}

bool MainQueue::runUntil(const std::function<bool()>& done, Duration timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!done()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        if (context_.stopped()) context_.restart();
        // Short slices keep the check responsive without spinning.
        context_.run_one_for(std::chrono::milliseconds(5));
    }
    return true;
}

void MainQueue::run() {
    if (context_.stopped()) context_.restart();
    context_.run();
}

void MainQueue::stop() { context_.stop(); }

} // namespace platform
