#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/state_machine.hpp"
#include "toolkit_fixture.hpp"
#include "uikit/animation.hpp"
#include "uikit/appearance.hpp"

#include <algorithm>

using namespace belvakit;
using enum ProgressState;

namespace {

class ProgressTest : public toolkit_testing::ScreenTest {
protected:
    void SetUp() override {
        ScreenTest::SetUp();
        container = uikit::make<uikit::View>(uikit::Rect{0, 0, 300, 44});
        screen->view()->addSubview(container);
        bar = ProgressBar::make();
        bar->setContainerView(container);
        machine = bar->stateMachine();
    }

    double stripWidth() const { return bar->progressView()->frame().width(); }
    std::vector<std::string> progressLogs() const {
        auto lines = log.messages(platform::LogLevel::verbose);
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("[PROGRESS] "); });
        return lines;
    }
    bool logged(const std::string& line) const { return log.contains(platform::LogLevel::verbose, line); }

    std::shared_ptr<uikit::View> container;
    std::shared_ptr<ProgressBar> bar;
    std::shared_ptr<ProgressStateMachine> machine;
};

} // namespace

TEST_F(ProgressTest, ASendFillsInStepsStopsAtSevenTenthsAndFinishesOnlyWhenTheQueueIsDone) {
    EXPECT_TRUE(bar->isHidden());
    EXPECT_EQ(bar->frame().width(), 300);
    ASSERT_TRUE(machine->begin(sharedProgressSteps()));
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Begin called",
                                                        "[PROGRESS] Should transition from: idle to: running",
                                                        "[PROGRESS] Did transition from: idle to: running"}));
    EXPECT_FALSE(bar->isHidden());
    EXPECT_NEAR(stripWidth(), 90, 1e-3);
    EXPECT_TRUE(bar->progressView()->isAnimating(uikit::Animation::now()));

    // A second send does not restart the bar.
    log.clear();
    EXPECT_FALSE(machine->begin({{5.0, 1.0f, 0.0}}));
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Begin called"}));
    EXPECT_EQ(machine->steps().size(), 2u);

    run(1.05);
    EXPECT_EQ(machine->steps().size(), 2u);  // still in the step's pause
    run(0.05);
    EXPECT_EQ(machine->steps().size(), 1u);
    EXPECT_TRUE(logged("[PROGRESS] Did transition from: running to: running"));
    EXPECT_NEAR(stripWidth(), 210, 1e-3);

    run(60);
    EXPECT_EQ(machine->state(), waiting);
    EXPECT_NEAR(stripWidth(), 210, 1e-3);
    EXPECT_FALSE(bar->isHidden());

    log.clear();
    machine->queueCompleted();
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Queue completed",
                                                        "[PROGRESS] Should transition from: waiting to: finishing",
                                                        "[PROGRESS] Did transition from: waiting to: finishing"}));
    EXPECT_EQ(stripWidth(), 300);
    run(1.45);
    EXPECT_EQ(machine->state(), finishing);
    run(0.05);
    EXPECT_EQ(machine->state(), idle);
    EXPECT_EQ(bar->alpha(), 0.0);  // fading
    run(0.3);
    EXPECT_TRUE(bar->isHidden());
    EXPECT_EQ(bar->alpha(), 1.0);
    EXPECT_EQ(stripWidth(), 0);
}

TEST_F(ProgressTest, QueueCompletedWhileIdleIsRefusedAndShowsNothing) {
    machine->queueCompleted();
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Queue completed",
                                                        "[PROGRESS] Should transition from: idle to: finishing"}));
    run(5);
    EXPECT_EQ(machine->state(), idle);
    EXPECT_TRUE(bar->isHidden());
    EXPECT_EQ(stripWidth(), 0);
}

TEST_F(ProgressTest, QueueCompletedDuringTheFirstStepFillsAtOnceAndTheStepsEndIsRefused) {
    machine->begin(sharedProgressSteps());
    run(0.5);
    machine->queueCompleted();
    EXPECT_EQ(machine->state(), finishing);
    EXPECT_EQ(stripWidth(), 300);
    log.clear();
    run(0.6);  // step one ends at 1.0 and pauses 0.1
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Should transition from: finishing to: running"}));
    run(0.9);  // the fill ends at 1.5, then half a second
    EXPECT_EQ(machine->state(), idle);
    run(0.3);
    EXPECT_TRUE(bar->isHidden());
}

TEST_F(ProgressTest, BeginDuringTheClosingFillRestartsFromZeroWithAllTheNewSteps) {
    machine->begin(sharedProgressSteps());
    run(0.5);
    machine->queueCompleted();  // fill from 0.5 to 1.5, idle at 2.0
    run(0.2);
    log.clear();
    // Before the first run's step has ended: that end must not eat a step of the new run.
    ASSERT_TRUE(machine->begin(sharedProgressSteps()));
    EXPECT_EQ(machine->state(), restarting);
    EXPECT_EQ(progressLogs(), (std::vector<std::string>{"[PROGRESS] Begin called",
                                                        "[PROGRESS] Should transition from: finishing to: restarting",
                                                        "[PROGRESS] Did transition from: finishing to: restarting"}));
    run(1.25);  // t = 1.95
    EXPECT_EQ(machine->state(), restarting);
    EXPECT_EQ(machine->steps().size(), 2u);
    run(0.05);  // t = 2.0: to idle with the strip at zero, then straight on to running
    EXPECT_TRUE(logged("[PROGRESS] Did transition from: restarting to: idle"));
    EXPECT_TRUE(logged("[PROGRESS] Did transition from: idle to: running"));
    EXPECT_EQ(machine->state(), running);
    EXPECT_NEAR(stripWidth(), 90, 1e-3);
    EXPECT_FALSE(bar->isHidden());
    run(1.1);
    EXPECT_EQ(machine->steps().size(), 1u);
    run(2.0);
    EXPECT_EQ(machine->state(), waiting);
    EXPECT_NEAR(stripWidth(), 210, 1e-3);
}

TEST_F(ProgressTest, QueueCompletedWhileRestartingForgetsTheNewSteps) {
    machine->begin(sharedProgressSteps());
    machine->queueCompleted();  // fill ends at 1.0, idle at 1.5
    machine->begin(sharedProgressSteps());
    machine->queueCompleted();
    EXPECT_EQ(machine->state(), finishing);
    EXPECT_TRUE(machine->steps().empty());
    run(1.5);
    EXPECT_EQ(machine->state(), idle);
    run(0.3);
    EXPECT_TRUE(bar->isHidden());
    EXPECT_EQ(stripWidth(), 0);
}

TEST_F(ProgressTest, ABeginDuringTheFadeKeepsItsBar) {
    machine->begin(sharedProgressSteps());
    machine->queueCompleted();
    run(1.5);
    ASSERT_EQ(machine->state(), idle);
    run(0.1);
    ASSERT_TRUE(machine->begin(sharedProgressSteps()));
    run(0.3);
    EXPECT_FALSE(bar->isHidden());
    EXPECT_EQ(bar->alpha(), 1.0);
    EXPECT_NEAR(stripWidth(), 90, 1e-3);
}

TEST_F(ProgressTest, AStepOutsideZeroToOneLeavesTheStripButStillRuns) {
    machine->begin({{1.0, 1.5f, 0.0}, {1.0, -0.2f, 0.0}, {1.0, 0.5f, 0.0}});
    EXPECT_EQ(stripWidth(), 0);
    run(1.95);
    EXPECT_EQ(stripWidth(), 0);
    EXPECT_EQ(machine->steps().size(), 2u);
    run(1.05);
    EXPECT_EQ(machine->steps().size(), 0u);
    EXPECT_EQ(stripWidth(), 150);
    EXPECT_EQ(machine->state(), waiting);
}

TEST_F(ProgressTest, TheBarFollowsItsContainersWidthAndTakesTheAppearanceTint) {
    EXPECT_EQ(bar->progressView()->backgroundColor(), ProgressBar::defaultTintColor());
    machine->begin(sharedProgressSteps());
    container->setFrame({0, 0, 600, 44});
    window->layoutTree();
    EXPECT_EQ(bar->frame().width(), 600);
    EXPECT_NEAR(stripWidth(), 180, 1e-3);  // keeps its share

    const platform::Color green{0, 1, 0, 1};
    uikit::Appearance::set("ProgressBar", "tintColor", green);
    EXPECT_EQ(ProgressBar::make()->progressView()->backgroundColor(), green);
    uikit::Appearance::reset();
}

namespace {

// Two states, a gate that only lets "on" follow "off", and a record of what it was told.
struct Switch {
    using StateType = int;
    std::vector<std::pair<int, int>> asked;
    std::vector<std::pair<int, int>> told;
    bool shouldTransition(int from, int to) {
        asked.emplace_back(from, to);
        return from == 0 && to == 1;
    }
    void didTransition(int from, int to) { told.emplace_back(from, to); }
    int initialState() const { return 0; }
};

} // namespace

TEST(StateMachine, ChangesOnlyWhenItsDelegateAllowsAndTellsItOfEachChange) {
    auto gate = std::make_shared<Switch>();
    StateMachine<Switch> machine(*gate);
    machine.setState(1);
    EXPECT_EQ(machine.state(), 0);  // no delegate: nothing changes

    machine.delegate = gate;
    machine.setState(1);
    machine.setState(0);
    machine.setState(1);
    EXPECT_EQ(machine.state(), 1);
    EXPECT_EQ(gate->asked, (std::vector<std::pair<int, int>>{{0, 1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(gate->told, (std::vector<std::pair<int, int>>{{0, 1}}));
}
