#include "uikit/navigation_controller.hpp"

#include "uikit/animation.hpp"
#include "uikit/button.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

std::shared_ptr<View> NavigationBar::buttonFor(const BarButtonItem& item, const std::string& fallbackIdentifier) {
    if (item.customView) return item.customView;
    auto button = make<Button>(ButtonType::system);
    button->setTitle(item.title);
    if (item.image) button->setImage(item.image);
    button->setEnabled(item.enabled);
    button->setAccessibilityIdentifier(item.accessibilityIdentifier.empty() ? fallbackIdentifier
                                                                            : item.accessibilityIdentifier);
    button->setAccessibilityLabel(item.accessibilityLabel.empty() ? item.title : item.accessibilityLabel);
    if (item.action) button->addTarget(ControlEvent::touchUpInside, item.action);
    button->contentEdgeInsets = {0, 8, 0, 8};
    return button;
}

void NavigationBar::show(const NavigationItem& item, bool canGoBack, std::function<void()> back) {
    if (collapsed_) {
        for (const auto& view : {left_, right_, titleView_, std::static_pointer_cast<View>(titleLabel_)})
            if (view) view->setHidden(false);
        collapsed_ = false;
    }
    for (auto* view : {&left_, &right_, &titleView_})
        if (*view) (*view)->removeFromSuperview();
    left_ = right_ = titleView_ = nullptr;
    if (!titleLabel_) {
        titleLabel_ = make<Label>();
        titleLabel_->setFont(platform::Font::boldSystemFont(17));
        titleLabel_->setTextAlignment(TextAlignment::center);
        addSubview(titleLabel_);
    }
    titleLabel_->setText(item.titleView ? std::string() : item.title);
    if (item.titleView) {
        titleView_ = item.titleView;
        addSubview(titleView_);
    }
    if (item.leftBarButtonItem) {
        left_ = buttonFor(*item.leftBarButtonItem, "");
    } else if (canGoBack && !item.hidesBackButton) {
        BarButtonItem backItem = item.backBarButtonItem ? *item.backBarButtonItem : BarButtonItem{"Back"};
        backItem.action = std::move(back);
        left_ = buttonFor(backItem, "BackButton");
    }
    if (item.rightBarButtonItem) right_ = buttonFor(*item.rightBarButtonItem, "");
    for (const auto& view : {left_, right_})
        if (view) addSubview(view);
    const std::shared_ptr<View> searchBar = item.searchController ? item.searchController->searchBar() : nullptr;
    if (searchBar_ && searchBar_ != searchBar && searchBar_->superview() == this) searchBar_->removeFromSuperview();
    search_ = item.searchController;
    searchBar_ = searchBar;
    if (searchBar_) addSubview(searchBar_);
    setNeedsLayout();
}

double NavigationBar::contentHeight() const {
    const auto search = search_.lock();
    if (!search || !searchBar_) return height;
    if (search->isActive() && search->hidesNavigationBarDuringPresentation) return SearchBar::height;
    return height + SearchBar::height;
}

void NavigationBar::layoutSubviews() {
    View::layoutSubviews();
    const double searchHeight = searchBar_ ? SearchBar::height : 0;
    if (searchBar_) searchBar_->setFrame({0, frame().height() - searchHeight, frame().width(), searchHeight});
    // An active search that hides the bar leaves only its search bar.
    const auto search = search_.lock();
    const bool collapsed = search && search->isActive() && search->hidesNavigationBarDuringPresentation;
    if (collapsed != collapsed_) {
        collapsed_ = collapsed;
        for (const auto& view : {left_, right_, titleView_, std::static_pointer_cast<View>(titleLabel_)})
            if (view) view->setHidden(collapsed);
    }
    const Rect bar{0, frame().height() - searchHeight - height, frame().width(), height};
    double leftEdge = 8;
    double rightEdge = bar.width() - 8;
    if (left_) {
        const Size size = left_->sizeThatFits({bar.width() / 3, height});
        left_->setFrame({leftEdge, bar.minY() + std::floor((height - size.height) / 2), size.width, size.height});
        leftEdge += size.width + 8;
    }
    if (right_) {
        const Size size = right_->sizeThatFits({bar.width() / 3, height});
        right_->setFrame({rightEdge - size.width, bar.minY() + std::floor((height - size.height) / 2), size.width,
                          size.height});
        rightEdge -= size.width + 8;
    }
    // The title stays centred in the bar while it fits between the items.
    const double inset = std::max(leftEdge, bar.width() - rightEdge);
    const Rect title{inset, bar.minY(), std::max(0.0, bar.width() - 2 * inset), height};
    if (titleView_) {
        const Size size = titleView_->sizeThatFits(title.size);
        const double w = std::min(size.width, title.width());
        const double h = std::min(size.height, height);
        titleView_->setFrame({std::floor(title.midX() - w / 2), std::floor(title.midY() - h / 2), w, h});
    }
    if (titleLabel_) titleLabel_->setFrame(title);
}

NavigationController::NavigationController(Ptr root) {
    if (root) stack_.push_back(std::move(root));
}

void NavigationController::loadView() {
    ViewController::loadView();
    bar_ = make<NavigationBar>();
    bar_->setBackgroundColor(platform::Color{0.97, 0.97, 0.97, 1});
    view()->addSubview(bar_);
    for (const auto& controller : stack_) addChildViewController(controller);
    if (!stack_.empty()) show(nullptr, false);
}

ViewController* NavigationController::visibleViewController() const {
    ViewController* top = topViewController();
    if (presentedViewController()) return presentedViewController().get();
    return top;
}

void NavigationController::refreshBar() {
    if (!bar_ || stack_.empty()) return;
    bar_->show(stack_.back()->navigationItem(), stack_.size() > 1, [weak = weak_from_this()] {
        if (auto self = std::static_pointer_cast<NavigationController>(weak.lock())) self->popViewController(true);
    });
}

void NavigationController::show(ViewController* leaving, bool animated) {
    ViewController* arriving = topViewController();
    if (leaving && leaving != arriving && leaving->isViewLoaded()) {
        leaving->beginAppearanceTransition(false, animated);
        leaving->view()->removeFromSuperview();
        leaving->endAppearanceTransition();
    }
    if (!arriving) return;
    const auto& shown = arriving->view();
    const bool onScreen = isVisible() && view()->window();
    if (shown->superview() != view().get()) {
        if (onScreen) arriving->beginAppearanceTransition(true, animated);
        view()->insertSubview(shown, 0);
        refreshBar();
        view()->setNeedsLayout();
        // On screen, a screen has its frames before it is told it appeared.
        if (onScreen) view()->layoutIfNeeded();
        if (onScreen) arriving->endAppearanceTransition();
    }
    refreshBar();
    view()->setNeedsLayout();
}

void NavigationController::pushViewController(const Ptr& controller, bool animated) {
    if (!controller) return;
    ViewController* leaving = topViewController();
    stack_.push_back(controller);
    addChildViewController(controller);
    if (isViewLoaded()) show(leaving, animated);
}

ViewController::Ptr NavigationController::popViewController(bool animated) {
    if (stack_.size() < 2) return nullptr;
    Ptr leaving = stack_.back();
    leaving->movingFromParent_ = true;
    stack_.pop_back();
    if (isViewLoaded()) show(leaving.get(), animated);
    leaving->removeFromParentViewController();
    return leaving;
}

void NavigationController::popToRootViewController(bool animated) {
    while (stack_.size() > 1) popViewController(animated);
}

void NavigationController::setViewControllers(std::vector<Ptr> controllers, bool animated) {
    ViewController* leaving = topViewController();
    Ptr keep = leaving ? leaving->shared_from_this() : nullptr;
    for (const auto& old : stack_)
        if (std::find(controllers.begin(), controllers.end(), old) == controllers.end()) old->removeFromParentViewController();
    stack_ = std::move(controllers);
    for (const auto& controller : stack_) addChildViewController(controller);
    if (isViewLoaded()) show(leaving, animated);
}

void NavigationController::setNavigationBarHidden(bool hidden, bool) {
    barHidden_ = hidden;
    if (bar_) bar_->setHidden(hidden);
    if (isViewLoaded()) view()->setNeedsLayout();
}

void NavigationController::viewWillLayoutSubviews() {
    const Rect bounds = view()->bounds();
    const Window* window = view()->window();
    const double statusBar = window ? window->environment().safeAreaInsets.top : 0;
    bar_->setFrame({0, 0, bounds.width(), statusBar + bar_->contentHeight()});
    // Screens lie under the bar, as on the platform; their safe area keeps content below it.
    if (auto* top = topViewController()) top->view()->setFrame(bounds);
}

} // namespace uikit
