#include "answer.hpp"

#include "platform/main_queue.hpp"
#include "platform/serial_queue.hpp"

namespace sandbox {

void deliverAnswer(platform::Duration latency, bool onWorkerThread, std::function<void()> work) {
    auto hand = [onWorkerThread, work = std::move(work)]() mutable {
        if (onWorkerThread)
            platform::BackgroundQueue::shared().async(std::move(work));
        else
            work();
    };
    // The scheduler belongs to the main queue, so a call from any thread meets it there first.
    auto& main = platform::MainQueue::shared();
    if (latency <= platform::Duration::zero()) return main.async(std::move(hand));
    main.async([latency, hand = std::move(hand)]() mutable {
        platform::MainQueue::shared().asyncAfter(latency, std::move(hand));
    });
}

} // namespace sandbox
