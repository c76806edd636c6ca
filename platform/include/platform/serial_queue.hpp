#pragma once

#include "platform/queue.hpp"

#include <cstddef>
#include <memory>
#include <string>

namespace platform {

// A labelled serial queue: work runs one item at a time, in order, off the main thread.
// Copies share the same queue.
class SerialQueue final : public Queue {
public:
    explicit SerialQueue(std::string label);

    const std::string& label() const;
    void async(Work work) const override;
    // Runs the work on the queue and waits for it. Never call from the queue itself.
    void sync(const Work& work) const;
    bool isCurrent() const;

private:
    struct Impl;
    std::shared_ptr<Impl> impl_;
};

// How many items given to serial and background queues with `async` have not finished running:
// zero means no other thread still holds work that may come back to the main queue. For tests and
// tools that wait for the process to go quiet.
std::size_t backgroundWorkInFlight();

// Concurrent background work, like a global queue.
class BackgroundQueue final : public Queue {
public:
    static const BackgroundQueue& shared();
    void async(Work work) const override;
};

} // namespace platform
