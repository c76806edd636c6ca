#pragma once

#include "platform/notification_center.hpp"
#include "platform/object.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace corvane {

// Posted on the default centre, with the reachability object as sender, when the network's state
// changes under a reachability object whose notifier runs.
inline constexpr const char* CRVAPI_ReachabilityChangedNotification = "CRVAPI_ReachabilityChangedNotification";

enum CRVNetworkStatus : int { NotReachable = 0, ReachableViaWiFi = 1, ReachableViaWWAN = 2 };

// The device's network as the core sees it. Whatever knows the network's state (a host's network
// layer, the embedded help desk's offline switch) reports it here by holding outages: the network is
// unreachable while any outage is held, so several sources never undo each other. Thread-safe.
class NetworkMonitor {
public:
    // Releasing it (on any thread) ends the outage.
    using Outage = std::shared_ptr<void>;

    static NetworkMonitor& shared();

    CRVNetworkStatus status() const;
    [[nodiscard]] Outage beginOutage();

    // Called on the reporting thread, outside the monitor's lock, after each change of status.
    [[nodiscard]] platform::ObservationToken observe(std::function<void()> changed);

private:
    NetworkMonitor();
    void endOutage();

    mutable std::mutex mutex_;
    int outages_ = 0;
    std::shared_ptr<platform::NotificationCenter> changes_;
};

// The network's reachability for a screen. Once its notifier runs, each change of status posts
// `CRVAPI_ReachabilityChangedNotification` on the main thread, once per change.
class CRVReachability final : public platform::Object, public std::enable_shared_from_this<CRVReachability> {
public:
    static std::shared_ptr<CRVReachability> reachabilityForInternetConnection();

    // True when the notifier runs (also when it already did).
    bool startNotifier();
    void stopNotifier();

    CRVNetworkStatus currentReachabilityStatus() const;
    bool isNetworkReachable() const { return currentReachabilityStatus() != NotReachable; }

private:
    CRVReachability() = default;
    void deliver();

    std::mutex notifierMutex_;
    platform::ObservationToken notifier_;
    // The status last announced, so that a change reported twice posts once. Main thread.
    std::atomic<int> announced_{NotReachable};
};

} // namespace corvane
