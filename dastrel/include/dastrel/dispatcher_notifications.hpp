#pragma once

namespace dastrel {

// What the support library's network dispatcher posts on the default notification centre.
struct DispatcherNotifications {
    // A request was answered with HTTP 401: the identity is no longer accepted. Posted on the
    // main queue.
    static constexpr const char* UnauthorizedNotificationName = "CRVDispatcherUnauthorizedNotification";
};

} // namespace dastrel
