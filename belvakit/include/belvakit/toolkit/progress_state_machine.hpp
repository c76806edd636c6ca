#pragma once

#include "belvakit/toolkit/state_machine.hpp"
#include "uikit/view.hpp"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace belvakit {

enum class ProgressState { idle, running, waiting, finishing, restarting };
std::string_view toString(ProgressState state);

// One stretch of the bar: fill to `percentage` of the width over `duration`, then pause.
struct Step {
    double duration = 0;
    float percentage = 0;
    double stepWaitDuration = 0;
};

// The steps every screen runs while the send queue works: 0.3 in a second, then 0.7 in two.
const std::vector<Step>& sharedProgressSteps();

// What the progress machine needs of a view.
class ProgressView {
public:
    virtual ~ProgressView() = default;
    virtual bool isHidden() const = 0;
    virtual void setHidden(bool hidden) = 0;
    // The strip that fills; its parent's width is the full width.
    virtual std::shared_ptr<uikit::View> progressView() const = 0;
    virtual double alpha() const = 0;
    virtual void setAlpha(double alpha) = 0;
};

// Runs a progress strip in fixed steps that always promise more than has happened, and fills it
// only when told that the queue is done. Delays go through the main queue. Main thread.
class ProgressStateMachine final : public std::enable_shared_from_this<ProgressStateMachine> {
public:
    using StateType = ProgressState;

    static std::shared_ptr<ProgressStateMachine> make(std::weak_ptr<ProgressView> progressView);

    // Starts from idle, or restarts after the closing fill; false (and the steps dropped) otherwise.
    bool begin(std::vector<Step> steps);
    void queueCompleted();

    ProgressState state() const { return stateMachine.state(); }
    const std::vector<Step>& steps() const { return steps_; }

    ProgressState initialState() const { return ProgressState::idle; }
    bool shouldTransition(ProgressState from, ProgressState to);
    void didTransition(ProgressState from, ProgressState to);

    std::weak_ptr<ProgressView> progressView;
    StateMachine<ProgressStateMachine, ProgressState> stateMachine;

private:
    struct Tag {};

public:
    // Through `make`, which gives the machine itself as its delegate.
    ProgressStateMachine(Tag, std::weak_ptr<ProgressView> view);

private:
    void runStep();
    void setStripWidth(double fraction);
    double fullWidth() const;

    std::vector<Step> steps_;
    // Changes whenever the steps are replaced, so the end of a step of an earlier run touches nothing.
    std::uint64_t stepsGeneration_ = 0;
};

} // namespace belvakit
