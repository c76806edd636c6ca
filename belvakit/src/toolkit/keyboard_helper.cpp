#include "belvakit/toolkit/keyboard_helper.hpp"

#include "uikit/animation.hpp"
#include "uikit/window.hpp"

#include <algorithm>

namespace belvakit {

namespace {

// The part of the window's bottom inset that the view lies over.
double bottomSafeAreaInset(const uikit::View& view, const uikit::Window& window) {
    const uikit::Rect inWindow = view.convert(view.bounds(), nullptr);
    const double insetTop = window.bounds().height() - window.environment().safeAreaInsets.bottom;
    return std::max(0.0, inWindow.maxY() - insetTop);
}

} // namespace

ConcreteKeyboardHelper::ConcreteKeyboardHelper(std::shared_ptr<uikit::LayoutConstraint> constraint,
                                               const std::shared_ptr<uikit::View>& parent)
    : bottomConstraint(std::move(constraint)), parentView(parent) {
    if (bottomConstraint) restingConstant_ = bottomConstraint->constant();
    auto& center = platform::NotificationCenter::defaultCenter();
    observers_.push_back(center.addObserver(uikit::keyboardWillShowNotification, nullptr,
                                            [this](const platform::Notification& note) { keyboardWillBeShown(note); }));
    observers_.push_back(center.addObserver(uikit::keyboardWillHideNotification, nullptr,
                                            [this](const platform::Notification& note) { keyboardWillHide(note); }));
}

ConcreteKeyboardHelper::~ConcreteKeyboardHelper() = default;

void ConcreteKeyboardHelper::keyboardWillBeShown(const platform::Notification& notification) {
    const auto* info = std::any_cast<uikit::KeyboardInfo>(&notification.userInfo);
    const auto parent = parentView.lock();
    if (!info || !parent) return;
    const uikit::Window* window = parent->window();
    if (!window) return;
    // The keyboard's frame is in window coordinates.
    const uikit::Rect keyboard = window->convert(info->endFrame, parent.get());
    absKeyboardHeight_ = info->endFrame.height();
    const double overlap = std::max(0.0, parent->bounds().maxY() - keyboard.minY());
    keyboardHeight_ = std::max(0.0, overlap - bottomSafeAreaInset(*parent, *window));
    keyboardVisible_ = true;
    willShow_.notify(keyboardHeight_);
    applyConstant(keyboardHeight_, info->duration, true);
}

void ConcreteKeyboardHelper::keyboardWillHide(const platform::Notification& notification) {
    const auto* info = std::any_cast<uikit::KeyboardInfo>(&notification.userInfo);
    const double leaving = keyboardHeight_;
    keyboardVisible_ = false;
    keyboardHeight_ = 0;
    absKeyboardHeight_ = 0;
    willHide_.notify(leaving);
    applyConstant(0, info ? info->duration : 0, false);
}

void ConcreteKeyboardHelper::applyConstant(double overlap, double duration, bool showing) {
    const auto parent = parentView.lock();
    if (!parent) return;
    uikit::Animation::animate(duration, [&] {
        if (bottomConstraint) {
            const bool parentFirst = bottomConstraint->firstItem() == parent;
            bottomConstraint->setConstant(restingConstant_ + (parentFirst ? overlap : -overlap));
        }
        parent->setNeedsLayout();
        parent->layoutIfNeeded();
        if (showing) willAnimateShowing_.notify(overlap);
    });
}

} // namespace belvakit
