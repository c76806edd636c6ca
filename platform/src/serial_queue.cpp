#include "platform/serial_queue.hpp"

#include "platform/main_queue.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <future>

namespace platform {

namespace {
boost::asio::thread_pool& pool() {
    // Pool work posts to the main queue. Making the main queue first means that at exit the pool
    // is joined before the main queue is destroyed.
    static const bool mainQueueFirst = (MainQueue::shared(), true);
    (void)mainQueueFirst;
    static boost::asio::thread_pool threads(4);
    return threads;
}
} // namespace

struct SerialQueue::Impl {
    std::string label;
    boost::asio::strand<boost::asio::thread_pool::executor_type> strand;
};

SerialQueue::SerialQueue(std::string label)
    : impl_(std::make_shared<Impl>(Impl{std::move(label), boost::asio::make_strand(pool())})) {}

const std::string& SerialQueue::label() const { return impl_->label; }

void SerialQueue::async(Work work) const { boost::asio::post(impl_->strand, std::move(work)); }

void SerialQueue::sync(const Work& work) const {
    std::promise<void> done;
    boost::asio::post(impl_->strand, [&] {
        try {
            work();
            done.set_value();
        } catch (...) {
            done.set_exception(std::current_exception());
        }
    });
    done.get_future().get();
}

bool SerialQueue::isCurrent() const { return impl_->strand.running_in_this_thread(); }

const BackgroundQueue& BackgroundQueue::shared() {
    static const BackgroundQueue queue;
    return queue;
}

void BackgroundQueue::async(Work work) const { boost::asio::post(pool(), std::move(work)); }

} // namespace platform
