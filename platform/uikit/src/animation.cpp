#include "uikit/animation.hpp"

#include "platform/main_queue.hpp"

#include <chrono>

namespace uikit {

namespace detail {
thread_local const Animation::Timing* openAnimation = nullptr;
thread_local bool animationsSuppressed = false;
} // namespace detail

double Animation::now() {
    const auto since = platform::MainQueue::shared().scheduler().now().time_since_epoch();
    return std::chrono::duration<double>(since).count();
}

void Animation::animate(double duration, double delay, const std::function<void()>& animations,
                        std::function<void(bool)> completion) {
    const Timing timing{now() + delay, duration};
    const Timing* outer = detail::openAnimation;
    detail::openAnimation = duration > 0 ? &timing : outer;
    if (animations) animations();
    detail::openAnimation = outer;
    if (!completion) return;
    const double total = duration + delay;
    auto& main = platform::MainQueue::shared();
    if (total <= 0)
        main.async([completion = std::move(completion)] { completion(true); });
    else
        main.asyncAfter(platform::seconds(total), [completion = std::move(completion)] { completion(true); });
}

void Animation::performWithoutAnimation(const std::function<void()>& changes) {
    const bool was = detail::animationsSuppressed;
    detail::animationsSuppressed = true;
    if (changes) changes();
    detail::animationsSuppressed = was;
}

} // namespace uikit
