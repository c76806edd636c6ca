#include "belvakit/toolkit/toast.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "toolkit_fixture.hpp"
#include "uikit/animation.hpp"
#include "uikit/probe.hpp"

#include <algorithm>
#include <cmath>

using namespace belvakit;

namespace {

const platform::Color grey26{0.26, 0.26, 0.26, 1.0};
const platform::Color red{1, 0, 0, 1};

std::vector<CRVToastView*> toastsIn(uikit::View& view) {
    std::vector<CRVToastView*> found;
    for (const auto& child : view.subviews())
        if (auto* toast = dynamic_cast<CRVToastView*>(child.get())) found.push_back(toast);
    return found;
}

class ToastTest : public toolkit_testing::ScreenTest {
protected:
    std::shared_ptr<uikit::View> host() { return screen->view(); }

    std::shared_ptr<CRVToastView> make(const std::string& message, std::optional<std::string> button = std::nullopt,
                                       double duration = 0, CRVToastType type = 0,
                                       CRVToastView::ButtonBlock action = nullptr) {
        return CRVToastView::initInView(host(), {}, 0, message, button, std::move(action), type, duration,
                                        CR_DefaultAnimationTime, nullptr, true);
    }
};

} // namespace

TEST_F(ToastTest, ATimedToastSlidesInWaitsItsDurationAndLeaves) {
    auto toast = CRVToast::showMessage("Saved", 1, host(), 0.0, 2.0, nullptr, true);
    ASSERT_TRUE(toast);
    EXPECT_EQ(toast->toast()->frame().minY(), 0);  // the model is final at once; the slide is drawn
    EXPECT_TRUE(toast->toast()->isAnimating(uikit::Animation::now()));
    EXPECT_FALSE(toast->timePresented());

    run(0.3);
    ASSERT_TRUE(toast->timePresented());
    EXPECT_NEAR(*toast->timePresented(), 0.3, 1e-9);
    run(2.25);
    EXPECT_EQ(toast->superview(), host().get());
    EXPECT_EQ(toast->toast()->frame().minY(), -53.0);  // sliding out
    run(0.1);
    EXPECT_EQ(toast->superview(), nullptr);
}

TEST_F(ToastTest, AToastWithoutDurationOrWithAButtonStaysUntilTakenAway) {
    auto untimed = make("No connection", std::nullopt, 0.0);
    untimed->present(true);
    bool onScreenWhenTapped = false;
    std::shared_ptr<CRVToastView> withButton;
    withButton = make("Failed", std::string("Retry"), 5.0, 0, [&] { onScreenWhenTapped = withButton->superview(); });
    withButton->present(false);

    run(60);
    EXPECT_EQ(untimed->superview(), host().get());
    EXPECT_EQ(withButton->superview(), host().get());
    EXPECT_FALSE(untimed->timePresented());
    EXPECT_FALSE(withButton->timePresented());

    auto* button = uikit::findByIdentifier<uikit::Button>(*withButton, "CRVtoastRetryButton");
    ASSERT_TRUE(button);
    EXPECT_TRUE(uikit::tap(*button));
    EXPECT_TRUE(onScreenWhenTapped);
    run(0.3);
    EXPECT_EQ(withButton->superview(), nullptr);

    untimed->dismiss(false);
    EXPECT_EQ(untimed->superview(), nullptr);
}

TEST_F(ToastTest, TheStripIsLaidOutByTheMarginsTheButtonAndTheMessage) {
    // 375 wide: margin max(20, ceil(18.75)) = 20.
    auto plain = make("Short");
    EXPECT_EQ(plain->frame(), uikit::Rect(0, 0, 375, 53));
    EXPECT_EQ(plain->toast()->frame(), uikit::Rect(0, -53, 375, 53));  // above the clip until presented
    EXPECT_TRUE(plain->clipsToBounds());
    EXPECT_FALSE(plain->button());
    EXPECT_EQ(plain->text()->textAlignment(), uikit::TextAlignment::center);
    EXPECT_EQ(plain->text()->frame().minX(), 20);
    EXPECT_EQ(plain->text()->frame().width(), 335);

    auto retry = make("Short", std::string("Retry"));
    const auto& button = retry->button();
    ASSERT_TRUE(button);
    const double bw = button->sizeThatFits({100, 100}).width + 20;
    EXPECT_EQ(button->frame(), uikit::Rect(std::floor(375 - 20 - bw), 10, bw, 32));  // raised to 32, centred in 53
    EXPECT_EQ(retry->text()->frame().width(), std::ceil(375 - 60 - bw));
    EXPECT_EQ(retry->text()->textAlignment(), uikit::TextAlignment::left);
    EXPECT_EQ(button->borderWidth(), 0.5);  // the window's scale is 2

    std::string longMessage;
    for (int i = 0; i < 40; ++i) longMessage += "connection ";
    auto tall = make(longMessage);
    const double th = tall->text()->frame().height();
    EXPECT_GT(th, 33);
    EXPECT_EQ(tall->frame().height(), std::ceil(th + 20));
    EXPECT_EQ(tall->toast()->frame().height(), std::ceil(th + 20));
    EXPECT_EQ(tall->text()->frame().minY(), std::ceil((tall->frame().height() - th) / 2));

    // A width too small for the margins gives the text none, and still the least height.
    auto narrow = CRVToastView::initInView(uikit::make<uikit::View>(uikit::Rect{0, 0, 10, 100}), {}, 0, "Hi",
                                           std::nullopt, nullptr, 0, 0, 0.3, nullptr, true);
    EXPECT_EQ(narrow->text()->frame().width(), 0);
    EXPECT_GE(narrow->frame().height(), 53);
}

TEST_F(ToastTest, AToastOfAScreenSitsUnderItsTopLayoutGuide) {
    uikit::Environment notched;
    notched.safeAreaInsets.top = 47;
    window->setEnvironment(notched);
    window->layoutTree();
    const auto& top = screen;
    const double guide = top->topLayoutGuideLength();
    ASSERT_EQ(guide, 47);

    auto toast = CRVToast::showMessage("Hello", 0, top, 1.0, nullptr, false);
    EXPECT_EQ(toast->frame().minY(), guide);
    // Laid out again, it keeps to the guide whatever y it was given.
    auto moved = CRVToastView::initInView(top->view(), top, 5, "Hello", std::nullopt, nullptr, 0, 0, 0.3, nullptr, true);
    EXPECT_EQ(moved->frame().minY(), guide);
}

TEST_F(ToastTest, AnAnimatedDismissalOfAToastWhoseHostHasNoParentDoesNothing) {
    auto loose = std::make_shared<uikit::ViewController>();  // its view is in no window
    auto wrapper = uikit::make<CRVToastViewWrapper>();
    wrapper->showErrorInViewController(loose, "Offline", 0.0);
    ASSERT_TRUE(wrapper->toastView);
    run(1);
    ASSERT_TRUE(wrapper->isShowingError);

    bool completed = false;
    wrapper->toastView->dismiss(true, [&] { completed = true; });
    wrapper->dismiss();
    run(5);
    EXPECT_FALSE(completed);
    EXPECT_TRUE(wrapper->isShowingError);
    EXPECT_EQ(wrapper->toastView->superview(), loose->view().get());

    // Without animation it leaves at once, and says so.
    wrapper->toastView->dismiss(false, [&] { completed = true; });
    EXPECT_TRUE(completed);
    EXPECT_FALSE(wrapper->isShowingError);
    EXPECT_EQ(wrapper->contentHeight, 0);
}

TEST_F(ToastTest, TheWrapperShowsOneErrorAtATimeAndReportsItsHeight) {
    auto wrapper = uikit::make<CRVToastViewWrapper>();
    host()->addSubview(wrapper);
    wrapper->showErrorInViewController(screen, "First");
    EXPECT_TRUE(wrapper->isVisible());
    EXPECT_EQ(wrapper->contentHeight, 53);
    EXPECT_EQ(wrapper->intrinsicContentSize().height, 53);
    EXPECT_EQ(wrapper->toastView->frame().minY(), 20);  // under the status bar's inset
    EXPECT_EQ(wrapper->toastView->animationTime, 0.3);

    // A second error is dropped, though the style values are written again.
    CRVToastStyle::setValue(red, 3, 0);
    wrapper->showErrorInViewController(screen, "Second", "Retry", [] {});
    EXPECT_EQ(std::any_cast<platform::Color>(CRVToastStyle::getValueForType(3, 0)), platform::Color::black());
    ASSERT_EQ(toastsIn(*host()).size(), 1u);
    EXPECT_EQ(uikit::visibleTexts(*host()), (std::vector<std::string>{"First"}));

    run(3.3 + 0.3);
    EXPECT_FALSE(wrapper->isShowingError);
    EXPECT_EQ(wrapper->contentHeight, 0);
    EXPECT_TRUE(toastsIn(*host()).empty());

    wrapper->showErrorInViewController(screen, "Third", "Retry", [] {});
    EXPECT_TRUE(wrapper->isShowingError);
    EXPECT_EQ(uikit::visibleTexts(*host()), (std::vector<std::string>{"Retry", "Third"}));
    wrapper->hideToastView(true);
    EXPECT_TRUE(uikit::visibleTexts(*host()).empty());
    EXPECT_TRUE(wrapper->isShowingError);  // hidden, not ended
    wrapper->dismiss();
    run(0.3);
    EXPECT_FALSE(wrapper->isShowingError);
    wrapper->dismiss();  // nothing on show: nothing happens
}

TEST_F(ToastTest, ATypeThreeToastAfterTheWrapperIsBlackAtSizeSeventeenWhicheverDoorShowsIt) {
    auto wrapper = uikit::make<CRVToastViewWrapper>();
    wrapper->showErrorInViewController(screen, "Error", "Retry", [] {});
    const auto& shown = wrapper->toastView;
    EXPECT_EQ(shown->toast()->backgroundColor(), platform::Color::black());
    EXPECT_EQ(shown->text()->font().pointSize(), 17);

    auto other = CRVToast::showMessage("Also", 3, host(), 0.0, "Retry", nullptr, nullptr, false);
    EXPECT_EQ(other->toast()->backgroundColor(), platform::Color::black());
    EXPECT_EQ(other->text()->font().pointSize(), 17);
    // Other types keep the defaults.
    auto plain = CRVToast::showMessage("Plain", 0, host(), 0.0, "Retry", nullptr, nullptr, false);
    EXPECT_EQ(plain->toast()->backgroundColor(), grey26);
    EXPECT_EQ(plain->text()->font().pointSize(), 13);
    CRVToast::dismissForView(host(), false);
}

TEST(ToastStyle, BadTypesStylesAndValuesAreLoggedAndNotKept) {
    testing_support::CapturedLog log;
    struct Case {
        std::any value;
        CRVToastType type;
        CRVToastStyleKey style;
        const char* warning;
    };
    const std::vector<Case> cases{
        {red, 4, 0, "Warning! Invalid Toast style"},
        {std::any{}, 2, 0, "Warning! Attempt to set nil value."},
        {red, 2, 10, "Warning! Invalid Toast style"},
        {std::string("red"), 2, 5, "Warning! Attempt to set invalid color value."},
        {12.0, 2, 6, "Warning! Attempt to set invalid font name value."},
        {red, 2, 8, "Warning! Attempt to set invalid font name value."},
        {std::string("12"), 2, 7, "Warning! Attempt to set invalid font size value."},
        {red, 2, 9, "Warning! Attempt to set invalid font size value."},
    };
    for (const auto& bad : cases) {
        log.clear();
        CRVToastStyle::setValue(bad.value, bad.type, bad.style);
        EXPECT_EQ(log.messages(platform::LogLevel::warn), (std::vector<std::string>{bad.warning}))
            << "type " << bad.type << " style " << bad.style;
        EXPECT_FALSE(CRVToastStyle::getValueForType(bad.type, bad.style).has_value());
    }
    EXPECT_EQ(CRVToastStyle::instance().values().count("4"), 0u);

    log.clear();
    CRVToastStyle::setValue(red, 2, 5);
    CRVToastStyle::setValue(std::string("Courier"), 2, 6);
    CRVToastStyle::setValue(15, 2, 7);
    EXPECT_TRUE(log.records().empty());
    EXPECT_EQ(std::any_cast<platform::Color>(CRVToastStyle::getValueForType(2, 5)), red);
    EXPECT_EQ(std::any_cast<double>(CRVToastStyle::getValueForType(2, 7)), 15.0);
    EXPECT_EQ(CRVToastStyle::instance().values().at("2").size(), 3u);
    EXPECT_FALSE(CRVToastStyle::getValueForType(2, 0).has_value());
}

TEST_F(ToastTest, TheRegistryShowsToastsOverEachOtherTakesAViewsToastsDownTogetherAndKeepsItsTimePositive) {
    auto first = CRVToast::showMessage("First", 0, host(), 0.0, 0.0, nullptr, false);
    auto second = CRVToast::showMessage("Second", 0, host(), 0.0, 0.0, nullptr, false);
    auto elsewhere = uikit::make<uikit::View>(uikit::Rect{0, 0, 320, 200});
    host()->addSubview(elsewhere);
    auto other = CRVToast::showMessage("Other", 0, elsewhere, 0.0, 0.0, nullptr, false);
    auto passing = CRVToast::showMessage("Passing", 0, host(), 0.0, 1.0, nullptr, false);
    run(1.3);
    ASSERT_EQ(passing->superview(), nullptr);  // gone by itself, still listed
    const auto listed = CRVToast::instance().toasts();
    EXPECT_NE(std::find(listed.begin(), listed.end(), passing), listed.end());
    // The later toast lies over the earlier.
    const auto shown = toastsIn(*host());
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], first.get());
    EXPECT_EQ(shown[1], second.get());

    CRVToast::dismissForView(host(), true);
    EXPECT_EQ(first->superview(), nullptr);  // at once
    EXPECT_EQ(second->superview(), host().get());  // slides out
    run(0.3);
    EXPECT_EQ(second->superview(), nullptr);
    EXPECT_EQ(other->superview(), elsewhere.get());
    EXPECT_EQ(CRVToast::instance().toasts(), (std::vector<std::shared_ptr<CRVToastView>>{other}));

    CRVToast::dismissForView(elsewhere, false);
    EXPECT_EQ(other->superview(), nullptr);
    EXPECT_TRUE(CRVToast::instance().toasts().empty());

    // Its animation time refuses negative values.
    CRVToast::setAnimationDuration(0.5);
    CRVToast::setAnimationDuration(-1);
    auto slow = CRVToast::showMessage("Slow", 0, host(), 0.0, 0.0, nullptr, true);
    EXPECT_EQ(slow->animationTime, 0.5);
    CRVToast::dismissForView(host(), true);
    run(0.45);
    EXPECT_EQ(slow->superview(), host().get());
    run(0.1);
    EXPECT_EQ(slow->superview(), nullptr);
    CRVToast::setAnimationDuration(CR_DefaultAnimationTime);
}

TEST_F(ToastTest, AWidthChangeUnderAShownToastReportsItsRoomUntilItLeaves) {
    auto narrowHost = uikit::make<uikit::View>(uikit::Rect{0, 0, 200, 400});
    host()->addSubview(narrowHost);
    std::vector<std::pair<bool, double>> reports;
    std::string message;
    for (int i = 0; i < 12; ++i) message += "network ";
    auto toast = CRVToastView::initInView(narrowHost, {}, 0, message, std::nullopt, nullptr, 0, 0, 0.3,
                                          [&](bool visible, double height) { reports.emplace_back(visible, height); },
                                          true);
    toast->present(false);
    const double tall = toast->frame().height();
    ASSERT_GT(tall, 53);
    EXPECT_EQ(reports, (std::vector<std::pair<bool, double>>{{true, tall}}));

    // Wider, the strip shrinks inside the outer view, which keeps its height and is reported.
    narrowHost->setFrame({0, 0, 375, 400});
    window->layoutTree();
    EXPECT_LT(toast->toast()->frame().height(), tall);
    toast->setNeedsLayout();
    window->layoutTree();
    EXPECT_EQ(reports.back(), std::make_pair(true, tall));

    toast->dismiss(true);
    EXPECT_EQ(reports.back(), std::make_pair(false, 0.0));
    toast->setNeedsLayout();
    window->layoutTree();
    EXPECT_EQ(reports.back(), std::make_pair(false, 0.0));
    run(0.3);
    EXPECT_EQ(toast->superview(), nullptr);
}
