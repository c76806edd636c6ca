#pragma once

#include "platform/queue.hpp"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace platform {

// Counts outstanding work; `notify` runs once the count falls to zero.
class DispatchGroup {
public:
    void enter();
    void leave();
    // Submits `work` to `queue` when the group is empty (at once if it already is).
    // The queue must outlive the pending notification.
    void notify(const Queue& queue, Work work);
    void wait();

private:
    std::mutex mutex_;
    std::condition_variable idle_;
    int count_ = 0;
    std::vector<std::pair<const Queue*, Work>> notifications_;
};

} // namespace platform
