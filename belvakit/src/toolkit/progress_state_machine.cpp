#include "belvakit/toolkit/progress_state_machine.hpp"

#include "corvane/core_logger.hpp"
#include "platform/main_queue.hpp"
#include "uikit/animation.hpp"

#include <string>

namespace belvakit {

namespace {

constexpr double fillDuration = 1.0;
constexpr double pauseBeforeIdle = 0.5;
constexpr double fadeDuration = 0.3;

void progressLog(const std::string& message) { corvane::CoreLogger::verbose("[PROGRESS] " + message); }

} // namespace

std::string_view toString(ProgressState state) {
    switch (state) {
    case ProgressState::idle: return "idle";
    case ProgressState::running: return "running";
    case ProgressState::waiting: return "waiting";
    case ProgressState::finishing: return "finishing";
    case ProgressState::restarting: return "restarting";
    }
    return "unknown";
}

const std::vector<Step>& sharedProgressSteps() {
    static const std::vector<Step> steps{{1.0, 0.3f, 0.1}, {2.0, 0.7f, 0.0}};
    return steps;
}

ProgressStateMachine::ProgressStateMachine(Tag, std::weak_ptr<ProgressView> view)
    : progressView(std::move(view)), stateMachine(*this) {}

std::shared_ptr<ProgressStateMachine> ProgressStateMachine::make(std::weak_ptr<ProgressView> progressView) {
    auto machine = std::make_shared<ProgressStateMachine>(Tag{}, std::move(progressView));
    machine->stateMachine.delegate = machine;
    return machine;
}

bool ProgressStateMachine::begin(std::vector<Step> steps) {
    progressLog("Begin called");
    switch (state()) {
    case ProgressState::idle:
        steps_ = std::move(steps);
        ++stepsGeneration_;
        stateMachine.setState(ProgressState::running);
        return true;
    case ProgressState::finishing:
        steps_ = std::move(steps);
        ++stepsGeneration_;
        stateMachine.setState(ProgressState::restarting);
        return true;
    default:
        return false;
    }
}

void ProgressStateMachine::queueCompleted() {
    progressLog("Queue completed");
    stateMachine.setState(ProgressState::finishing);
}

bool ProgressStateMachine::shouldTransition(ProgressState from, ProgressState to) {
    progressLog("Should transition from: " + std::string(toString(from)) + " to: " + std::string(toString(to)));
    using enum ProgressState;
    switch (from) {
    case idle: return to == running;
    case running: return to == running || to == waiting || to == finishing;
    case waiting: return to == finishing;
    case finishing: return to == idle || to == restarting;
    case restarting: return to == idle || to == finishing;
    }
    return false;
}

void ProgressStateMachine::didTransition(ProgressState from, ProgressState to) {
    progressLog("Did transition from: " + std::string(toString(from)) + " to: " + std::string(toString(to)));
    using enum ProgressState;
    const auto view = progressView.lock();
    const std::weak_ptr<ProgressStateMachine> weakSelf = weak_from_this();

    if (to == running) {
        if (from == idle && view) view->setHidden(false);
        runStep();
        return;
    }
    if (to == finishing && (from == running || from == waiting)) {
        uikit::Animation::animate(
            fillDuration, [this] { setStripWidth(1.0); },
            [weakSelf](bool) {
                platform::MainQueue::shared().asyncAfter(platform::seconds(pauseBeforeIdle), [weakSelf] {
                    if (auto self = weakSelf.lock()) self->stateMachine.setState(idle);
                });
            });
        return;
    }
    if (from == restarting && to == finishing) {
        steps_.clear();
        ++stepsGeneration_;
        return;
    }
    if (from == finishing && to == idle) {
        if (!view) return;
        uikit::Animation::animate(
            fadeDuration, [&view] { view->setAlpha(0.0); },
            [weakSelf](bool) {
                auto self = weakSelf.lock();
                auto faded = self ? self->progressView.lock() : nullptr;
                if (!faded) return;
                faded->setAlpha(1.0);
                // A run begun during the fade keeps its bar.
                if (self->state() != idle) return;
                faded->setHidden(true);
                self->setStripWidth(0.0);
            });
        return;
    }
    if (from == restarting && to == idle) {
        setStripWidth(0.0);
        platform::MainQueue::shared().async([weakSelf] {
            if (auto self = weakSelf.lock()) self->stateMachine.setState(running);
        });
    }
}

void ProgressStateMachine::runStep() {
    if (steps_.empty()) return;
    const Step step = steps_.front();
    const std::uint64_t generation = stepsGeneration_;
    const std::weak_ptr<ProgressStateMachine> weakSelf = weak_from_this();
    uikit::Animation::animate(
        step.duration,
        [this, &step] {
            if (step.percentage >= 0.0f && step.percentage <= 1.0f) setStripWidth(step.percentage);
        },
        [weakSelf, generation, wait = step.stepWaitDuration](bool) {
            platform::MainQueue::shared().asyncAfter(platform::seconds(wait), [weakSelf, generation] {
                auto self = weakSelf.lock();
                if (!self || self->stepsGeneration_ != generation || self->steps_.empty()) return;
                self->steps_.erase(self->steps_.begin());
                self->stateMachine.setState(self->steps_.empty() ? ProgressState::waiting : ProgressState::running);
            });
        });
}

double ProgressStateMachine::fullWidth() const {
    const auto view = progressView.lock();
    const auto strip = view ? view->progressView() : nullptr;
    const auto* container = strip ? strip->superview() : nullptr;
    return container ? container->frame().width() : 0.0;
}

void ProgressStateMachine::setStripWidth(double fraction) {
    const auto view = progressView.lock();
    const auto strip = view ? view->progressView() : nullptr;
    if (!strip) return;
    const uikit::Rect frame = strip->frame();
    strip->setFrame({frame.minX(), frame.minY(), fullWidth() * fraction, frame.height()});
}

} // namespace belvakit
