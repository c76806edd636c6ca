#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "corvane/reachability.hpp"
#include "uikit/label.hpp"
#include "test_support.hpp"
#include "uikit/animation.hpp"
#include "uikit/button.hpp"
#include "uikit/probe.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace belvakit;
using uikit::Rect;

namespace {

class BaseScreenTest : public ::testing::Test {
protected:
    std::shared_ptr<uikit::Window> show(const uikit::ViewController::Ptr& root,
                                        uikit::Environment environment = uikit::Environment::phonePortrait()) {
        auto window = std::make_shared<uikit::Window>(environment);
        window->makeKeyAndVisible();
        window->setRootViewController(root);
        relayout(*window);
        return window;
    }
    // The kit lays a navigation controller's view out before the view knows its controller, so
    // the bar, and what lies under it, get their frames only at the next layout of every view.
    static void relayout(uikit::Window& window) {
        const std::function<void(uikit::View&)> mark = [&](uikit::View& view) {
            view.setNeedsLayout();
            for (const auto& child : view.subviews()) mark(*child);
        };
        mark(window);
        window.layoutTree();
    }
    void settle(double seconds = 1) {
        time.advance(platform::seconds(seconds));
        platform::MainQueue::shared().runPending();
    }
    void TearDown() override { CRVUIUtil::setSystemVersion("13.0"); }

    testing_support::VirtualTime time;
};

TEST_F(BaseScreenTest, KeyboardOverlapShrinksTheContentAndHidingGivesItBack) {
    auto screen = std::make_shared<CRVUIViewController>();
    auto window = show(screen);
    // Below the status bar, down to the bottom.
    EXPECT_EQ(screen->contentView()->frame(), (Rect{0, 20, 375, 647}));
    EXPECT_TRUE(screen->contentView()->isDescendantOf(*screen->view()));

    // Not listening yet: the keyboard changes nothing.
    window->showKeyboard(216, 0.25);
    window->layoutTree();
    EXPECT_EQ(screen->contentView()->frame().height(), 647);
    window->hideKeyboard(0);

    screen->registerForKeyboardNotifications();
    window->showKeyboard(216, 0.25);
    EXPECT_EQ(screen->keyboardHeight(), 216);
    EXPECT_EQ(screen->adjustedKeyboardHeight(), 216);
    EXPECT_EQ(screen->animationDuration(), 0.25);
    EXPECT_EQ(screen->contentView()->frame(), (Rect{0, 20, 375, 431}));
    // The move is animated for the keyboard's duration.
    EXPECT_TRUE(screen->contentView()->isAnimating(uikit::Animation::now()));

    window->hideKeyboard(0.25);
    EXPECT_EQ(screen->keyboardHeight(), 0);
    EXPECT_EQ(screen->contentView()->frame(), (Rect{0, 20, 375, 647}));

    // Disappearing removes the observers.
    screen->beginAppearanceTransition(false);
    screen->endAppearanceTransition();
    window->showKeyboard(300, 0);
    EXPECT_EQ(screen->keyboardHeight(), 0);
    window->hideKeyboard(0);

    // Sideways on a system of 7.0 or before, the frame's width was the keyboard's height.
    screen->registerForKeyboardNotifications();
    window->setEnvironment(uikit::Environment::phoneLandscape());
    CRVUIUtil::setSystemVersion("7.0");
    window->showKeyboard(162, 0);
    EXPECT_EQ(screen->keyboardHeight(), 667);
    window->hideKeyboard(0);
    CRVUIUtil::setSystemVersion("7.1");
    window->showKeyboard(162, 0);
    EXPECT_EQ(screen->keyboardHeight(), 162);
}

TEST_F(BaseScreenTest, AFormSheetOnATabletLosesOnlyThePartUnderTheKeyboard) {
    auto root = std::make_shared<CRVUIViewController>();
    auto window = show(root, uikit::Environment::tablet());
    auto sheet = std::make_shared<CRVUIViewController>();
    sheet->setModalPresentationStyle(2);
    root->presentViewController(sheet, false);
    window->layoutTree();
    // 540 by 620 in the middle of 768 by 1024: its bottom at 822.
    ASSERT_EQ(sheet->view()->frame(), (Rect{114, 202, 540, 620}));
    EXPECT_EQ(sheet->contentView()->frame(), (Rect{0, 0, 540, 620}));

    sheet->registerForKeyboardNotifications();
    window->showKeyboard(264, 0);
    // The keyboard's top is at 760.
    EXPECT_EQ(sheet->adjustedKeyboardHeight(), 62);
    EXPECT_EQ(sheet->contentView()->frame(), (Rect{0, 0, 540, 558}));

    // A small keyboard stays clear of the sheet.
    window->hideKeyboard(0);
    window->showKeyboard(150, 0);
    EXPECT_EQ(sheet->adjustedKeyboardHeight(), 0);
    EXPECT_EQ(sheet->contentView()->frame().height(), 620);
}

TEST_F(BaseScreenTest, OffsetsFollowTheGuidesTheBarsAndTheSystem) {
    auto screen = std::make_shared<CRVUIViewController>();
    auto navigation = std::make_shared<uikit::NavigationController>(screen);
    auto window = show(navigation, uikit::Environment::phoneLandscape());
    // Under the bar (no status bar in landscape), above the home indicator.
    EXPECT_EQ(screen->topViewOffset(), 44);
    EXPECT_EQ(screen->bottomViewOffset(), 21);
    EXPECT_EQ(screen->contentView()->frame(), (Rect{0, 44, 667, 310}));

    screen->layoutGuide = CRVLayoutRespectNone;
    EXPECT_EQ(screen->topViewOffset(), 0.0);
    EXPECT_EQ(screen->bottomViewOffset(), 0.0);
    screen->view()->setNeedsLayout();
    window->layoutTree();
    EXPECT_EQ(screen->contentView()->frame(), (Rect{0, 0, 667, 375}));

    screen->layoutGuide = CRVLayoutRespectTop;
    EXPECT_EQ(screen->bottomViewOffset(), 0.0);
    // With the bar hidden the status bar is left: from system 11 on the safe area keeps it; before,
    // a hidden bar means no top offset at all.
    window->setEnvironment(uikit::Environment::phonePortrait());
    navigation->setNavigationBarHidden(true);
    EXPECT_EQ(screen->topViewOffset(), 20);
    CRVUIUtil::setSystemVersion("10.3");
    EXPECT_EQ(screen->topViewOffset(), 0.0);
    navigation->setNavigationBarHidden(false);
    window->layoutTree();
    EXPECT_EQ(screen->topViewOffset(), 64);
}

TEST_F(BaseScreenTest, ARootInAModalNavigationGetsACancelButtonThatDismisses) {
    auto presenter = std::make_shared<uikit::ViewController>();
    auto window = show(presenter);
    auto screen = std::make_shared<CRVUIViewController>();
    auto navigation = std::make_shared<uikit::NavigationController>(screen);
    navigation->setModalPresentationStyle(2);
    presenter->presentViewController(navigation, false);
    window->layoutTree();

    auto* cancel = uikit::findByIdentifier<uikit::Button>(*window, "CRVcancelButton");
    ASSERT_NE(cancel, nullptr);
    EXPECT_EQ(cancel->currentTitle(), localized(LocalizedKey::requestsCreateRequestCancelButton));
    EXPECT_TRUE(uikit::tap(*cancel));
    settle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);

    // Presented full screen, or pushed, a screen has no cancel button.
    auto plain = std::make_shared<CRVUIViewController>();
    presenter->presentViewController(std::make_shared<uikit::NavigationController>(plain), false);
    window->layoutTree();
    EXPECT_EQ(uikit::findByIdentifier(*window, "CRVcancelButton"), nullptr);
    EXPECT_EQ(plain->navigationItem().leftBarButtonItem, nullptr);
}

TEST_F(BaseScreenTest, ARequiredBarShowsAndIsHiddenAgainWhenTheScreenLeaves) {
    auto first = std::make_shared<uikit::ViewController>();
    auto navigation = std::make_shared<uikit::NavigationController>(first);
    auto window = show(navigation);
    navigation->setNavigationBarHidden(true);

    auto screen = std::make_shared<CRVUIViewController>();
    navigation->pushViewController(screen, false);
    EXPECT_FALSE(navigation->isNavigationBarHidden());
    navigation->popViewController(false);
    EXPECT_TRUE(navigation->isNavigationBarHidden());

    auto relaxed = std::make_shared<CRVUIViewController>();
    relaxed->requiresNavBar = false;
    navigation->pushViewController(relaxed, false);
    EXPECT_TRUE(navigation->isNavigationBarHidden());
}

TEST_F(BaseScreenTest, TheActiveControllerIsTheLastToAppearAndIsHeldWeakly) {
    auto screen = std::make_shared<CRVUIViewController>();
    auto navigation = std::make_shared<uikit::NavigationController>(screen);
    auto window = show(navigation);
    EXPECT_EQ(CRVUIViewController::activeController(), screen);

    auto next = std::make_shared<CRVUIViewController>();
    navigation->pushViewController(next, false);
    EXPECT_EQ(CRVUIViewController::activeController(), next);
    navigation->popViewController(false);
    EXPECT_EQ(CRVUIViewController::activeController(), screen);
    next.reset();

    // Held weakly: a screen that goes without disappearing is no longer active.
    auto loose = std::make_shared<CRVUIViewController>();
    loose->beginAppearanceTransition(true);
    loose->endAppearanceTransition();
    EXPECT_EQ(CRVUIViewController::activeController(), loose);
    loose.reset();
    EXPECT_EQ(CRVUIViewController::activeController(), nullptr);
}

TEST_F(BaseScreenTest, PresentingPushesOntoNavigationOrWrapsOrWarns) {
    auto root = std::make_shared<uikit::ViewController>();
    auto window = show(root);
    EXPECT_EQ(CRVUIViewController::topViewController(), root.get());

    testing_support::CapturedLog log;
    auto needsNavigation = std::make_shared<uikit::ViewController>();
    CRVUIViewController::presentViewControllerRequiresNavController(needsNavigation, true);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(log.messages(platform::LogLevel::warn),
              (std::vector<std::string>{
                  "WARNING! Requires navigation has been set to YES, but no navigation controller is present."}));

    auto wrapped = std::make_shared<uikit::ViewController>();
    CRVUIViewController::presentViewControllerRequiresNavController(wrapped, false);
    settle();
    auto* navigation = dynamic_cast<uikit::NavigationController*>(root->presentedViewController().get());
    ASSERT_NE(navigation, nullptr);
    EXPECT_EQ(navigation->topViewController(), wrapped.get());
    EXPECT_EQ(CRVUIViewController::topViewController(), wrapped.get());

    // Now there is a navigation on top: the next screen is pushed onto it.
    auto pushed = std::make_shared<uikit::ViewController>();
    CRVUIViewController::presentViewControllerRequiresNavController(pushed, true);
    EXPECT_EQ(navigation->viewControllers().size(), 2u);
    EXPECT_EQ(CRVUIViewController::topViewController(), pushed.get());
    EXPECT_EQ(CRVUIViewController::topViewControllerWithRootViewController(nullptr), nullptr);
}

} // namespace

TEST_F(BaseScreenTest, TheConnectivityToastComesOnAppearWhileOfflineOnLossAndLeavesOnReturn) {
    const auto toasts = [](uikit::Window& window) {
        return uikit::findAll(window, [](const uikit::View& view) {
            return view.accessibilityIdentifier() == "CRVtoastRetryMessage" && uikit::isShown(view);
        });
    };
    auto outage = corvane::NetworkMonitor::shared().beginOutage();
    auto screen = std::make_shared<CRVUIViewController>();
    auto window = show(screen);
    settle();
    auto shown = toasts(*window);
    ASSERT_EQ(shown.size(), 1u) << "on view while offline";
    EXPECT_EQ(static_cast<uikit::Label*>(shown[0])->text(), localized(LocalizedKey::requestsConnectionError));
    EXPECT_GE(screen->toastHeight(), 53);
    window->layoutTree();
    EXPECT_EQ(screen->contentView()->frame().minY(), std::floor(screen->topViewOffset() + screen->toastHeight()));

    outage.reset();
    settle();
    EXPECT_TRUE(toasts(*window).empty()) << "the network came back";
    EXPECT_EQ(screen->toastHeight(), 0);

    // Lost again, and reported twice: the second toast replaces the first once it has left.
    outage = corvane::NetworkMonitor::shared().beginOutage();
    settle();
    screen->presentConnectivityToast(true);
    settle();
    EXPECT_EQ(toasts(*window).size(), 1u);
    outage.reset();
    settle();
    EXPECT_TRUE(toasts(*window).empty());
}

TEST_F(BaseScreenTest, AScreenOnItsWayOutPresentsNothing) {
    auto presenter = std::make_shared<uikit::ViewController>();
    auto window = show(presenter);
    auto screen = std::make_shared<uikit::ViewController>();
    auto navigation = std::make_shared<uikit::NavigationController>(screen);
    presenter->presentViewController(navigation, false);
    presenter->dismissViewController(true);

    testing_support::CapturedLog log;
    screen->presentViewController(std::make_shared<uikit::ViewController>(), false);
    EXPECT_EQ(screen->presentedViewController(), nullptr);
    EXPECT_EQ(log.messages(platform::LogLevel::warn).size(), 1u);
    settle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);

    // Once gone for good and shown again, it presents as before.
    presenter->presentViewController(navigation, false);
    screen->presentViewController(std::make_shared<uikit::ViewController>(), false);
    EXPECT_NE(screen->presentedViewController(), nullptr);
}
