#include "belvakit/toolkit/toast_view_wrapper.hpp"

#include "belvakit/entry/constants.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

namespace {
constexpr CRVToastType errorToastType = 3;
constexpr double errorAnimationTime = 0.3;
} // namespace

void CRVToastViewWrapper::showErrorInViewController(const std::shared_ptr<uikit::ViewController>& controller,
                                                    const std::string& message) {
    showErrorInViewController(controller, message, 3.0, std::nullopt, nullptr);
}

void CRVToastViewWrapper::showErrorInViewController(const std::shared_ptr<uikit::ViewController>& controller,
                                                    const std::string& message, double duration) {
    showErrorInViewController(controller, message, duration, std::nullopt, nullptr);
}

void CRVToastViewWrapper::showErrorInViewController(const std::shared_ptr<uikit::ViewController>& controller,
                                                    const std::string& message, const std::string& buttonTitle,
                                                    std::function<void()> action) {
    showErrorInViewController(controller, message, 0.0, buttonTitle, std::move(action));
}

void CRVToastViewWrapper::showErrorInViewController(const std::shared_ptr<uikit::ViewController>& controller,
                                                    const std::string& message, double duration,
                                                    const std::optional<std::string>& buttonTitle,
                                                    std::function<void()> action) {
    // Every toast of this type looks like this from now on, whichever front door shows it.
    CRVToastStyle::setValue(CRVConstants::colorForToast(), errorToastType, CRVToastStyleKeys::background);
    CRVToastStyle::setValue(CRVConstants::colorForToast(), errorToastType, CRVToastStyleKeys::buttonBorder);
    CRVToastStyle::setValue(17, errorToastType, CRVToastStyleKeys::textFontSize);

    if (isShowingError || !controller) return;
    viewController = controller;
    isShowingError = true;

    std::weak_ptr<uikit::View> weakSelf = weak_from_this();
    auto animation = [weakSelf](bool visible, double height) {
        auto self = std::static_pointer_cast<CRVToastViewWrapper>(weakSelf.lock());
        if (!self) return;
        self->contentHeight = height;
        self->isShowingError = visible;
        self->invalidateIntrinsicContentSize();
        if (auto owner = self->viewController.lock()) owner->view()->layoutIfNeeded();
    };
    toastView = CRVToastView::initInView(controller->view(), controller, topViewOffset(), message, buttonTitle,
                                         std::move(action), errorToastType, duration, errorAnimationTime,
                                         std::move(animation), true);
    toastView->present(true);
}

void CRVToastViewWrapper::dismiss() {
    if (isShowingError && toastView) toastView->dismiss(true);
}

void CRVToastViewWrapper::hideToastView(bool hidden) {
    if (toastView) toastView->setHidden(hidden);
}

double CRVToastViewWrapper::topViewOffset() const {
    const auto controller = viewController.lock();
    if (!controller) return 0.0;
    if (const auto* navigation = controller->navigationController(); navigation && navigation->isNavigationBarHidden())
        return 0.0;
    return controller->topLayoutGuideLength();
}

} // namespace belvakit
