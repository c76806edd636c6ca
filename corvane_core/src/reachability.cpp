#include "corvane/reachability.hpp"

#include "platform/main_queue.hpp"

namespace corvane {

namespace {
constexpr const char* statusChanged = "NetworkStatusChanged";
}

NetworkMonitor::NetworkMonitor() : changes_(platform::NotificationCenter::make()) {}

NetworkMonitor& NetworkMonitor::shared() {
    static NetworkMonitor monitor;
    return monitor;
}

CRVNetworkStatus NetworkMonitor::status() const {
    std::lock_guard lock(mutex_);
    return outages_ > 0 ? NotReachable : ReachableViaWiFi;
}

NetworkMonitor::Outage NetworkMonitor::beginOutage() {
    bool changed = false;
    {
        std::lock_guard lock(mutex_);
        changed = ++outages_ == 1;
    }
    if (changed) changes_->post(statusChanged, nullptr);
    // The monitor lives for the process, so the handle needs no hold on it.
    return Outage(static_cast<void*>(this), [](void* monitor) { static_cast<NetworkMonitor*>(monitor)->endOutage(); });
}

void NetworkMonitor::endOutage() {
    bool changed = false;
    {
        std::lock_guard lock(mutex_);
        changed = --outages_ == 0;
    }
    if (changed) changes_->post(statusChanged, nullptr);
}

platform::ObservationToken NetworkMonitor::observe(std::function<void()> changed) {
    return changes_->addObserver(statusChanged, nullptr,
                                 [changed = std::move(changed)](const platform::Notification&) { changed(); });
}

std::shared_ptr<CRVReachability> CRVReachability::reachabilityForInternetConnection() {
    return std::shared_ptr<CRVReachability>(new CRVReachability());
}

bool CRVReachability::startNotifier() {
    std::lock_guard lock(notifierMutex_);
    if (notifier_) return true;
    announced_ = currentReachabilityStatus();
    notifier_ = NetworkMonitor::shared().observe([weakSelf = weak_from_this()] {
        auto& main = platform::MainQueue::shared();
        if (main.isMainThread()) {
            if (auto self = weakSelf.lock()) self->deliver();
            return;
        }
        main.async([weakSelf] {
            if (auto self = weakSelf.lock()) self->deliver();
        });
    });
    return true;
}

void CRVReachability::stopNotifier() {
    std::lock_guard lock(notifierMutex_);
    notifier_.reset();
}

CRVNetworkStatus CRVReachability::currentReachabilityStatus() const { return NetworkMonitor::shared().status(); }

void CRVReachability::deliver() {
    {
        std::lock_guard lock(notifierMutex_);
        if (!notifier_) return;
    }
    const CRVNetworkStatus status = currentReachabilityStatus();
    if (announced_.exchange(status) == status) return;
    platform::NotificationCenter::defaultCenter().post(CRVAPI_ReachabilityChangedNotification, this);
}

} // namespace corvane
