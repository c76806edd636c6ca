// Screens: lifecycle, containment, presentation and navigation; input as a user gives it.
#include "platform/main_queue.hpp"
#include "platform/notification_center.hpp"
#include "test_support.hpp"
#include "uikit/button.hpp"
#include "uikit/probe.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/text_input.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace uikit;

namespace {

// Writes down each lifecycle call.
class Journal final : public ViewController {
public:
    Journal(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}
    void viewDidLoad() override { note("load"); }
    void viewWillAppear(bool) override { note("willAppear"); }
    void viewDidAppear(bool) override { note("didAppear"); }
    void viewWillDisappear(bool) override { note("willDisappear"); }
    void viewDidDisappear(bool) override { note("didDisappear"); }

private:
    void note(const std::string& what) { log_.push_back(name_ + "." + what); }
    std::string name_;
    std::vector<std::string>& log_;
};

void settle(testing_support::VirtualTime& time, double seconds) {
    time.advance(platform::seconds(seconds));
    while (platform::MainQueue::shared().runPending() > 0) {
    }
}

} // namespace

TEST(Screens, AppearPresentAndDismissInOrderWithCompletionsInVirtualTimeTakingDownWhatIsPresentedAbove) {
    testing_support::VirtualTime time;
    std::vector<std::string> log;
    auto window = std::make_shared<Window>();
    auto root = std::make_shared<Journal>("root", log);
    window->setRootViewController(root);
    EXPECT_EQ(log, (std::vector<std::string>{"root.load", "root.willAppear", "root.didAppear"}));
    EXPECT_EQ(root->view()->frame(), window->bounds());

    log.clear();
    auto modal = std::make_shared<Journal>("modal", log);
    bool presented = false;
    root->presentViewController(modal, true, [&] { presented = true; });
    EXPECT_EQ(window->topViewController(), modal.get());
    EXPECT_FALSE(presented);
    settle(time, 0.3);
    EXPECT_TRUE(presented);
    EXPECT_EQ(log, (std::vector<std::string>{"modal.load", "modal.willAppear", "modal.didAppear"}));
    EXPECT_EQ(modal->view()->frame(), window->bounds());

    // Asked of the presented screen, the dismissal goes to its presenter.
    log.clear();
    bool dismissed = false;
    modal->dismissViewController(true, [&] { dismissed = true; });
    settle(time, 0.3);
    EXPECT_TRUE(dismissed);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(modal->view()->superview(), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"modal.willDisappear", "modal.didDisappear"}));

    // Dismissing a presenter takes down every screen presented above it.
    auto middle = std::make_shared<Journal>("middle", log);
    auto upper = std::make_shared<Journal>("upper", log);
    root->presentViewController(middle, false);
    middle->presentViewController(upper, false);
    std::weak_ptr<ViewController> upperAlive = upper;
    log.clear();

    root->dismissViewController(true);
    middle.reset();
    upper.reset();
    settle(time, 0.3);
    // Nothing of the upper screen may stay in the window once nobody holds it.
    EXPECT_EQ(window->subviews().size(), 1u);
    EXPECT_TRUE(upperAlive.expired());
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"middle.willDisappear", "upper.willDisappear", "upper.didDisappear",
                                             "middle.didDisappear"}));
}

TEST(Screens, NavigationPushesAndPopsWithTheBarsBackButtonAndKeepsContentBelowTheBar) {
    std::vector<std::string> log;
    auto window = std::make_shared<Window>();
    auto first = std::make_shared<Journal>("first", log);
    first->setTitle("Inbox");
    auto navigation = std::make_shared<NavigationController>(first);
    window->setRootViewController(navigation);
    window->layoutTree();
    EXPECT_EQ(first->safeAreaInsets().top, 20 + NavigationBar::height);
    EXPECT_EQ(navigation->navigationBar()->titleLabel()->text(), "Inbox");

    log.clear();
    auto second = std::make_shared<Journal>("second", log);
    second->setTitle("Ticket");
    navigation->pushViewController(second, true);
    EXPECT_EQ(second->navigationController(), navigation.get());
    EXPECT_EQ(log, (std::vector<std::string>{"first.willDisappear", "first.didDisappear", "second.load",
                                             "second.willAppear", "second.didAppear"}));
    auto* back = findByIdentifier(*window, "BackButton");
    ASSERT_NE(back, nullptr);
    log.clear();
    EXPECT_TRUE(tap(*back));
    EXPECT_EQ(navigation->topViewController(), first.get());
    EXPECT_EQ(second->parentViewController(), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"second.willDisappear", "second.didDisappear", "first.willAppear",
                                             "first.didAppear"}));
    EXPECT_EQ(findByIdentifier(*window, "BackButton"), nullptr);

    navigation->setNavigationBarHidden(true);
    window->layoutTree();
    EXPECT_EQ(first->safeAreaInsets().top, 20);
}

// What a screen reads when it is told it appeared: its frames and insets are already laid out.
TEST(Screens, AScreenIsLaidOutBeforeItIsToldItAppeared) {
    class Reader final : public ViewController {
    public:
        void viewDidAppear(bool) override { topOnAppear = safeAreaInsets().top; }
        double topOnAppear = -1;
    };
    auto window = std::make_shared<Window>();
    auto root = std::make_shared<Reader>();
    window->setRootViewController(std::make_shared<NavigationController>(root));
    EXPECT_EQ(root->topOnAppear, 20 + NavigationBar::height);
    auto pushed = std::make_shared<Reader>();
    root->navigationController()->pushViewController(pushed, false);
    EXPECT_EQ(pushed->topOnAppear, 20 + NavigationBar::height);
}

TEST(Input, TapsReachTheViewUnderThemAndTypingGoesThroughTheFirstResponder) {
    auto window = std::make_shared<Window>();
    auto screen = std::make_shared<ViewController>();
    window->setRootViewController(screen);
    auto button = make<Button>(ButtonType::system, Rect(10, 100, 100, 44));
    button->setTitle("Send");
    int sent = 0;
    button->addTarget(ControlEvent::touchUpInside, [&] { ++sent; });
    auto cover = make<View>(Rect(60, 100, 100, 44));  // over the button's right half
    int covered = 0;
    cover->addTapAction([&] { ++covered; });
    screen->view()->addSubview(button);
    screen->view()->addSubview(cover);
    EXPECT_TRUE(tapAt(*window, {20, 110}));
    EXPECT_TRUE(tapAt(*window, {80, 110}));
    EXPECT_EQ(sent, 1);
    EXPECT_EQ(covered, 1);
    button->setEnabled(false);
    EXPECT_FALSE(tap(*button));
    EXPECT_EQ(sent, 1);
    EXPECT_FALSE(tapAt(*window, {300, 600})) << "nothing there takes a tap";

    std::vector<KeyboardInfo> shown;
    auto observer = platform::NotificationCenter::defaultCenter().addObserver(
        keyboardWillShowNotification, nullptr,
        [&](const platform::Notification& note) { shown.push_back(std::any_cast<KeyboardInfo>(note.userInfo)); });
    auto field = make<TextField>(Rect(10, 200, 200, 30));
    field->setPlaceholder("Name");
    field->shouldChangeText = [](const std::string& next) { return next.size() <= 5; };
    int changes = 0;
    field->didChange = [&] { ++changes; };
    screen->view()->addSubview(field);
    typeText(*field, "Ada Lovelace");
    EXPECT_EQ(field->text(), "Ada L");
    EXPECT_EQ(changes, 5);
    EXPECT_TRUE(field->isFirstResponder());
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].endFrame.minY(), window->bounds().height() - 216);
    field->insertText("\b\b");
    EXPECT_EQ(field->text(), "Ada");
    // A character of several bytes is one change, and one backspace takes it whole.
    std::vector<std::string> seen;
    field->shouldChangeText = [&](const std::string& next) {
        seen.push_back(next);
        return true;
    };
    field->insertText("\xC3\xA9");  // é
    EXPECT_EQ(seen, std::vector<std::string>{"Ada\xC3\xA9"});
    field->deleteBackward();
    EXPECT_EQ(field->text(), "Ada");
    EXPECT_EQ(visibleTexts(*window), (std::vector<std::string>{"Send", "Ada"}));
    // A button's looks follow its state at the next layout.
    button->setTitle("Sending", ControlState::disabled);
    button->setEnabled(true);
    window->layoutTree();
    EXPECT_EQ(button->titleLabel()->text(), "Send");
    button->setEnabled(false);
    window->layoutTree();
    EXPECT_EQ(button->titleLabel()->text(), "Sending");

    // A first responder that leaves the window takes the keyboard with it.
    field->removeFromSuperview();
    EXPECT_EQ(window->firstResponder(), nullptr);
    EXPECT_EQ(window->keyboardHeight(), 0);
}
