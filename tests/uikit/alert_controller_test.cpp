#include "test_support.hpp"
#include "uikit/alert_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace uikit;

namespace {

class AlertControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->setRootViewController(screen);
        window->makeKeyAndVisible();
    }
    std::vector<std::string> titlesOf(const AlertController& alert) {
        std::vector<std::string> titles;
        for (const auto& button : alert.buttons()) titles.push_back(button->accessibilityIdentifier());
        return titles;
    }
    testing_support::VirtualTime time;
    std::shared_ptr<Window> window = std::make_shared<Window>();
    std::shared_ptr<ViewController> screen = std::make_shared<ViewController>();
    std::vector<std::string> events;
};

TEST_F(AlertControllerTest, ATappedActionDismissesTheAlertAndThenRunsItsHandler) {
    auto alert = AlertController::alertController("Delete request?", "It cannot be undone.", AlertControllerStyle::alert);
    const auto note = [this](const char* name) {
        return [this, name](const AlertAction& action) {
            events.push_back(std::string(name) + " " + action.title + (screen->presentedViewController() ? " while shown" : " after dismissal"));
        };
    };
    alert->addAction({"Cancel", AlertActionStyle::cancel, note("handler"), true});
    alert->addAction({"Delete", AlertActionStyle::destructive, note("handler"), true});
    alert->addAction({"Archive", AlertActionStyle::defaultStyle, note("handler"), true});
    screen->presentViewController(alert, true);
    time.advance(platform::seconds(0.3));
    window->layoutTree();
    ASSERT_EQ(window->topViewController(), alert.get());
    EXPECT_EQ(visibleTexts(*alert->view()),
              (std::vector<std::string>{"Delete request?", "It cannot be undone.", "Cancel", "Delete", "Archive"}));
    // Cancel goes last among three; the buttons stack in that order.
    EXPECT_EQ(titlesOf(*alert), (std::vector<std::string>{"Delete", "Archive", "Cancel"}));
    const auto buttons = alert->buttons();
    EXPECT_LT(buttons[0]->convert(buttons[0]->bounds(), nullptr).minY(), buttons[2]->convert(buttons[2]->bounds(), nullptr).minY());

    auto* remove = findByIdentifier<Button>(*window, "Delete");
    ASSERT_NE(remove, nullptr);
    ASSERT_TRUE(tap(*remove));
    ASSERT_TRUE(tap(*findByIdentifier<Button>(*window, "Archive")));  // a second tap is too late
    EXPECT_TRUE(events.empty());
    time.advance(platform::seconds(0.3));
    EXPECT_EQ(events, (std::vector<std::string>{"handler Delete after dismissal"}));
    EXPECT_EQ(window->topViewController(), screen.get());
    EXPECT_EQ(findByIdentifier(*window, "Delete"), nullptr);
}

TEST_F(AlertControllerTest, TwoActionsSitSideBySideWithCancelFirst) {
    auto alert = AlertController::alertController("Title", "", AlertControllerStyle::alert);
    alert->addAction({"OK", AlertActionStyle::defaultStyle, {}, true});
    alert->addAction({"Cancel", AlertActionStyle::cancel, {}, true});
    screen->presentViewController(alert, false);
    window->layoutTree();
    EXPECT_EQ(titlesOf(*alert), (std::vector<std::string>{"Cancel", "OK"}));
    const auto buttons = alert->buttons();
    EXPECT_EQ(buttons[0]->frame().minY(), buttons[1]->frame().minY());
    EXPECT_LT(buttons[0]->frame().maxX(), buttons[1]->frame().minX());
    EXPECT_FALSE(isShown(*findByIdentifier(*alert->view(), "AlertMessage")));
}

TEST_F(AlertControllerTest, TextFieldsBelongToAlertsAndDisabledActionsWait) {
    auto alert = AlertController::alertController("Name", "", AlertControllerStyle::alert);
    alert->addTextField([](TextField& field) { field.setPlaceholder("Your name"); });
    alert->addAction({"Save", AlertActionStyle::defaultStyle,
                      [&](const AlertAction&) { events.push_back("saved " + alert->textFields()[0]->text()); }, false});
    screen->presentViewController(alert, false);
    window->layoutTree();
    ASSERT_EQ(alert->textFields().size(), 1u);
    EXPECT_EQ(alert->textFields()[0]->placeholder(), "Your name");
    tap(*findByIdentifier(*window, "Save"));
    EXPECT_EQ(window->topViewController(), alert.get());
    typeText(*alert->textFields()[0], "Ann");
    alert->setActionEnabled(0, true);
    tap(*findByIdentifier(*window, "Save"));
    time.advance(platform::seconds(0.3));
    EXPECT_EQ(events, (std::vector<std::string>{"saved Ann"}));

    testing_support::CapturedLog log;
    auto sheet = AlertController::alertController("", "", AlertControllerStyle::actionSheet);
    sheet->addTextField();
    EXPECT_TRUE(sheet->textFields().empty());
    EXPECT_EQ(log.messages(platform::LogLevel::error).size(), 1u);
}

TEST_F(AlertControllerTest, AnActionSheetSitsAtTheBottomAlsoAfterSlidingIn) {
    for (const bool animated : {false, true}) {
        auto sheet = AlertController::alertController("", "Choose", AlertControllerStyle::actionSheet);
        sheet->addAction({"Camera", AlertActionStyle::defaultStyle, {}, true});
        sheet->addAction({"Cancel", AlertActionStyle::cancel, {}, true});
        screen->presentViewController(sheet, animated);
        time.advance(platform::seconds(0.5));
        window->layoutTree();
        EXPECT_EQ(titlesOf(*sheet), (std::vector<std::string>{"Camera", "Cancel"}));
        const Rect cancel = sheet->buttons()[1]->convert(sheet->buttons()[1]->bounds(), nullptr);
        EXPECT_EQ(cancel.maxY(), 667 - 8) << (animated ? "animated" : "at once");
        screen->dismissViewController(false);
    }
}

TEST_F(AlertControllerTest, WithoutTitleOrMessageTheButtonsStartAtThePanelsTop) {
    for (const auto style : {AlertControllerStyle::actionSheet, AlertControllerStyle::alert}) {
        auto bare = AlertController::alertController("", "", style);
        bare->addAction({"Retry", AlertActionStyle::defaultStyle, {}, true});
        bare->addAction({"Delete", AlertActionStyle::destructive, {}, true});
        bare->addAction({"Cancel", AlertActionStyle::cancel, {}, true});
        screen->presentViewController(bare, false);
        window->layoutTree();
        const auto buttons = bare->buttons();
        ASSERT_EQ(buttons.size(), 3u);
        const View* panel = buttons[0]->superview();
        EXPECT_EQ(buttons[0]->frame().minY(), 0) << "an empty band above the first button";
        EXPECT_EQ(panel->frame().height(), buttons[2]->frame().maxY());
        EXPECT_LT(buttons[0]->frame().maxY(), buttons[1]->frame().minY()) << "no line between the buttons";
        screen->dismissViewController(false);

        // A message alone still gets its room above the buttons.
        auto headed = AlertController::alertController("", "Not sent", style);
        headed->addAction({"Retry", AlertActionStyle::defaultStyle, {}, true});
        screen->presentViewController(headed, false);
        window->layoutTree();
        const auto* message = findByIdentifier(*headed->view(), "AlertMessage");
        ASSERT_NE(message, nullptr);
        EXPECT_GE(headed->buttons()[0]->frame().minY(), message->frame().maxY() + 16);
        screen->dismissViewController(false);
    }
}

} // namespace
