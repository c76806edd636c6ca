#include "uikit/window.hpp"

#include "platform/notification_center.hpp"
#include "uikit/view_controller.hpp"

namespace uikit {

namespace {
Window* theKeyWindow = nullptr;  // main thread only

void postKeyboard(const char* name, const KeyboardInfo& info) {
    platform::Notification notification{name, nullptr, info};
    platform::NotificationCenter::defaultCenter().post(notification);
}
} // namespace

Window::Window(Environment environment) : View(Rect({}, environment.size)), environment_(environment) {}

Window::~Window() {
    if (theKeyWindow == this) theKeyWindow = nullptr;
}

void Window::setEnvironment(const Environment& environment) {
    environment_ = environment;
    setFrame({{}, environment.size});
    if (root_) root_->view()->setFrame(bounds());
    platform::NotificationCenter::defaultCenter().post(windowEnvironmentDidChangeNotification, nullptr);
    setNeedsLayout();
}

void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    if (root_) {
        root_->beginAppearanceTransition(false);
        root_->view()->removeFromSuperview();
        root_->endAppearanceTransition();
    }
    root_ = std::move(controller);
    if (!root_) return;
    root_->beginAppearanceTransition(true);
    root_->view()->setFrame(bounds());
    root_->view()->setAutoresizingMask(Autoresizing::flexibleWidth | Autoresizing::flexibleHeight);
    addSubview(root_->view());
    // On screen, a screen has its frames before it is told it appeared.
    layoutIfNeeded();
    root_->endAppearanceTransition();
}

ViewController* Window::topViewController() const {
    ViewController* top = root_.get();
    while (top && top->presentedViewController()) top = top->presentedViewController().get();
    return top;
}

Window* Window::keyWindow() { return theKeyWindow; }
void Window::makeKeyAndVisible() { theKeyWindow = this; }

bool Window::makeFirstResponder(View* view) {
    if (firstResponder_ == view) return true;
    if (!view || !view->isDescendantOf(*this)) return false;
    const bool hadKeyboard = firstResponder_ != nullptr;
    firstResponder_ = view;
    if (!hadKeyboard) showKeyboard();
    return true;
}

void Window::resignFirstResponder(View* view) {
    if (!view || firstResponder_ != view) return;
    firstResponder_ = nullptr;
    hideKeyboard();
}

void Window::showKeyboard(double height, double duration) {
    keyboardHeight_ = height;
    const KeyboardInfo info{{0, environment_.size.height - height, environment_.size.width, height}, duration};
    postKeyboard(keyboardWillShowNotification, info);
    postKeyboard(keyboardDidShowNotification, info);
}

void Window::hideKeyboard(double duration) {
    if (keyboardHeight_ == 0) return;
    const KeyboardInfo info{{0, environment_.size.height, environment_.size.width, keyboardHeight_}, duration};
    keyboardHeight_ = 0;
    postKeyboard(keyboardWillHideNotification, info);
    postKeyboard(keyboardDidHideNotification, info);
}

void Window::viewLeftWindow(View& view) {
    if (firstResponder_ && firstResponder_->isDescendantOf(view)) {
        firstResponder_ = nullptr;
        hideKeyboard(0);
    }
}

} // namespace uikit
