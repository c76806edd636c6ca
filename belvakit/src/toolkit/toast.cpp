#include "belvakit/toolkit/toast.hpp"

#include <algorithm>

namespace belvakit {

namespace {
double startOf(const std::shared_ptr<uikit::ViewController>& viewController) {
    return viewController ? viewController->topLayoutGuideLength() : 0.0;
}
} // namespace

CRVToast& CRVToast::instance() {
    static CRVToast shared;
    return shared;
}

std::shared_ptr<CRVToastView> CRVToast::showMessage(const std::string& message, CRVToastType type,
                                                    const std::shared_ptr<uikit::ViewController>& viewController,
                                                    double duration, AnimationBlock animation, bool animated) {
    if (!viewController) return nullptr;
    return buildToastWithMessage(message, type, viewController->view(), viewController, startOf(viewController),
                                 duration, std::nullopt, nullptr, std::move(animation), animated);
}

std::shared_ptr<CRVToastView> CRVToast::showMessage(const std::string& message, CRVToastType type,
                                                    const std::shared_ptr<uikit::View>& view,
                                                    const std::shared_ptr<uikit::ViewController>& viewController,
                                                    double duration, AnimationBlock animation, bool animated) {
    return buildToastWithMessage(message, type, view, viewController, startOf(viewController), duration,
                                 std::nullopt, nullptr, std::move(animation), animated);
}

std::shared_ptr<CRVToastView> CRVToast::showMessage(const std::string& message, CRVToastType type,
                                                    const std::shared_ptr<uikit::View>& view, double startingAt,
                                                    double duration, AnimationBlock animation, bool animated) {
    return buildToastWithMessage(message, type, view, nullptr, startingAt, duration, std::nullopt, nullptr,
                                 std::move(animation), animated);
}

std::shared_ptr<CRVToastView> CRVToast::showMessage(const std::string& message, CRVToastType type,
                                                    const std::shared_ptr<uikit::ViewController>& viewController,
                                                    const std::string& buttonText, ButtonBlock buttonAction,
                                                    AnimationBlock animation, bool animated) {
    if (!viewController) return nullptr;
    return buildToastWithMessage(message, type, viewController->view(), viewController, startOf(viewController),
                                 0.0, buttonText, std::move(buttonAction), std::move(animation), animated);
}

std::shared_ptr<CRVToastView> CRVToast::showMessage(const std::string& message, CRVToastType type,
                                                    const std::shared_ptr<uikit::View>& view, double startingAt,
                                                    const std::string& buttonText, ButtonBlock buttonAction,
                                                    AnimationBlock animation, bool animated) {
    return buildToastWithMessage(message, type, view, nullptr, startingAt, 0.0, buttonText, std::move(buttonAction),
                                 std::move(animation), animated);
}

std::shared_ptr<CRVToastView> CRVToast::buildToastWithMessage(
    const std::string& message, CRVToastType type, const std::shared_ptr<uikit::View>& view,
    const std::shared_ptr<uikit::ViewController>& viewController, double startingAt, double duration,
    const std::optional<std::string>& buttonText, ButtonBlock buttonAction, AnimationBlock animation, bool animated) {
    auto& shared = instance();
    auto toast = CRVToastView::initInView(view, viewController, startingAt, message, buttonText,
                                          std::move(buttonAction), type, duration, shared.animationDuration(),
                                          std::move(animation), true);
    if (!toast) return nullptr;
    toast->present(animated);
    std::lock_guard lock(shared.toastsLock_);
    // Toasts of views that are gone can never be asked for again.
    std::erase_if(shared.toasts_, [](const Entry& entry) { return entry.host.expired(); });
    shared.toasts_.push_back({toast, view});
    return toast;
}

void CRVToast::dismissForView(const std::shared_ptr<uikit::View>& view, bool animate) {
    if (!view) return;
    auto& shared = instance();
    std::vector<std::shared_ptr<CRVToastView>> collected;
    {
        std::lock_guard lock(shared.toastsLock_);
        std::erase_if(shared.toasts_, [&](const Entry& entry) {
            const auto host = entry.host.lock();
            if (host == view && entry.toast->superview() == view.get()) collected.push_back(entry.toast);
            return !host || host == view;
        });
    }
    if (!collected.empty()) {
        collected.back()->dismiss(animate);
        collected.pop_back();
        for (const auto& toast : collected) toast->removeFromSuperview();
    }
    view->setNeedsLayout();
}

void CRVToast::dismissForViewController(const std::shared_ptr<uikit::ViewController>& viewController, bool animate) {
    if (viewController) dismissForView(viewController->view(), animate);
}

void CRVToast::setAnimationDuration(double duration) {
    if (duration < 0) return;
    auto& shared = instance();
    std::lock_guard lock(shared.toastsLock_);
    shared.animationDuration_ = duration;
}

double CRVToast::animationDuration() const {
    std::lock_guard lock(toastsLock_);
    return animationDuration_;
}

std::vector<std::shared_ptr<CRVToastView>> CRVToast::toasts() const {
    std::lock_guard lock(toastsLock_);
    std::vector<std::shared_ptr<CRVToastView>> list;
    for (const auto& entry : toasts_) list.push_back(entry.toast);
    return list;
}

} // namespace belvakit
