#include "platform/dispatch_group.hpp"
#include "platform/main_queue.hpp"
#include "platform/serial_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using namespace platform;
using testing_support::pumpMainQueueUntil;
using testing_support::VirtualTime;

TEST(MainQueue, TestThreadIsMainSyncFromAnotherThreadRunsThereAndWaitsAndAsyncWorkRunsInOrder) {
    EXPECT_TRUE(MainQueue::shared().isMainThread());
    bool otherIsMain = true;
    std::thread([&] { otherIsMain = MainQueue::shared().isMainThread(); }).join();
    EXPECT_FALSE(otherIsMain);

    std::atomic<bool> ranOnMain = false;
    std::atomic<bool> returned = false;
    std::thread worker([&] {
        MainQueue::shared().sync([&] { ranOnMain = MainQueue::shared().isMainThread(); });
        returned = true;
    });
    pumpMainQueueUntil([&] { return returned.load(); });
    worker.join();
    EXPECT_TRUE(ranOnMain);

    // Async work runs in order when the loop runs.
    std::vector<int> order;
    for (int i = 0; i < 5; ++i) MainQueue::shared().async([&order, i] { order.push_back(i); });
    EXPECT_TRUE(order.empty());
    MainQueue::shared().runPending();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(ManualScheduler, RunsDueWorkInTimeOrderSkipsCancelledAndRunsWorkScheduledWithinTheWindow) {
    VirtualTime time;
    std::vector<std::string> ran;
    MainQueue::shared().asyncAfter(milliseconds(1200), [&] { ran.push_back("b"); });
    MainQueue::shared().asyncAfter(milliseconds(500), [&] { ran.push_back("a"); });
    auto cancelled = MainQueue::shared().asyncAfter(milliseconds(700), [&] { ran.push_back("x"); });
    cancelled.cancel();

    time.advance(milliseconds(1199));
    EXPECT_EQ(ran, (std::vector<std::string>{"a"}));
    time.advance(milliseconds(1));
    EXPECT_EQ(ran, (std::vector<std::string>{"a", "b"}));

    // Work scheduled during an advance runs when it falls in the window.
    MainQueue::shared().asyncAfter(seconds(1), [&] {
        ran.push_back("c");
        MainQueue::shared().asyncAfter(seconds(1), [&] { ran.push_back("d"); });
        MainQueue::shared().asyncAfter(seconds(5), [&] { ran.push_back("late"); });
    });
    time.advance(seconds(2));
    EXPECT_EQ(ran, (std::vector<std::string>{"a", "b", "c", "d"}));
    EXPECT_EQ(time.scheduler().pendingCount(), 1u);
}

TEST(LoopScheduler, DelayedWorkRunsOnTheMainLoop) {
    bool ran = false;
    bool onMain = false;
    MainQueue::shared().asyncAfter(milliseconds(10), [&] {
        ran = true;
        onMain = MainQueue::shared().isMainThread();
    });
    pumpMainQueueUntil([&] { return ran; });
    EXPECT_TRUE(onMain);
}

TEST(SerialQueue, RunsOneItemAtATimeInOrder) {
    SerialQueue queue("TokenQueue");
    std::vector<int> order;
    std::atomic<int> concurrent = 0;
    std::atomic<int> maxConcurrent = 0;
    for (int i = 0; i < 200; ++i) {
        queue.async([&, i] {
            maxConcurrent = std::max(maxConcurrent.load(), ++concurrent);
            order.push_back(i);
            --concurrent;
        });
    }
    queue.sync([] {});
    ASSERT_EQ(order.size(), 200u);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(maxConcurrent, 1);
}

TEST(SerialQueue, SyncRunsOnTheCallersThreadAfterQueuedWorkAndHoldsTheQueue) {
    SerialQueue queue("RequestQueue");
    std::atomic<bool> slowDone = false;
    queue.async([&] {
        for (int i = 0; i < 1000; ++i) std::this_thread::yield();
        slowDone = true;
    });
    const auto caller = std::this_thread::get_id();
    std::thread::id ranOn;
    bool wasCurrent = false;
    bool sawSlowDone = false;
    queue.sync([&] {
        ranOn = std::this_thread::get_id();
        wasCurrent = queue.isCurrent();
        sawSlowDone = slowDone;
    });
    EXPECT_EQ(ranOn, caller);
    EXPECT_TRUE(wasCurrent);
    EXPECT_TRUE(sawSlowDone) << "sync waits for the work queued before it";
    EXPECT_FALSE(queue.isCurrent());

    // Work queued while a sync item runs goes on afterwards, on the pool.
    std::atomic<bool> after = false;
    queue.sync([&] { queue.async([&] { after = true; }); });
    queue.sync([] {});
    EXPECT_TRUE(after);
}

TEST(BackgroundWork, CountsEachItemUntilItHasRunAndItsPostToTheMainQueueIsOut) {
    ASSERT_EQ(backgroundWorkInFlight(), 0u) << "another test left work behind";
    SerialQueue queue("Tickets");
    std::mutex gate;
    std::unique_lock hold(gate);
    std::atomic<int> posted = 0;
    for (int i = 0; i < 3; ++i)
        queue.async([&] {
            std::lock_guard wait(gate);
            MainQueue::shared().async([&] { ++posted; });
        });
    BackgroundQueue::shared().async([&] {
        std::lock_guard wait(gate);
        MainQueue::shared().async([&] { ++posted; });
    });
    EXPECT_EQ(backgroundWorkInFlight(), 4u);
    hold.unlock();
    // Once nothing is in flight, every post back is on the main queue.
    ASSERT_TRUE(pumpMainQueueUntil([] { return backgroundWorkInFlight() == 0; }));
    MainQueue::shared().runPending();
    EXPECT_EQ(posted, 4);
}

TEST(DispatchGroup, NotifiesOnceEveryMemberLeftAndAtOnceWhenEmpty) {
    DispatchGroup group;
    std::atomic<int> done = 0;
    bool notified = false;
    for (int i = 0; i < 8; ++i) {
        group.enter();
        BackgroundQueue::shared().async([&] {
            ++done;
            group.leave();
        });
    }
    group.notify(MainQueue::shared(), [&] {
        notified = true;
        EXPECT_EQ(done, 8);
    });
    pumpMainQueueUntil([&] { return notified; });

    DispatchGroup empty;
    bool immediate = false;
    empty.notify(MainQueue::shared(), [&] { immediate = true; });
    MainQueue::shared().runPending();
    EXPECT_TRUE(immediate);
}
