#pragma once

#include "belvakit/toolkit/toast_style.hpp"
#include "uikit/button.hpp"
#include "uikit/label.hpp"
#include "uikit/view.hpp"
#include "uikit/view_controller.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// The slide time of toasts that are given none; chosen here, as the platform gives no value.
inline constexpr double CR_DefaultAnimationTime = 0.3;

inline constexpr double CRVToastMinimumHeight = 53.0;

// A strip that slides down from the top of its host view inside a clipped outer view (this view),
// shows a message, and leaves after a time, on dismissal, or when its button is tapped. Made,
// presented and dismissed once. Main thread.
class CRVToastView final : public uikit::View {
public:
    // Told when the room the toast takes changes: visible or not, and the height.
    using AnimationBlock = std::function<void(bool visible, double height)>;
    using ButtonBlock = std::function<void()>;

    // Builds and lays out the toast in `view` at `y`; it does not present. A button exists exactly
    // when `buttonText` is given. Null without a host view.
    static std::shared_ptr<CRVToastView> initInView(const std::shared_ptr<uikit::View>& view,
                                                    const std::weak_ptr<uikit::ViewController>& viewController,
                                                    double y, const std::string& message,
                                                    const std::optional<std::string>& buttonText,
                                                    ButtonBlock buttonAction, CRVToastType type, double duration,
                                                    double animationTime, AnimationBlock animation, bool animateIn);

    void present(bool animated);
    void dismiss(bool animated) { dismiss(animated, nullptr); }
    // The completion runs once the toast has left; an animated dismissal of a toast whose host
    // view has no parent does nothing at all.
    void dismiss(bool animated, std::function<void()> completion);

    void layout();
    void layoutSubviews() override;

    const std::shared_ptr<uikit::View>& toast() const { return toast_; }
    // Never made: nothing is drawn under the strip.
    const std::shared_ptr<uikit::View>& lowerBorder() const { return lowerBorder_; }
    const std::shared_ptr<uikit::Label>& text() const { return text_; }
    const std::shared_ptr<uikit::Button>& button() const { return button_; }

    double animationTime = CR_DefaultAnimationTime;
    double durationInSeconds = 0;
    AnimationBlock animationBlock;
    ButtonBlock buttonBlock;
    std::weak_ptr<uikit::ViewController> viewController;
    CRVToastType type() const { return type_; }
    bool animateIn() const { return animateIn_; }

    // Seconds on the main queue's clock when the slide-in ended, for a timed toast; may be read on
    // any thread.
    std::optional<double> timePresented() const;

    void buttonPressed();

    explicit CRVToastView(uikit::Rect frame);

private:
    void build(const std::string& message, const std::optional<std::string>& buttonText);
    void startTimer();

    std::shared_ptr<uikit::View> toast_;
    std::shared_ptr<uikit::View> lowerBorder_;
    std::shared_ptr<uikit::Label> text_;
    std::shared_ptr<uikit::Button> button_;
    CRVToastType type_ = 0;
    bool animateIn_ = true;
    // Once leaving, a relayout no longer reports the toast as visible.
    bool leaving_ = false;
    std::atomic<double> timePresented_{-1};
};

} // namespace belvakit
