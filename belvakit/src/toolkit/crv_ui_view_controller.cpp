#include "belvakit/toolkit/ui_view_controller.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "corvane/core_logger.hpp"
#include "uikit/animation.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

std::weak_ptr<CRVUIViewController>& activeStorage() {
    static std::weak_ptr<CRVUIViewController> active;  // main thread only
    return active;
}

} // namespace

CRVUIViewController::CRVUIViewController() { commonInit(); }

CRVUIViewController::~CRVUIViewController() = default;

void CRVUIViewController::commonInit() {
    layoutGuide = CRVLayoutRespectAll;
    requiresNavBar = true;
    // The kit's scroll views take no automatic insets, so there is nothing to turn off.
}

void CRVUIViewController::viewDidLoad() {
    uikit::ViewController::viewDidLoad();
    auto* navigation = navigationController();
    if (requiresNavBar && navigation && navigation->isNavigationBarHidden()) {
        navigationBarWasHidden_ = true;
        navigation->setNavigationBarHidden(false);
    }

    contentView_ = uikit::make<uikit::View>(view()->frame());
    view()->addSubview(contentView_);

    if (navigation && !navigation->viewControllers().empty() && navigation->viewControllers().front().get() == this &&
        navigation->modalPresentationStyle() != 0) {
        auto item = std::make_shared<uikit::BarButtonItem>();
        item->title = localized(LocalizedKey::requestsCreateRequestCancelButton);
        item->accessibilityIdentifier = "CRVcancelButton";
        item->action = [weak = weak_from_this()] {
            if (auto self = std::dynamic_pointer_cast<CRVUIViewController>(weak.lock())) self->cancel();
        };
        navigationItem().leftBarButtonItem = std::move(item);
    }

    startReachability();
}

void CRVUIViewController::cancel() {
    uikit::ViewController* presented = navigationController();
    if (!presented) presented = this;
    if (auto* presenter = presented->presentingViewController()) presenter->dismissViewController(true);
}

void CRVUIViewController::viewWillAppear(bool animated) {
    uikit::ViewController::viewWillAppear(animated);
    registerForToastNotifications();
    activeStorage() = std::dynamic_pointer_cast<CRVUIViewController>(weak_from_this().lock());
}

void CRVUIViewController::viewDidAppear(bool animated) {
    uikit::ViewController::viewDidAppear(animated);
    presentConnectivityToastIfUnreachable();
}

void CRVUIViewController::viewWillDisappear(bool animated) {
    uikit::ViewController::viewWillDisappear(animated);
    if (navigationBarWasHidden_ && isMovingFromParentViewController()) {
        if (auto* navigation = navigationController()) navigation->setNavigationBarHidden(true);
    }
    observers_.clear();
    // Another screen may have become the active one meanwhile.
    if (activeStorage().lock().get() == this) activeStorage().reset();
}

void CRVUIViewController::viewDidDisappear(bool animated) {
    uikit::ViewController::viewDidDisappear(animated);
    dismissActiveToast(false);
}

void CRVUIViewController::viewWillLayoutSubviews() {
    uikit::ViewController::viewWillLayoutSubviews();
    layoutContent();
}

void CRVUIViewController::layoutContent() {
    updateKeyboardHeightForModal();
    if (!contentView_) return;
    const double width = view()->frame().width();
    const double height = view()->frame().height();
    const double y = std::floor(topViewOffset() + toastHeight_);
    const double contentHeight = std::floor(height - y - bottomViewOffset() - adjustedKeyboardHeight_);
    contentView_->setFrame({0, y, width, std::max(0.0, contentHeight)});
}

double CRVUIViewController::topViewOffset() const {
    if (!layoutGuide.top) return 0.0;
    if (!CRVUIUtil::isOlderVersion("11.0")) return safeAreaInsets().top;
    const auto* navigation = navigationController();
    if (navigation && navigation->isNavigationBarHidden()) return 0.0;
    return topLayoutGuideLength();
}

double CRVUIViewController::bottomViewOffset() const {
    if (!layoutGuide.bottom) return 0.0;
    if (!CRVUIUtil::isOlderVersion("11.0")) return safeAreaInsets().bottom;
    return bottomLayoutGuideLength();
}

void CRVUIViewController::registerForKeyboardNotifications() {
    auto& center = platform::NotificationCenter::defaultCenter();
    observers_.push_back(center.addObserver(uikit::keyboardWillShowNotification, nullptr,
                                            [this](const platform::Notification& n) { keyboardWillBeShown(n); }));
    observers_.push_back(center.addObserver(uikit::keyboardWillHideNotification, nullptr,
                                            [this](const platform::Notification& n) { keyboardWillBeHidden(n); }));
}

void CRVUIViewController::keyboardWillBeShown(const platform::Notification& notification) {
    const auto* info = std::any_cast<uikit::KeyboardInfo>(&notification.userInfo);
    if (!info) return;
    animationCurve_ = info->curve;
    animationDuration_ = info->duration;
    const int orientation = CRVUIUtil::currentInterfaceOrientation();
    const bool sidewaysOnOldSystem = (orientation == 3 || orientation == 4) && !CRVUIUtil::isNewerVersion("7.0");
    keyboardHeight_ = sidewaysOnOldSystem ? info->endFrame.width() : info->endFrame.height();
    relayoutForKeyboard();
}

void CRVUIViewController::keyboardWillBeHidden(const platform::Notification& notification) {
    if (const auto* info = std::any_cast<uikit::KeyboardInfo>(&notification.userInfo)) {
        animationCurve_ = info->curve;
        animationDuration_ = info->duration;
    }
    keyboardHeight_ = 0;
    relayoutForKeyboard();
}

void CRVUIViewController::relayoutForKeyboard() {
    if (!isViewLoaded()) return;
    const auto& root = view();
    uikit::Animation::animate(animationDuration_, [&] {
        root->setNeedsLayout();
        root->layoutIfNeeded();
    });
}

void CRVUIViewController::updateKeyboardHeightForModal() {
    const uikit::Window* window = isViewLoaded() ? view()->window() : nullptr;
    const bool pad = window ? window->environment().idiom == uikit::UserInterfaceIdiom::pad : CRVUIUtil::isPad();
    if (!pad || !window) {
        adjustedKeyboardHeight_ = keyboardHeight_;
        return;
    }
    // A form sheet may lie only partly under the keyboard.
    const auto& environment = window->environment();
    const bool landscape = environment.orientation == uikit::InterfaceOrientation::landscapeLeft ||
                           environment.orientation == uikit::InterfaceOrientation::landscapeRight;
    double screenHeight = environment.size.height;
    if (landscape && environment.size.width < environment.size.height) screenHeight = environment.size.width;
    const double viewBottom = view()->convert(view()->bounds(), nullptr).maxY();
    const double keyboardTop = screenHeight - keyboardHeight_;
    const double overlap = std::floor(viewBottom - keyboardTop);
    adjustedKeyboardHeight_ = overlap > 0 ? overlap : 0;
}

std::shared_ptr<CRVUIViewController> CRVUIViewController::activeController() { return activeStorage().lock(); }

uikit::ViewController* CRVUIViewController::topViewController() {
    const uikit::Window* window = uikit::Window::keyWindow();
    return window ? topViewControllerWithRootViewController(window->rootViewController().get()) : nullptr;
}

uikit::ViewController* CRVUIViewController::topViewControllerWithRootViewController(uikit::ViewController* root) {
    if (!root) return nullptr;
    // The kit has no tab bar controller; navigation and presentation are the ways down.
    if (auto* navigation = dynamic_cast<uikit::NavigationController*>(root)) {
        auto* visible = navigation->visibleViewController();
        return visible ? topViewControllerWithRootViewController(visible) : root;
    }
    if (const auto& presented = root->presentedViewController())
        return topViewControllerWithRootViewController(presented.get());
    return root;
}

void CRVUIViewController::presentViewControllerRequiresNavController(const uikit::ViewController::Ptr& controller,
                                                                     bool requiresNavController) {
    uikit::ViewController* top = topViewController();
    if (!top || !controller) return;
    if (auto* navigation = dynamic_cast<uikit::NavigationController*>(top)) {
        navigation->pushViewController(controller, true);
        return;
    }
    if (auto* navigation = top->navigationController()) {
        navigation->pushViewController(controller, true);
        return;
    }
    if (requiresNavController) {
        corvane::CRVLogger::w(
            "WARNING! Requires navigation has been set to YES, but no navigation controller is present.");
        return;
    }
    top->presentViewController(std::make_shared<uikit::NavigationController>(controller), true);
}

} // namespace belvakit
