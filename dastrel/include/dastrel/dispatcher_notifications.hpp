#pragma once

// What the support library's network dispatcher announces on the default notification centre.
namespace dastrel::DispatcherNotifications {

// Posted when the help desk answers a call with HTTP 401: the user's access has gone.
inline constexpr const char* UnauthorizedNotificationName = "CRVUnauthorizedNotification";

} // namespace dastrel::DispatcherNotifications
