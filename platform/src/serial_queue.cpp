#include "platform/serial_queue.hpp"

#include "platform/main_queue.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace platform {

namespace {
// Items handed over with `async` that have not finished running (or been dropped).
std::atomic<std::size_t> inFlight{0};

boost::asio::thread_pool& pool() {
    // Pool work posts to the main queue. Making the main queue first means that at exit the pool
    // is joined before the main queue is destroyed.
    static const bool mainQueueFirst = (MainQueue::shared(), true);
    (void)mainQueueFirst;
    static boost::asio::thread_pool threads(4);
    return threads;
}
} // namespace

// Work runs one item at a time: queued items on the pool, `sync` items on the caller's thread
// once everything queued before them has run, as a serial dispatch queue does. That keeps a
// `sync` on an idle queue free of any thread hop.
struct SerialQueue::Impl : std::enable_shared_from_this<SerialQueue::Impl> {
    explicit Impl(std::string name) : label(std::move(name)) {}

    // Holds the queue while `work` runs on this thread.
    void runHeld(const Work& work) {
        const Impl* previous = current;
        current = this;
        work();
        current = previous;
    }
    // Lets go of the queue, handing it to the pool if work came in meanwhile. Locked.
    void releaseLocked() {
        if (pending.empty()) {
            busy = false;
            idle.notify_all();
        } else {
            boost::asio::post(pool(), Drain{shared_from_this()});
        }
    }
    void drain() {
        std::unique_lock lock(mutex);
        while (!pending.empty()) {
            Work work = std::move(pending.front());
            pending.pop_front();
            lock.unlock();
            runHeld(work);
            // Counted until what it captured is gone too.
            work = nullptr;
            inFlight.fetch_sub(1);
            lock.lock();
        }
        busy = false;
        idle.notify_all();
    }

    // Runs the queued items on the pool. Dropped unrun when the pool shuts down, it drops them
    // too: they may hold the queue themselves.
    struct Drain {
        std::shared_ptr<Impl> impl;
        explicit Drain(std::shared_ptr<Impl> queue) : impl(std::move(queue)) {}
        Drain(Drain&&) noexcept = default;
        Drain& operator=(Drain&&) noexcept = default;
        ~Drain() {
            if (!impl) return;
            std::deque<Work> dropped;
            std::lock_guard lock(impl->mutex);
            dropped.swap(impl->pending);
            inFlight.fetch_sub(dropped.size());
        }
        void operator()() {
            const auto queue = std::move(impl);
            queue->drain();
        }
    };

    std::string label;
    std::mutex mutex;
    std::condition_variable idle;
    std::deque<Work> pending;
    bool busy = false;  // an item runs, on the pool or inline

    static thread_local const Impl* current;
};

thread_local const SerialQueue::Impl* SerialQueue::Impl::current = nullptr;

SerialQueue::SerialQueue(std::string label) : impl_(std::make_shared<Impl>(std::move(label))) {}

const std::string& SerialQueue::label() const { return impl_->label; }

void SerialQueue::async(Work work) const {
    inFlight.fetch_add(1);
    std::lock_guard lock(impl_->mutex);
    impl_->pending.push_back(std::move(work));
    if (impl_->busy) return;
    impl_->busy = true;
    boost::asio::post(pool(), Impl::Drain{impl_});
}

void SerialQueue::sync(const Work& work) const {
    std::unique_lock lock(impl_->mutex);
    impl_->idle.wait(lock, [&] { return !impl_->busy; });
    impl_->busy = true;
    lock.unlock();
    struct Release {
        Impl& impl;
        ~Release() {
            std::lock_guard relock(impl.mutex);
            impl.releaseLocked();
        }
    } release{*impl_};
    impl_->runHeld(work);
}

bool SerialQueue::isCurrent() const { return Impl::current == impl_.get(); }

const BackgroundQueue& BackgroundQueue::shared() {
    static const BackgroundQueue queue;
    return queue;
}

void BackgroundQueue::async(Work work) const {
    inFlight.fetch_add(1);
    boost::asio::post(pool(), [work = std::move(work)]() mutable {
        work();
        work = nullptr;
        inFlight.fetch_sub(1);
    });
}

std::size_t backgroundWorkInFlight() { return inFlight.load(); }

} // namespace platform
