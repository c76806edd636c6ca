#include "belvakit/entry/Coordinator/container_view_controller.hpp"

#include <utility>

namespace belvakit {

void ContainerViewController::setActiveController(uikit::ViewController::Ptr controller) {
    if (controller == activeController_) return;
    // On view, the children hear that they leave and arrive; otherwise the container's own
    // appearance tells them later.
    const bool onView = isVisible();
    if (auto leaving = std::exchange(activeController_, nullptr)) {
        leaving->willMoveToParentViewController(nullptr);
        if (onView) leaving->beginAppearanceTransition(false, false);
        if (leaving->isViewLoaded()) leaving->view()->removeFromSuperview();
        if (onView) leaving->endAppearanceTransition();
        leaving->removeFromParentViewController();
    }
    activeController_ = std::move(controller);
    if (!activeController_) return;
    const auto arriving = activeController_;
    addChildViewController(arriving);
    const auto& shown = arriving->view();
    shown->setFrame(view()->bounds());
    shown->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
    if (onView) arriving->beginAppearanceTransition(true, false);
    view()->addSubview(shown);
    if (onView) {
        // A screen has its frames before it hears that it appeared.
        if (view()->window()) view()->layoutIfNeeded();
        arriving->endAppearanceTransition();
    }
    arriving->didMoveToParentViewController(this);
}

void ContainerViewController::viewWillLayoutSubviews() {
    if (activeController_ && activeController_->isViewLoaded()) activeController_->view()->setFrame(view()->bounds());
}

} // namespace belvakit
