#include "container_fixture.hpp"

#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"
#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "belvakit/entry/Coordinator/help_center_contact_us_router.hpp"
#include "belvakit/entry/request_ui.hpp"
#include "quorvel/engine.hpp"

#include <vector>

using namespace belvakit;
using container_testing::ContainerTest;
using container_testing::standIn;
using platform::LogLevel;

namespace {

// A child that counts what it was told.
class CountingScreen final : public uikit::ViewController {
public:
    void viewWillAppear(bool) override { ++appeared; }
    void viewDidDisappear(bool) override { ++disappeared; }
    int appeared = 0;
    int disappeared = 0;
};

// A coordinator that answers when the test says.
class HeldCoordinator final : public CRVCoordinator {
public:
    void start(Present present, const uikit::ViewController::Ptr&) override {
        ++starts;
        held.push_back(std::move(present));
    }
    std::vector<Present> held;
    int starts = 0;
};

class NamedEngine final : public quorvel::Engine {
public:
    const std::string& id() const override { return id_; }
    const quorvel::TransferOptionDescription& transferOptionDescription() const override { return description_; }
    void start(const quorvel::QuorvelAPI&) override {}
    void stop() override {}
    bool isConversationOngoing() const override { return false; }
    void onEvent(const quorvel::Event&) override {}

private:
    std::string id_ = "answer-bot";
    quorvel::TransferOptionDescription description_{"answer-bot", "Answer Bot"};
};

TEST_F(ContainerTest, SwappingTheActiveChildTwiceLeavesOneChildThatHeardItsAppearance) {
    auto container = std::make_shared<ContainerViewController>();
    push(container);
    auto first = std::make_shared<CountingScreen>();
    auto second = std::make_shared<CountingScreen>();
    container->setActiveController(first);
    container->setActiveController(second);
    container->setActiveController(second);

    ASSERT_EQ(container->childViewControllers().size(), 1u);
    EXPECT_EQ(container->childViewControllers()[0], second);
    EXPECT_EQ(first->parentViewController(), nullptr);
    EXPECT_EQ(first->view()->superview(), nullptr);
    EXPECT_EQ(first->appeared, 1);
    EXPECT_EQ(first->disappeared, 1);
    EXPECT_EQ(second->appeared, 1);
    EXPECT_EQ(second->view()->superview(), container->view().get());
    EXPECT_EQ(second->view()->frame(), container->view()->bounds());

    // A child set before the container shows hears of its appearance with the container.
    auto hidden = std::make_shared<ContainerViewController>();
    auto waiting = std::make_shared<CountingScreen>();
    hidden->setActiveController(waiting);
    EXPECT_EQ(waiting->appeared, 0);
    push(hidden);
    EXPECT_EQ(waiting->appeared, 1);
}

TEST_F(ContainerTest, EachAppearanceAsksTheCoordinatorAndItsLatestAnswerIsTheOneChild) {
    auto coordinator = std::make_shared<HeldCoordinator>();
    auto coordinating = std::make_shared<CoordinatingViewController>(coordinator);
    push(coordinating);
    EXPECT_TRUE(coordinating->spinner->isAnimating());
    EXPECT_EQ(coordinator->starts, 1);
    const auto comeBack = [&] {
        push(std::make_shared<uikit::ViewController>());
        navigation->popViewController(false);
        run(0.1);
    };

    // Leaving and coming back while the coordinator works asks it again.
    comeBack();
    ASSERT_EQ(coordinator->starts, 2);
    // The first answer, late, still replaces the spinner; the spinner turns on for the second.
    auto first = standIn("My requests");
    first->navigationItem().rightBarButtonItem = std::make_shared<uikit::BarButtonItem>();
    coordinator->held[0](first);
    EXPECT_EQ(coordinating->activeController(), first);
    EXPECT_EQ(coordinating->title(), "My requests");
    EXPECT_EQ(coordinating->navigationItem().rightBarButtonItem, first->navigationItem().rightBarButtonItem);
    EXPECT_TRUE(coordinating->isStarting());
    auto second = standIn("My requests");
    coordinator->held[1](second);
    EXPECT_FALSE(coordinating->spinner->isAnimating());
    EXPECT_FALSE(coordinating->isStarting());
    EXPECT_EQ(coordinating->activeController(), second);
    ASSERT_EQ(coordinating->childViewControllers().size(), 1u);
    EXPECT_EQ(first->parentViewController(), nullptr);

    // Back on view twice: the newer answer stands even when the older one comes after it.
    comeBack();
    comeBack();
    ASSERT_EQ(coordinator->starts, 4);
    auto newest = standIn("newest");
    coordinator->held[3](newest);
    coordinator->held[2](standIn("stale"));
    EXPECT_EQ(coordinating->activeController(), newest);
    EXPECT_FALSE(coordinating->spinner->isAnimating());

    // A coordinator that names the same screen again keeps it, once.
    comeBack();
    coordinator->held[4](newest);
    EXPECT_EQ(coordinating->activeController(), newest);
    ASSERT_EQ(coordinating->childViewControllers().size(), 1u);
    EXPECT_EQ(newest->view()->superview(), coordinating->view().get());
}

TEST_F(ContainerTest, TheRequestCoordinatorBuildsTheListAfterTheConversationsSetting) {
    std::vector<mirrowset::ConfigurationList> built;
    auto builder = [&](const mirrowset::ConfigurationList& configurations) {
        built.push_back(configurations);
        return standIn("list");
    };
    auto configuration = std::make_shared<RequestUiConfiguration>();
    std::vector<uikit::ViewController::Ptr> presented;
    auto present = [&](uikit::ViewController::Ptr screen) { presented.push_back(std::move(screen)); };

    // No core: at once.
    RequestCoordinator({configuration}, builder).start(present, root);
    ASSERT_EQ(presented.size(), 1u);

    // With the help desk: once the setting arrives on the main queue, even when it fails.
    startCore(corvane::Identity::createAnonymous());
    for (const bool failing : {false, true}) {
        desk->conversationsSettings()->setFailing(failing);
        const auto before = presented.size();
        RequestCoordinator({configuration}, builder).start(present, root);
        EXPECT_EQ(presented.size(), before) << "the list waits for the setting";
        run(0.1);
        ASSERT_EQ(presented.size(), before + 1);
        EXPECT_EQ(presented.back()->view()->accessibilityIdentifier(), "list");
    }
    ASSERT_EQ(built.size(), 3u);
    for (const auto& configurations : built) EXPECT_EQ(configurations, mirrowset::ConfigurationList{configuration});
}

TEST_F(ContainerTest, TheContactRouterLeadsToTheListOrToTheMessagingScreen) {
    const auto screen = standIn("help center");
    push(screen);

    HelpCenterContactUsRouter({}, screen, {}).decideButtonActionForNavBar();
    EXPECT_TRUE(logged(LogLevel::debug, "Presenting Request List UI"));
    EXPECT_NE(dynamic_cast<CoordinatingViewController*>(navigation->topViewController()), nullptr);
    navigation->popViewController(false);

    EngineList engines{std::make_shared<NamedEngine>()};
    std::vector<EngineList> handed;
    HelpCenterContactUsRouter::setMessagingScreenBuilder(
        [&](const EngineList& given, const mirrowset::ConfigurationList&) {
            handed.push_back(given);
            return standIn("messaging");
        });
    HelpCenterContactUsRouter({}, screen, engines).decideButtonActionForEmptySearch();
    EXPECT_TRUE(logged(LogLevel::debug, "Presenting Messaging screen"));
    ASSERT_EQ(handed.size(), 1u);
    EXPECT_EQ(handed[0], engines);
    EXPECT_EQ(navigation->topViewController()->view()->accessibilityIdentifier(), "messaging");

    // Without a navigation stack it comes in a navigation of its own.
    auto standalone = standIn("alone");
    window->setRootViewController(standalone);
    HelpCenterContactUsRouter({}, standalone, engines).decideButtonActionForNavBar();
    auto* presented = dynamic_cast<uikit::NavigationController*>(standalone->presentedViewController().get());
    ASSERT_NE(presented, nullptr);
    EXPECT_EQ(presented->topViewController()->view()->accessibilityIdentifier(), "messaging");

    // Without an installed messaging screen nothing opens.
    HelpCenterContactUsRouter::setMessagingScreenBuilder(nullptr);
    standalone->dismissViewController(false);
    HelpCenterContactUsRouter({}, standalone, engines).decideButtonActionForNavBar();
    EXPECT_EQ(standalone->presentedViewController(), nullptr);
}

TEST_F(ContainerTest, DismissHelpersKnowPushedScreensAndLeaveTheWayTheyCame) {
    auto middle = standIn("middle");
    auto top = standIn("top");
    push(middle);
    push(top);
    EXPECT_TRUE(DismissUtil::navigationController(*navigation, *top));
    EXPECT_FALSE(DismissUtil::navigationController(*navigation, *root));
    EXPECT_EQ(DismissUtil::barButtonFor(*top, navigation.get(), [] {}), nullptr);
    bool cancelled = false;
    auto cancel = DismissUtil::barButtonFor(*root, navigation.get(), [&] { cancelled = true; });
    ASSERT_TRUE(cancel);
    EXPECT_EQ(cancel->title, "Cancel");
    cancel->action();
    EXPECT_TRUE(cancelled);

    DismissUtil::remove(*middle, *navigation);
    EXPECT_EQ(navigation->viewControllers(), (std::vector<uikit::ViewController::Ptr>{root, top}));
    DismissUtil::popOrDismiss(*top, false);
    EXPECT_EQ(navigation->viewControllers(), (std::vector<uikit::ViewController::Ptr>{root}));

    // A screen inside a container inside a presented navigation: the presented one goes.
    auto container = std::make_shared<ContainerViewController>();
    auto child = standIn("child");
    container->setActiveController(child);
    root->presentViewController(std::make_shared<uikit::NavigationController>(container), false);
    DismissUtil::popOrDismiss(*child, false);
    EXPECT_EQ(root->presentedViewController(), nullptr);
}

TEST_F(ContainerTest, TheFactoriesWorkWithAndWithoutACoreObject) {
    // Without a core: no cache, and the container ends the flow when it appears.
    auto alone = RequestUi::buildRequestUi("9");
    EXPECT_EQ(alone->ticketsCache, nullptr);
    EXPECT_EQ(alone->state.requestId, "9");
    ASSERT_TRUE(alone->state.configs);
    EXPECT_TRUE(alone->state.configs->configuration<RequestUiConfiguration>()) << "a default configuration is added";
    push(alone);
    EXPECT_TRUE(logged(LogLevel::error, "No identity set. Dismissing Request creation"));
    EXPECT_EQ(navigation->topViewController(), root.get());

    startCore(corvane::Identity::createAnonymous());
    auto plain = RequestUi::buildRequestUi("9");
    auto listed = RequestUi::buildRequestUi("9", {});
    EXPECT_EQ(plain->state, listed->state);
    ASSERT_NE(plain->ticketsCache, nullptr);
    EXPECT_EQ(RequestUi::buildRequestUi()->state.requestId, std::nullopt);

    auto configuration = std::make_shared<RequestUiConfiguration>();
    auto list = RequestUi::buildRequestList({configuration});
    auto* coordinator = dynamic_cast<RequestCoordinator*>(list->coordinator.get());
    ASSERT_NE(coordinator, nullptr);
    EXPECT_EQ(coordinator->uiConfigurations, mirrowset::ConfigurationList{configuration});
}

} // namespace
