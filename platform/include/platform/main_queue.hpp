#pragma once

#include "platform/queue.hpp"
#include "platform/scheduler.hpp"

#include <boost/asio/io_context.hpp>
#include <memory>

namespace platform {

// The main queue: a single-threaded loop that the host drives from its main thread.
// Everything that touches the store or the screens runs here.
class MainQueue final : public Queue {
public:
    static MainQueue& shared();

    // The main thread is the thread that started the process.
    bool isMainThread() const;

    void async(Work work) const override;
    // Runs the work on the main thread and waits for it; inline when already there.
    void sync(const Work& work) const;
    // Delayed work through the current scheduler.
    TimerHandle asyncAfter(Duration delay, Work work) const;

    Scheduler& scheduler() const;
    // Tests install a ManualScheduler; the previous one is returned.
    std::shared_ptr<Scheduler> setScheduler(std::shared_ptr<Scheduler> scheduler);

    // Host loop. `runPending` runs what is ready now and returns how many handlers ran.
    std::size_t runPending();
    // Runs the loop until `done` holds or `timeout` of real time passes; returns `done()`.
    bool runUntil(const std::function<bool()>& done, Duration timeout = seconds(10));
    // Runs until `stop`.
    void run();
    void stop();

    boost::asio::io_context& context() { return context_; }

private:
    MainQueue();
    mutable boost::asio::io_context context_;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_;
    std::shared_ptr<Scheduler> scheduler_;
};

} // namespace platform
