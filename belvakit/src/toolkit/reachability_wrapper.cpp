#include "belvakit/toolkit/reachability_wrapper.hpp"

namespace belvakit {

std::shared_ptr<CRVReachabilityWrapper> CRVReachabilityWrapper::reachability() {
    auto wrapper = std::make_shared<CRVReachabilityWrapper>();
    wrapper->reachable_ = corvane::CRVReachability::reachabilityForInternetConnection();
    wrapper->reachable_->startNotifier();
    return wrapper;
}

void CRVReachabilityWrapper::registerReachableCallback(std::function<void(bool reachable)> callback) {
    observers_.push_back(platform::NotificationCenter::defaultCenter().addObserver(
        corvane::CRVAPI_ReachabilityChangedNotification, reachable_.get(),
        [callback = std::move(callback)](const platform::Notification& notification) {
            const auto* sender = dynamic_cast<const corvane::CRVReachability*>(notification.object);
            if (callback && sender) callback(sender->isNetworkReachable());
        }));
}

bool CRVReachabilityWrapper::isNetworkReachable() const { return reachable_ && reachable_->isNetworkReachable(); }

} // namespace belvakit
