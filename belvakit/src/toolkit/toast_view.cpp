#include "belvakit/toolkit/toast_view.hpp"

#include "platform/main_queue.hpp"
#include "uikit/animation.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

constexpr double textPadding = 20.0;
constexpr double buttonPadding = 20.0;
constexpr double minimumButtonHeight = 32.0;

double screenScale(const uikit::View& view) {
    if (const auto* window = view.window()) return window->environment().scale;
    if (const auto* window = uikit::Window::keyWindow()) return window->environment().scale;
    return uikit::Environment{}.scale;
}

platform::Font fontNamed(const std::string& name, double size) {
    if (auto font = platform::Font::named(name, size)) return *font;
    return platform::Font::systemFont(size);
}

} // namespace

CRVToastView::CRVToastView(uikit::Rect frame) : uikit::View(frame) {}

std::shared_ptr<CRVToastView> CRVToastView::initInView(const std::shared_ptr<uikit::View>& view,
                                                       const std::weak_ptr<uikit::ViewController>& viewController,
                                                       double y, const std::string& message,
                                                       const std::optional<std::string>& buttonText,
                                                       ButtonBlock buttonAction, CRVToastType type, double duration,
                                                       double animationTime, AnimationBlock animation,
                                                       bool animateIn) {
    if (!view) return nullptr;
    auto toast = uikit::make<CRVToastView>(uikit::Rect{0, y, view->frame().width(), 0});
    toast->viewController = viewController;
    toast->type_ = type;
    toast->durationInSeconds = duration;
    toast->animationTime = animationTime;
    toast->animationBlock = std::move(animation);
    toast->buttonBlock = std::move(buttonAction);
    toast->animateIn_ = animateIn;
    toast->setClipsToBounds(true);
    toast->setAutoresizingMask(uikit::Autoresizing::flexibleWidth);
    toast->setBackgroundColor(platform::Color::clear());
    view->addSubview(toast);
    toast->build(message, buttonText);
    return toast;
}

void CRVToastView::build(const std::string& message, const std::optional<std::string>& buttonText) {
    const double width = frame().width();
    toast_ = uikit::make<uikit::View>(uikit::Rect{0, -CRVToastMinimumHeight, width, CRVToastMinimumHeight});
    toast_->setBackgroundColor(CRVToastStyle::color(type_, CRVToastStyleKeys::background));
    addSubview(toast_);

    if (buttonText) {
        button_ = uikit::make<uikit::Button>(uikit::ButtonType::system);
        button_->setAccessibilityIdentifier("CRVtoastRetryButton");
        std::weak_ptr<uikit::View> weakSelf = weak_from_this();
        button_->addTarget(uikit::ControlEvent::touchUpInside, [weakSelf] {
            if (auto self = std::static_pointer_cast<CRVToastView>(weakSelf.lock())) self->buttonPressed();
        });
        button_->setBackgroundColor(CRVToastStyle::color(type_, CRVToastStyleKeys::buttonBackground));
        button_->setCornerRadius(5.0);
        button_->setBorderWidth(screenScale(*this) == 1.0 ? 1.0 : 0.5);
        button_->setBorderColor(CRVToastStyle::color(type_, CRVToastStyleKeys::buttonBorder));
        button_->setTitle(*buttonText);
        button_->setTitleColor(CRVToastStyle::color(type_, CRVToastStyleKeys::buttonTitle));
        button_->titleLabel()->setFont(fontNamed(CRVToastStyle::fontName(type_, CRVToastStyleKeys::buttonFontName),
                                                 CRVToastStyle::number(type_, CRVToastStyleKeys::buttonFontSize)));
        toast_->addSubview(button_);
    }

    text_ = uikit::make<uikit::Label>();
    text_->setBackgroundColor(platform::Color::clear());
    text_->setTextColor(CRVToastStyle::color(type_, CRVToastStyleKeys::text));
    text_->setFont(platform::Font::boldSystemFont(CRVToastStyle::number(type_, CRVToastStyleKeys::textFontSize)));
    text_->setNumberOfLines(0);
    text_->setAccessibilityIdentifier("CRVtoastRetryMessage");
    text_->setTextAlignment(button_ ? uikit::TextAlignment::left : uikit::TextAlignment::center);
    text_->setText(message);
    toast_->addSubview(text_);

    layout();
}

void CRVToastView::layoutSubviews() {
    uikit::View::layoutSubviews();
    layout();
}

void CRVToastView::layout() {
    if (!toast_ || !text_) return;
    const double width = frame().width();
    const double outerOnEntry = frame().height();
    const double stripOnEntry = toast_->frame().height();

    const double margin = std::max(20.0, std::ceil(width * 0.05));
    double buttonWidth = 0;
    double buttonHeight = 0;
    if (button_) {
        const uikit::Size fitted = button_->sizeThatFits({100.0, 100.0});
        buttonWidth = fitted.width + buttonPadding;
        buttonHeight = fitted.height;
    }
    // A host too narrow for the margins gives the text no width rather than a negative one.
    const double textWidth =
        std::max(0.0, std::ceil(button_ ? width - 3 * margin - buttonWidth : width - 2 * margin));
    const double textHeight = std::ceil(text_->sizeThatFits({textWidth, 1000.0}).height);
    const double height = std::max(CRVToastMinimumHeight, std::ceil(textHeight + textPadding));

    double y = frame().minY();
    if (auto controller = viewController.lock()) y = controller->topLayoutGuideLength();
    if (height > frame().height() || y != frame().minY()) setFrame({frame().minX(), y, width, height});

    toast_->setFrame({toast_->frame().minX(), toast_->frame().minY(), width, height});

    if (button_) {
        buttonHeight = std::max(buttonHeight, minimumButtonHeight);
        button_->setFrame({std::floor(width - margin - buttonWidth), std::floor((height - buttonHeight) / 2),
                           std::ceil(buttonWidth), std::ceil(buttonHeight)});
    }
    text_->setFrame({margin, std::ceil((height - textHeight) / 2), textWidth, textHeight});

    const double outer = frame().height();
    if (!leaving_ && outerOnEntry > 0 && outerOnEntry != stripOnEntry) {
        const double unchangedMark = outerOnEntry != 0 ? 1.0 : 0.0;
        if (outer != unchangedMark && animationBlock) animationBlock(true, outer);
    }
}

void CRVToastView::present(bool animated) {
    if (!toast_) return;
    auto self = std::static_pointer_cast<CRVToastView>(shared_from_this());
    const bool timed = !button_ && durationInSeconds != 0;
    const auto slideIn = [self] {
        self->toast_->setFrame({0, 0, self->frame().width(), self->frame().height()});
        if (self->animationBlock) self->animationBlock(true, self->frame().height());
    };
    if (!animated) {
        slideIn();
        if (timed) startTimer();
        return;
    }
    std::function<void(bool)> completion;
    if (timed) completion = [self](bool) { self->startTimer(); };
    uikit::Animation::animate(animationTime, 0, slideIn, std::move(completion));
}

void CRVToastView::startTimer() {
    timePresented_ = uikit::Animation::now();
    // The toast holds itself until it leaves, so it goes even when its owner has gone.
    auto self = std::static_pointer_cast<CRVToastView>(shared_from_this());
    const double wait = durationInSeconds > 0 ? durationInSeconds : 0.0;
    platform::MainQueue::shared().asyncAfter(platform::seconds(wait), [self] { self->dismiss(true); });
}

std::optional<double> CRVToastView::timePresented() const {
    const double at = timePresented_.load();
    return at < 0 ? std::nullopt : std::optional<double>(at);
}

void CRVToastView::dismiss(bool animated, std::function<void()> completion) {
    if (!toast_) return;
    auto self = std::static_pointer_cast<CRVToastView>(shared_from_this());
    if (!animated) {
        leaving_ = true;
        removeFromSuperview();
        if (animationBlock) animationBlock(false, 0.0);
        if (completion) completion();
        return;
    }
    if (!superview() || !superview()->superview()) return;
    leaving_ = true;
    uikit::Animation::animate(
        animationTime, 0,
        [self] {
            const uikit::Rect strip = self->toast_->frame();
            self->toast_->setFrame({strip.minX(), -self->frame().height(), strip.width(), strip.height()});
            if (self->animationBlock) self->animationBlock(false, 0.0);
        },
        [self, completion = std::move(completion)](bool finished) {
            if (!finished) return;
            self->removeFromSuperview();
            if (completion) completion();
        });
}

void CRVToastView::buttonPressed() {
    auto self = shared_from_this();
    if (buttonBlock) {
        const ButtonBlock action = buttonBlock;
        action();
    }
    dismiss(true);
}

} // namespace belvakit
