#include "belvakit/toolkit/progress_bar.hpp"

#include "uikit/appearance.hpp"

namespace belvakit {

ProgressBar::ProgressBar(Tag, uikit::Rect frame) : uikit::View(frame) {
    progressView_ = uikit::make<uikit::View>(uikit::Rect{0, 0, 0, frame.height()});
    progressView_->setAutoresizingMask(uikit::Autoresizing::flexibleHeight);
    progressView_->setBackgroundColor(
        uikit::Appearance::value<platform::Color>("ProgressBar", "tintColor").value_or(defaultTintColor()));
    addSubview(progressView_);
    uikit::View::setHidden(true);
    laidOutWidth_ = frame.width();
}

std::shared_ptr<ProgressBar> ProgressBar::make(uikit::Rect frame) {
    auto bar = std::make_shared<ProgressBar>(Tag{}, frame);
    bar->stateMachine_ = ProgressStateMachine::make(std::static_pointer_cast<ProgressView>(bar));
    return bar;
}

void ProgressBar::setContainerView(const std::shared_ptr<uikit::View>& container) {
    containerView_ = container;
    if (!container) return;
    if (!superview()) container->addSubview(shared_from_this());
    // Inside its container the width follows by resizing; elsewhere at each layout.
    if (superview() == container.get()) setAutoresizingMask(uikit::Autoresizing::flexibleWidth);
    followContainer();
}

void ProgressBar::layoutSubviews() {
    uikit::View::layoutSubviews();
    followContainer();
}

void ProgressBar::followContainer() {
    if (const auto container = containerView_.lock()) {
        const uikit::Rect frame = this->frame();
        if (frame.width() != container->frame().width())
            setFrame({frame.minX(), frame.minY(), container->frame().width(), frame.height()});
    }
    // The strip keeps the share of the width it has reached.
    const double width = frame().width();
    if (laidOutWidth_ > 0 && width != laidOutWidth_) {
        const uikit::Rect strip = progressView_->frame();
        progressView_->setFrame({strip.minX(), strip.minY(), strip.width() * width / laidOutWidth_, strip.height()});
    }
    laidOutWidth_ = width;
}

} // namespace belvakit
