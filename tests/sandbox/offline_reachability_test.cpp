#include "corvane/reachability.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/ticket_desk.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>
#include <thread>

using corvane::CRVReachability;

namespace {

// Every change notification posted while it lives: its sender and the status it then reads.
class ChangeRecorder {
public:
    ChangeRecorder()
        : token_(platform::NotificationCenter::defaultCenter().addObserver(
              "CRVAPI_ReachabilityChangedNotification", nullptr, [this](const platform::Notification& note) {
                  auto* sender = dynamic_cast<CRVReachability*>(note.object);
                  senders.push_back(sender);
                  statuses.push_back(sender ? sender->currentReachabilityStatus() : -1);
                  onMainThread.push_back(platform::MainQueue::shared().isMainThread());
              })) {}
    std::vector<CRVReachability*> senders;
    std::vector<int> statuses;
    std::vector<bool> onMainThread;

private:
    platform::ObservationToken token_;
};

std::shared_ptr<sandbox::TicketDesk> makeDesk() {
    return sandbox::TicketDesk::make([](const std::string&) { return std::nullopt; });
}

} // namespace

// Only started notifiers post; the status of the others still follows the network.
TEST(OfflineReachability, TheOfflineSwitchPostsEachChangeOnceWithTheStartedReachabilityAsSender) {
    ChangeRecorder changes;
    auto reachability = CRVReachability::reachabilityForInternetConnection();
    ASSERT_TRUE(reachability->startNotifier());
    auto silent = CRVReachability::reachabilityForInternetConnection();
    auto stopped = CRVReachability::reachabilityForInternetConnection();
    stopped->startNotifier();
    stopped->stopNotifier();
    auto desk = makeDesk();
    ASSERT_TRUE(reachability->isNetworkReachable());

    desk->setOffline(true);
    desk->setOffline(true);  // no change, no second post
    EXPECT_EQ(changes.statuses, (std::vector<int>{0}));
    EXPECT_EQ(changes.senders, (std::vector<CRVReachability*>{reachability.get()}));
    EXPECT_EQ(reachability->currentReachabilityStatus(), 0);
    EXPECT_EQ(silent->currentReachabilityStatus(), 0);
    EXPECT_FALSE(reachability->isNetworkReachable());

    desk->setOffline(false);
    desk->setOffline(false);
    EXPECT_EQ(changes.statuses, (std::vector<int>{0, 1}));
    EXPECT_TRUE(reachability->isNetworkReachable());
}

TEST(OfflineReachability, TheNetworkComesBackOnlyWhenNoDeskHoldsItDownAndWhenAnOfflineDeskGoes) {
    ChangeRecorder changes;
    auto reachability = CRVReachability::reachabilityForInternetConnection();
    reachability->startNotifier();
    auto first = makeDesk();
    auto second = makeDesk();
    first->setOffline(true);
    second->setOffline(true);
    first->setOffline(false);
    EXPECT_FALSE(reachability->isNetworkReachable());
    EXPECT_EQ(changes.statuses, (std::vector<int>{0}));

    second.reset();  // a desk left offline must not keep the network down for later screens
    EXPECT_TRUE(reachability->isNetworkReachable());
    EXPECT_EQ(changes.statuses, (std::vector<int>{0, 1}));
}

TEST(OfflineReachability, ASwitchOnAWorkerThreadPostsOnTheMainThread) {
    ChangeRecorder changes;
    auto reachability = CRVReachability::reachabilityForInternetConnection();
    reachability->startNotifier();
    auto desk = makeDesk();
    std::thread worker([&] { desk->setOffline(true); });
    worker.join();
    EXPECT_TRUE(changes.senders.empty());  // not before the main queue runs
    testing_support::pumpMainQueueUntil([&] { return !changes.senders.empty(); });
    EXPECT_EQ(changes.statuses, (std::vector<int>{0}));
    EXPECT_EQ(changes.onMainThread, (std::vector<bool>{true}));

    // A reachability that goes before the main queue delivers posts nothing.
    std::thread back([&] { desk->setOffline(false); });
    back.join();
    reachability.reset();
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(changes.statuses.size(), 1u);
}
