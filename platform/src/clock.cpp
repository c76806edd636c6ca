#include "platform/clock.hpp"

#include <chrono>
#include <mutex>

namespace platform {

namespace {
std::mutex clockMutex;
// Never destroyed: a worker thread may still ask the time while the program's statics go.
std::shared_ptr<WallClock>& currentClock() {
    static auto* clock = new std::shared_ptr<WallClock>(std::make_shared<SystemWallClock>());
    return *clock;
}
} // namespace

double SystemWallClock::now() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

double now() {
    std::shared_ptr<WallClock> clock;
    {
        std::lock_guard lock(clockMutex);
        clock = currentClock();
    }
    return clock->now();
}

std::shared_ptr<WallClock> setWallClock(std::shared_ptr<WallClock> clock) {
    std::lock_guard lock(clockMutex);
    std::swap(currentClock(), clock);
    return clock;
}

} // namespace platform
