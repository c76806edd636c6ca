#pragma once

#include <functional>

namespace platform {

using Work = std::function<void()>;

// Anything work can be submitted to: the main queue, a serial queue, the background pool.
class Queue {
public:
    virtual ~Queue() = default;
    virtual void async(Work work) const = 0;
};

} // namespace platform
