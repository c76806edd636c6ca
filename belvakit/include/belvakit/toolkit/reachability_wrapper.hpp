#pragma once

#include "corvane/reachability.hpp"
#include "platform/notification_center.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace belvakit {

// The network's reachability for a screen, told to blocks on the main queue.
class CRVReachabilityWrapper {
public:
    // One on the internet connection, its notifier started.
    static std::shared_ptr<CRVReachabilityWrapper> reachability();

    // The block hears every change of reachability for as long as the wrapper lives.
    void registerReachableCallback(std::function<void(bool reachable)> callback);
    bool isNetworkReachable() const;

private:
    std::shared_ptr<corvane::CRVReachability> reachable_;
    std::vector<platform::ObservationToken> observers_;
};

} // namespace belvakit
