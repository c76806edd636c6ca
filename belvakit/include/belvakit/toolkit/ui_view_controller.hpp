#pragma once

#include "platform/notification_center.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/view_controller.hpp"

#include <memory>
#include <vector>

namespace corvane {
class CRVReachability;
}

namespace belvakit {

class CRVToastView;

// Which of the screen's insets the content keeps out of.
struct CRVLayoutGuide {
    bool top = true;
    bool bottom = true;
    bool operator==(const CRVLayoutGuide&) const = default;
};
inline constexpr CRVLayoutGuide CRVLayoutRespectAll{true, true};
inline constexpr CRVLayoutGuide CRVLayoutRespectNone{false, false};
inline constexpr CRVLayoutGuide CRVLayoutRespectTop{true, false};
inline constexpr CRVLayoutGuide CRVLayoutRespectBottom{false, true};

// The base screen: all content goes into `contentView`, which keeps clear of the bars, of the
// connectivity toast and of the keyboard.
class CRVUIViewController : public uikit::ViewController {
public:
    CRVUIViewController();
    ~CRVUIViewController() override;
    std::string_view className() const override { return "CRVUIViewController"; }

    // Both guides, and the navigation bar required.
    void commonInit();

    CRVLayoutGuide layoutGuide;
    bool requiresNavBar = true;
    const std::shared_ptr<uikit::View>& contentView() const { return contentView_; }
    // The connectivity toast on show.
    std::shared_ptr<CRVToastView> toastView;
    const std::shared_ptr<corvane::CRVReachability>& reachable() const { return reachable_; }
    double toastHeight() const { return toastHeight_; }
    // For a screen's own toasts: the room they take above the content.
    void setToastHeight(double height) { toastHeight_ = height; }
    // From the last keyboard notification, and the part of it over this screen.
    double keyboardHeight() const { return keyboardHeight_; }
    double adjustedKeyboardHeight() const { return adjustedKeyboardHeight_; }
    int animationCurve() const { return animationCurve_; }
    double animationDuration() const { return animationDuration_; }

    // The notifications that bring the connectivity toast: reachability changes.
    void registerForToastNotifications();
    // The keyboard's will-show and will-hide notifications. Every observer goes when the screen
    // disappears, so a screen with inputs registers again each time it appears.
    void registerForKeyboardNotifications();
    void presentConnectivityToast(bool animated);
    void dismissActiveToast(bool animated);
    // Places `contentView`; run before each layout of the view.
    virtual void layoutContent();
    double topViewOffset() const;
    double bottomViewOffset() const;
    // Dismisses the presenter, animated.
    void cancel();

    void networkStatusChanged(const platform::Notification& notification);
    void keyboardWillBeShown(const platform::Notification& notification);
    void keyboardWillBeHidden(const platform::Notification& notification);
    // Recomputes the part of the keyboard over this screen.
    void updateKeyboardHeightForModal();

    // The screen that appeared last and is still on view.
    static std::shared_ptr<CRVUIViewController> activeController();
    // The screen on top of the key window.
    static uikit::ViewController* topViewController();
    static uikit::ViewController* topViewControllerWithRootViewController(uikit::ViewController* root);
    // Pushes onto the top screen's navigation, or presents in a new one; with
    // `requiresNavController` and no navigation, logs a warning and does nothing. Named apart from
    // the inherited presentViewController, which a static of that name would hide.
    static void presentViewControllerRequiresNavController(const uikit::ViewController::Ptr& controller,
                                                           bool requiresNavController);

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;

private:
    // Reachability and the connectivity toast, built with the toasts and reachability.
    void startReachability();
    void presentConnectivityToastIfUnreachable();
    void relayoutForKeyboard();

    std::shared_ptr<uikit::View> contentView_;
    std::shared_ptr<corvane::CRVReachability> reachable_;
    double toastHeight_ = 0;
    double keyboardHeight_ = 0;
    double adjustedKeyboardHeight_ = 0;
    int animationCurve_ = 0;
    double animationDuration_ = 0;
    bool navigationBarWasHidden_ = false;
    std::vector<platform::ObservationToken> observers_;
};

} // namespace belvakit
