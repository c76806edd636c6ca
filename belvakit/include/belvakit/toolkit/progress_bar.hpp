#pragma once

#include "belvakit/toolkit/progress_state_machine.hpp"
#include "platform/color.hpp"
#include "uikit/view.hpp"

#include <memory>

namespace belvakit {

// The thin bar across the top of a screen while the send queue works. Its strip takes the tint
// colour of the appearance proxy ("ProgressBar", "tintColor"), blue without one. It starts hidden,
// and follows its container's width. Main thread.
class ProgressBar final : public uikit::View, public ProgressView {
public:
    static constexpr double defaultHeight = 3.0;
    static platform::Color defaultTintColor() { return platform::Color::fromRGB(0, 122, 255); }

    static std::shared_ptr<ProgressBar> make(uikit::Rect frame = {0, 0, 0, defaultHeight});
    std::string_view className() const override { return "ProgressBar"; }

    // The view whose width the bar keeps; the bar goes into it when it has no parent yet.
    void setContainerView(const std::shared_ptr<uikit::View>& container);
    std::shared_ptr<uikit::View> containerView() const { return containerView_.lock(); }
    const std::shared_ptr<ProgressStateMachine>& stateMachine() const { return stateMachine_; }

    bool isHidden() const override { return uikit::View::isHidden(); }
    void setHidden(bool hidden) override { uikit::View::setHidden(hidden); }
    std::shared_ptr<uikit::View> progressView() const override { return progressView_; }
    double alpha() const override { return uikit::View::alpha(); }
    void setAlpha(double alpha) override { uikit::View::setAlpha(alpha); }

    void layoutSubviews() override;

private:
    struct Tag {};

public:
    ProgressBar(Tag, uikit::Rect frame);

private:
    void followContainer();

    std::shared_ptr<uikit::View> progressView_;
    std::weak_ptr<uikit::View> containerView_;
    std::shared_ptr<ProgressStateMachine> stateMachine_;
    double laidOutWidth_ = 0;
};

} // namespace belvakit
