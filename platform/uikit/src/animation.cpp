#include "uikit/animation.hpp"

#include "platform/main_queue.hpp"

#include <chrono>

namespace uikit {

namespace {
// The animation whose block runs now; main thread only, so one slot serves.
thread_local const Animation::Timing* open = nullptr;
thread_local bool suppressed = false;
} // namespace

double Animation::now() {
    const auto since = platform::MainQueue::shared().scheduler().now().time_since_epoch();
    return std::chrono::duration<double>(since).count();
}

const Animation::Timing* Animation::current() { return suppressed ? nullptr : open; }

void Animation::animate(double duration, double delay, const std::function<void()>& animations,
                        std::function<void(bool)> completion) {
    const Timing timing{now() + delay, duration};
    const Timing* outer = open;
    open = duration > 0 ? &timing : outer;
    if (animations) animations();
    open = outer;
    if (!completion) return;
    const double total = duration + delay;
    auto& main = platform::MainQueue::shared();
    if (total <= 0)
        main.async([completion = std::move(completion)] { completion(true); });
    else
        main.asyncAfter(platform::seconds(total), [completion = std::move(completion)] { completion(true); });
}

void Animation::performWithoutAnimation(const std::function<void()>& changes) {
    const bool was = suppressed;
    suppressed = true;
    if (changes) changes();
    suppressed = was;
}

} // namespace uikit
