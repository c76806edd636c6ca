#include "uikit/view_controller.hpp"

#include "uikit/animation.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include "platform/log.hpp"

#include <algorithm>

namespace uikit {

ViewController::ViewController() = default;

ViewController::~ViewController() {
    if (view_) view_->setViewController(nullptr);
    for (const auto& child : children_) child->parent_ = nullptr;
    if (presented_) presented_->presenting_ = nullptr;
}

const View::Ptr& ViewController::view() {
    if (!view_) {
        loadView();
        if (!view_) view_ = make<View>();
        view_->setViewController(this);
        // Layout run while loading went without the screen's calls: the first one after must have them.
        view_->setNeedsLayout();
        viewDidLoad();
    }
    return view_;
}

void ViewController::loadView() {
    const Window* key = Window::keyWindow();
    view_ = make<View>(Rect({}, key ? key->environment().size : Environment{}.size));
    view_->setBackgroundColor(platform::Color::white());
}

void ViewController::beginAppearanceTransition(bool appearing, bool animated) {
    if (appearing == visible_ && !appearing_) return;
    if (appearing) loadViewIfNeeded();
    appearing_ = true;
    if (appearing)
        viewWillAppear(animated);
    else
        viewWillDisappear(animated);
    for (const auto& child : children_)
        if (child->isViewLoaded() && child->view()->superview()) child->beginAppearanceTransition(appearing, animated);
    visible_ = appearing;
}

void ViewController::endAppearanceTransition() {
    if (!appearing_) return;
    appearing_ = false;
    if (visible_)
        viewDidAppear(false);
    else
        viewDidDisappear(false);
    for (const auto& child : children_) child->endAppearanceTransition();
    if (!visible_) movingFromParent_ = false;
}

void ViewController::addChildViewController(const Ptr& child) {
    if (!child || child.get() == this) return;
    child->removeFromParentViewController();
    child->willMoveToParentViewController(this);
    children_.push_back(child);
    child->parent_ = this;
}

void ViewController::removeFromParentViewController() {
    ViewController* parent = parent_;
    if (!parent) return;
    const Ptr keep = shared_from_this();
    auto& list = parent->children_;
    list.erase(std::remove(list.begin(), list.end(), keep), list.end());
    parent_ = nullptr;
    didMoveToParentViewController(nullptr);
}

NavigationController* ViewController::navigationController() const {
    for (ViewController* parent = parent_; parent; parent = parent->parent_)
        if (auto* navigation = dynamic_cast<NavigationController*>(parent)) return navigation;
    return nullptr;
}

void ViewController::showViewController(const Ptr& controller) {
    auto* navigation = dynamic_cast<NavigationController*>(this);
    if (!navigation) navigation = navigationController();
    if (navigation)
        navigation->pushViewController(controller, true);
    else
        presentViewController(controller, true);
}

void ViewController::presentViewController(const Ptr& controller, bool animated, std::function<void()> completion) {
    if (!controller || presented_) return;
    Window* window = view()->window();
    if (!window) return;
    // As on the platform: a screen on its way out presents nothing, or what it shows would
    // outlive it with no way back.
    for (const ViewController* screen = this; screen; screen = screen->parent_)
        if (screen->beingDismissed_) {
            platform::log::write(platform::LogLevel::warn, "Attempt to present a view controller on one that is being dismissed");
            return;
        }
    presented_ = controller;
    controller->presenting_ = this;
    const Rect full = window->bounds();
    const bool sheet = controller->modalPresentationStyle_ == 2 && window->environment().idiom == UserInterfaceIdiom::pad;
    const Rect target = sheet ? Rect(full.midX() - 270, full.midY() - 310, 540, 620) : full;
    const auto& shown = controller->view();
    // Laid out where it comes to rest: below the window every inset would read as covered.
    shown->setFrame(target);
    controller->beginAppearanceTransition(true, animated);
    window->addSubview(shown);
    window->layoutIfNeeded();
    if (animated) shown->setFrame(target.offsetBy(0, full.height()));
    auto finish = [controller, completion = std::move(completion)](bool) {
        controller->endAppearanceTransition();
        if (completion) completion();
    };
    if (animated)
        Animation::animate(0.3, [&] { shown->setFrame(target); }, std::move(finish));
    else
        finish(true);
}

void ViewController::dismissViewController(bool animated, std::function<void()> completion) {
    // Asked of the presented screen, it goes to its presenter, as on the platform.
    if (!presented_ && presenting_) {
        presenting_->dismissViewController(animated, std::move(completion));
        return;
    }
    const Ptr leaving = presented_;
    if (!leaving) return;
    // Whatever the leaving screen presents goes with it, as on the platform; left behind, its
    // views would stay in the window after their screens are gone.
    std::vector<Ptr> chain;
    for (Ptr screen = leaving; screen; screen = screen->presented_) chain.push_back(screen);
    for (const auto& screen : chain) {
        screen->beingDismissed_ = true;
        screen->beginAppearanceTransition(false, animated);
    }
    auto finish = [self = shared_from_this(), chain = std::move(chain), completion = std::move(completion)](bool) {
        for (auto screen = chain.rbegin(); screen != chain.rend(); ++screen) {
            (*screen)->view()->removeFromSuperview();
            (*screen)->endAppearanceTransition();
            (*screen)->beingDismissed_ = false;
            (*screen)->presenting_ = nullptr;
            (*screen)->presented_ = nullptr;
        }
        if (self->presented_ == chain.front()) self->presented_ = nullptr;
        if (completion) completion();
    };
    if (animated) {
        const auto& view = leaving->view();
        Animation::animate(0.3, [&] { view->setFrame(view->frame().offsetBy(0, view->frame().height())); },
                           std::move(finish));
    } else {
        finish(true);
    }
}

EdgeInsets ViewController::safeAreaInsets() const {
    EdgeInsets insets;
    if (view_) {
        if (const Window* window = view_->window()) {
            const EdgeInsets windowInsets = window->environment().safeAreaInsets;
            // Only the part of the window's insets that this view lies under.
            const Rect inWindow = view_->convert(view_->bounds(), nullptr);
            insets.top = std::max(0.0, windowInsets.top - inWindow.minY());
            insets.left = std::max(0.0, windowInsets.left - inWindow.minX());
            insets.right = std::max(0.0, inWindow.maxX() - (window->bounds().width() - windowInsets.right));
            insets.bottom = std::max(0.0, inWindow.maxY() - (window->bounds().height() - windowInsets.bottom));
        }
    }
    if (auto* navigation = navigationController(); navigation && !navigation->isNavigationBarHidden() && view_) {
        const auto& bar = navigation->navigationBar();
        const Rect barInView = bar->convert(bar->bounds(), view_.get());
        insets.top = std::max(insets.top, barInView.maxY());
    }
    return insets;
}

void ViewController::runLayout(const std::function<void()>& layout) {
    viewWillLayoutSubviews();
    layout();
    viewDidLayoutSubviews();
}

} // namespace uikit
