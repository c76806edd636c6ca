#pragma once

#include "dastrel/support.hpp"
#include "platform/clock.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

namespace queue_testing {

// One life of the host on the embedded help desk: the core, the support library and the desk,
// keeping its files under `directory`.
class Host {
public:
    explicit Host(const std::filesystem::path& directory) {
        helpDesk = sandbox::HelpDesk::make({.storageDirectory = directory});
        core = helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
        dastrel::Support::initialize(core);
    }
    ~Host() {
        dastrel::Support::reset();
        corvane::Corvane::reset();
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    sandbox::TicketDesk& tickets() const { return *helpDesk->tickets(); }

    std::shared_ptr<sandbox::HelpDesk> helpDesk;
    std::shared_ptr<corvane::Corvane> core;
};

// A fixed wall clock for the life of the object.
class FixedClock {
public:
    FixedClock() : previous_(platform::setWallClock(clock)) {}
    ~FixedClock() { platform::setWallClock(previous_); }
    std::shared_ptr<platform::FixedWallClock> clock = std::make_shared<platform::FixedWallClock>(1700000000);

private:
    std::shared_ptr<platform::WallClock> previous_;
};

// Runs the main queue, moving virtual time on whenever nothing is ready, until `done` holds.
// Fails after `limit` of virtual time, or when nothing at all happens for about two seconds of
// real time (work handed to another thread that never comes back).
inline bool settle(testing_support::VirtualTime& time, const std::function<bool()>& done,
                   platform::Duration limit = platform::seconds(600),
                   platform::Duration step = platform::milliseconds(5)) {
    auto& main = platform::MainQueue::shared();
    platform::Duration elapsed{};
    int idle = 0;
    while (!done()) {
        if (main.runPending() > 0) {
            idle = 0;
            continue;
        }
        if (time.scheduler().pendingCount() > 0) {
            if (elapsed >= limit) break;
            time.advance(step);
            elapsed += step;
            idle = 0;
            continue;
        }
        if (++idle > 400) break;
        // Waits up to a few milliseconds for one handler from another thread.
        bool once = false;
        main.runUntil([&] { return std::exchange(once, true); }, platform::milliseconds(10));
    }
    EXPECT_TRUE(done()) << "the queue did not settle";
    return done();
}

// Lets `duration` of virtual time pass, running the main queue as it goes.
inline void pass(testing_support::VirtualTime& time, platform::Duration duration,
                 platform::Duration step = platform::milliseconds(5)) {
    auto& main = platform::MainQueue::shared();
    for (platform::Duration elapsed{}; elapsed < duration; elapsed += step) {
        while (main.runPending() > 0) {
        }
        time.advance(step);
    }
    while (main.runPending() > 0) {
    }
}

} // namespace queue_testing
