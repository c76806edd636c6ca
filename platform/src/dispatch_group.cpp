#include "platform/dispatch_group.hpp"

#include <cassert>

namespace platform {

void DispatchGroup::enter() {
    std::lock_guard lock(mutex_);
    ++count_;
}

void DispatchGroup::leave() {
    std::vector<std::pair<const Queue*, Work>> due;
    {
        std::lock_guard lock(mutex_);
        assert(count_ > 0 && "unbalanced DispatchGroup::leave");
        if (--count_ > 0) return;
        due.swap(notifications_);
        // Under the lock: a waiter that wakes may destroy the group at once.
        idle_.notify_all();
    }
    for (auto& [queue, work] : due) queue->async(std::move(work));
}

void DispatchGroup::notify(const Queue& queue, Work work) {
    {
        std::lock_guard lock(mutex_);
        if (count_ > 0) {
            notifications_.emplace_back(&queue, std::move(work));
            return;
        }
    }
    queue.async(std::move(work));
}

void DispatchGroup::wait() {
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return count_ == 0; });
}

} // namespace platform
