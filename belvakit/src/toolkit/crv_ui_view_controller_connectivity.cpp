// The connectivity toast of the base screen, driven by reachability.
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/reachability.hpp"

namespace belvakit {

namespace {

std::shared_ptr<CRVToastView> makeConnectivityToast(const std::shared_ptr<uikit::ViewController>& controller, double y,
                                                    std::function<void(bool, double)> animation) {
    return CRVToastView::initInView(controller->view(), controller, y, localized(LocalizedKey::requestsConnectionError),
                                    std::nullopt, nullptr, CRVToastType{0}, 0.0, CR_DefaultAnimationTime,
                                    std::move(animation), true);
}

} // namespace

void CRVUIViewController::startReachability() {
    reachable_ = corvane::CRVReachability::reachabilityForInternetConnection();
    if (reachable_) reachable_->startNotifier();
}

void CRVUIViewController::registerForToastNotifications() {
    observers_.push_back(platform::NotificationCenter::defaultCenter().addObserver(
        corvane::CRVAPI_ReachabilityChangedNotification, nullptr,
        [this](const platform::Notification& notification) { networkStatusChanged(notification); }));
}

void CRVUIViewController::presentConnectivityToastIfUnreachable() {
    if (reachable_ && reachable_->currentReachabilityStatus() == 0) presentConnectivityToast(true);
}

void CRVUIViewController::networkStatusChanged(const platform::Notification& notification) {
    // Only this screen's own reachability counts.
    if (!reachable_ || notification.object != static_cast<platform::Object*>(reachable_.get())) return;
    if (reachable_->currentReachabilityStatus() == 0)
        presentConnectivityToast(true);
    else
        dismissActiveToast(true);
}

void CRVUIViewController::presentConnectivityToast(bool animated) {
    const auto self = weak_from_this().lock();
    if (!self) return;
    std::weak_ptr<uikit::ViewController> weak = self;
    auto toast = makeConnectivityToast(self, topViewOffset(), [weak](bool, double height) {
        const auto screen = std::dynamic_pointer_cast<CRVUIViewController>(weak.lock());
        if (!screen) return;
        screen->toastHeight_ = height;
        screen->layoutContent();
        screen->view()->setNeedsLayout();
        screen->view()->layoutIfNeeded();
    });
    if (!toastView) {
        toastView = toast;
        toast->present(animated);
        return;
    }
    toastView->dismiss(animated, [weak, toast, animated] {
        const auto screen = std::dynamic_pointer_cast<CRVUIViewController>(weak.lock());
        if (!screen) return;
        screen->toastView = toast;
        corvane::CoreLogger::debug("Network status not reachable: displaying toast");
        toast->present(animated);
    });
}

void CRVUIViewController::dismissActiveToast(bool animated) {
    if (!toastView) return;
    corvane::CoreLogger::debug("Dismissing toast any visible toasts");
    const auto leaving = toastView;
    leaving->dismiss(animated, [weak = weak_from_this(), leaving] {
        const auto screen = std::dynamic_pointer_cast<CRVUIViewController>(weak.lock());
        // A newer toast may have taken its place meanwhile.
        if (screen && screen->toastView == leaving) screen->toastView = nullptr;
    });
}

} // namespace belvakit
