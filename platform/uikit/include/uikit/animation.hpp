#pragma once

#include <functional>

namespace uikit {

// Changes made in `animations` take effect at once, so what is read afterwards is the final state;
// views whose frame or alpha changed are shown moving for `duration` after `delay`. The completion
// runs on the main queue through the scheduler when the time is up, so tests see it in virtual time.
class Animation {
public:
    static void animate(double duration, double delay, const std::function<void()>& animations,
                        std::function<void(bool finished)> completion = {});
    static void animate(double duration, const std::function<void()>& animations,
                        std::function<void(bool finished)> completion = {}) {
        animate(duration, 0, animations, std::move(completion));
    }
    // Runs the changes as plain assignments, even inside an animation.
    static void performWithoutAnimation(const std::function<void()>& changes);

    // Seconds on the main queue's scheduler: the clock of every animation.
    static double now();

    // The open animation's timing, for views that note their changes; none outside one.
    struct Timing {
        double start = 0;
        double duration = 0;
    };
    static const Timing* current();
};

namespace detail {
// The animation whose block runs now, and whether changes are made without one; main thread.
extern thread_local const Animation::Timing* openAnimation;
extern thread_local bool animationsSuppressed;
} // namespace detail

// Inline: every frame change asks it.
inline const Animation::Timing* Animation::current() {
    return detail::animationsSuppressed ? nullptr : detail::openAnimation;
}

} // namespace uikit
