#pragma once

#include "uikit/bar_button_item.hpp"
#include "uikit/view.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace uikit {

class NavigationController;

// One screen: owns its view, made on first use, and is told as it appears and disappears.
// Screens contain child screens and present others modally.
class ViewController : public std::enable_shared_from_this<ViewController> {
public:
    using Ptr = std::shared_ptr<ViewController>;

    ViewController();
    virtual ~ViewController();
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;

    virtual std::string_view className() const { return "UIViewController"; }

    // The view, loaded (and `viewDidLoad` run) on first use.
    const View::Ptr& view();
    bool isViewLoaded() const { return view_ != nullptr; }
    void loadViewIfNeeded() { view(); }

    // Lifecycle, for subclasses.
    virtual void loadView();
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool) {}
    virtual void viewDidAppear(bool) {}
    virtual void viewWillDisappear(bool) {}
    virtual void viewDidDisappear(bool) {}
    virtual void viewWillLayoutSubviews() {}
    virtual void viewDidLayoutSubviews() {}
    // Runs the appearance calls of this screen and its children.
    void beginAppearanceTransition(bool appearing, bool animated = false);
    void endAppearanceTransition();
    bool isVisible() const { return visible_; }

    const std::string& title() const { return navigationItem_.title; }
    void setTitle(std::string title) { navigationItem_.title = std::move(title); }
    NavigationItem& navigationItem() { return navigationItem_; }
    const NavigationItem& navigationItem() const { return navigationItem_; }

    // Containment.
    ViewController* parentViewController() const { return parent_; }
    const std::vector<Ptr>& childViewControllers() const { return children_; }
    void addChildViewController(const Ptr& child);
    void removeFromParentViewController();
    virtual void willMoveToParentViewController(ViewController*) {}
    virtual void didMoveToParentViewController(ViewController*) {}
    // The navigation controller this screen is on, through its parents.
    NavigationController* navigationController() const;

    // Modal presentation: the presented screen covers the window (a form sheet on a tablet covers
    // its middle), sliding up when animated.
    void presentViewController(const Ptr& controller, bool animated, std::function<void()> completion = {});
    void dismissViewController(bool animated, std::function<void()> completion = {});
    // Pushes on this screen's navigation stack if it is on one, and presents modally otherwise.
    void showViewController(const Ptr& controller);
    const Ptr& presentedViewController() const { return presented_; }
    ViewController* presentingViewController() const { return presenting_; }
    int modalPresentationStyle() const { return modalPresentationStyle_; }
    void setModalPresentationStyle(int style) { modalPresentationStyle_ = style; }
    bool isBeingDismissed() const { return beingDismissed_; }
    bool isMovingFromParentViewController() const { return movingFromParent_; }

    // The insets the screen must keep its content out of: the window's, and the navigation bar.
    EdgeInsets safeAreaInsets() const;
    double topLayoutGuideLength() const { return safeAreaInsets().top; }
    double bottomLayoutGuideLength() const { return safeAreaInsets().bottom; }

    // For the view: its layout runs these around the subviews' placing.
    void runLayout(const std::function<void()>& layout);

private:
    friend class NavigationController;
    View::Ptr view_;
    NavigationItem navigationItem_;
    ViewController* parent_ = nullptr;
    std::vector<Ptr> children_;
    Ptr presented_;
    ViewController* presenting_ = nullptr;
    int modalPresentationStyle_ = 0;
    bool visible_ = false;
    bool appearing_ = false;
    bool beingDismissed_ = false;
    bool movingFromParent_ = false;
};

} // namespace uikit
