// Built when the toasts or reachability are not part of the build: screens then have no
// reachability and show no connectivity toast.
#include "belvakit/toolkit/ui_view_controller.hpp"

namespace belvakit {

void CRVUIViewController::startReachability() {}
void CRVUIViewController::registerForToastNotifications() {}
void CRVUIViewController::presentConnectivityToastIfUnreachable() {}
void CRVUIViewController::networkStatusChanged(const platform::Notification&) {}
void CRVUIViewController::presentConnectivityToast(bool) {}
void CRVUIViewController::dismissActiveToast(bool) {}

} // namespace belvakit
