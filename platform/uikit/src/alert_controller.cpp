#include "uikit/alert_controller.hpp"

#include "platform/log.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

namespace {
constexpr double alertWidth = 270;
constexpr double padding = 16;
constexpr double buttonHeight = 44;
constexpr double fieldHeight = 30;
} // namespace

AlertController::AlertController(std::string title, std::string message, AlertControllerStyle style)
    : message_(std::move(message)), style_(style) {
    setTitle(std::move(title));
}

void AlertController::setMessage(std::string message) {
    message_ = std::move(message);
    if (messageLabel_) messageLabel_->setText(message_);
    if (isViewLoaded()) view()->setNeedsLayout();
}

void AlertController::addAction(AlertAction action) {
    actions_.push_back(std::move(action));
    if (isViewLoaded()) rebuildButtons();
}

void AlertController::setActionEnabled(std::size_t index, bool enabled) {
    if (index >= actions_.size()) return;
    actions_[index].enabled = enabled;
    if (index < buttons_.size()) buttons_[index]->setEnabled(enabled);
}

void AlertController::addTextField(const std::function<void(TextField&)>& configuration) {
    if (style_ != AlertControllerStyle::alert) {
        platform::log::write(platform::LogLevel::error, "UIAlertController: text fields can only be added to an alert");
        return;
    }
    auto field = make<TextField>();
    field->setBorderWidth(0.5);
    field->setBorderColor(platform::Color{0.78, 0.78, 0.8, 1});
    field->textInsets = {0, 4, 0, 4};
    field->font = platform::Font::systemFont(13);
    if (configuration) configuration(*field);
    textFields_.push_back(field);
    if (panel_) {
        panel_->addSubview(field);
        view()->setNeedsLayout();
    }
}

std::vector<std::size_t> AlertController::displayOrder() const {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < actions_.size(); ++i)
        if (actions_[i].style != AlertActionStyle::cancel) order.push_back(i);
    // An alert of two puts its cancel action on the left; otherwise cancel comes last.
    const bool first = style_ == AlertControllerStyle::alert && actions_.size() == 2;
    for (std::size_t i = 0; i < actions_.size(); ++i)
        if (actions_[i].style == AlertActionStyle::cancel) order.insert(first ? order.begin() : order.end(), i);
    return order;
}

std::vector<std::shared_ptr<Button>> AlertController::buttons() const {
    std::vector<std::shared_ptr<Button>> shown;
    for (const std::size_t index : displayOrder())
        if (index < buttons_.size()) shown.push_back(buttons_[index]);
    return shown;
}

void AlertController::loadView() {
    ViewController::loadView();
    const auto& root = view();
    root->setBackgroundColor(platform::Color{0, 0, 0, 0.4});
    panel_ = make<View>();
    panel_->setBackgroundColor(platform::Color{0.97, 0.97, 0.97, 1});
    panel_->setCornerRadius(13);
    panel_->setClipsToBounds(true);
    root->addSubview(panel_);
    titleLabel_ = make<Label>();
    titleLabel_->setFont(platform::Font::boldSystemFont(17));
    titleLabel_->setTextAlignment(TextAlignment::center);
    titleLabel_->setNumberOfLines(0);
    titleLabel_->setAccessibilityIdentifier("AlertTitle");
    titleLabel_->setText(title());
    messageLabel_ = make<Label>();
    messageLabel_->setFont(platform::Font::systemFont(13));
    messageLabel_->setTextAlignment(TextAlignment::center);
    messageLabel_->setNumberOfLines(0);
    messageLabel_->setAccessibilityIdentifier("AlertMessage");
    messageLabel_->setText(message_);
    panel_->addSubview(titleLabel_);
    panel_->addSubview(messageLabel_);
    for (const auto& field : textFields_) panel_->addSubview(field);
    rebuildButtons();
}

void AlertController::rebuildButtons() {
    for (const auto& button : buttons_) button->removeFromSuperview();
    buttons_.clear();
    for (std::size_t index = 0; index < actions_.size(); ++index) {
        const auto& action = actions_[index];
        auto button = make<Button>(ButtonType::system);
        button->setTitle(action.title);
        button->setAccessibilityIdentifier(action.title);
        button->setEnabled(action.enabled);
        button->setBackgroundColor(platform::Color::white());
        if (action.style == AlertActionStyle::destructive) button->setTitleColor(platform::Color::fromRGB(255, 59, 48));
        if (action.style == AlertActionStyle::cancel) button->titleLabel()->setFont(platform::Font::boldSystemFont(17));
        else button->titleLabel()->setFont(platform::Font::systemFont(17));
        button->addTarget(ControlEvent::touchUpInside, [weak = weak_from_this(), index] {
            if (const auto self = weak.lock()) static_cast<AlertController&>(*self).choose(index);
        });
        buttons_.push_back(button);
        panel_->addSubview(button);
    }
    view()->setNeedsLayout();
}

void AlertController::choose(std::size_t index) {
    if (chosen_ || index >= actions_.size() || !actions_[index].enabled) return;
    chosen_ = true;
    const AlertAction action = actions_[index];
    auto run = [action] {
        if (action.handler) action.handler(action);
    };
    if (presentingViewController())
        dismissViewController(true, std::move(run));
    else
        run();
}

void AlertController::viewWillLayoutSubviews() {
    const Rect bounds = view()->bounds();
    const bool alert = style_ == AlertControllerStyle::alert;
    const double width = alert ? std::min(alertWidth, bounds.width() - 2 * padding) : std::max(0.0, bounds.width() - 16);
    const double inner = std::max(1.0, width - 2 * padding);
    double y = padding;
    bool headed = !textFields_.empty();
    for (const auto& label : {titleLabel_, messageLabel_}) {
        label->setHidden(label->text().empty());
        if (label->isHidden()) continue;
        headed = true;
        const Size size = label->sizeThatFits({inner, 0});
        label->setFrame({padding, y, inner, size.height});
        y += size.height + 4;
    }
    for (const auto& field : textFields_) {
        y += 4;
        field->setFrame({padding, y, inner, fieldHeight});
        y += fieldHeight;
    }
    // Without a title, a message or fields, the buttons start at the top: no empty band.
    y = headed ? y + padding : 0;
    const auto shown = buttons();
    if (alert && shown.size() == 2) {
        const double half = width / 2;
        shown[0]->setFrame({0, y, half - 0.25, buttonHeight});
        shown[1]->setFrame({half + 0.25, y, half - 0.25, buttonHeight});
        y += buttonHeight;
    } else {
        for (const auto& button : shown) {
            // A hairline of the panel between a button and what is above it.
            const double line = y > 0 ? 0.5 : 0;
            button->setFrame({0, y + line, width, buttonHeight - line});
            y += buttonHeight;
        }
    }
    const double bottomInset = safeAreaInsets().bottom;
    const double x = std::floor((bounds.width() - width) / 2);
    const double top = alert ? std::floor((bounds.height() - y) / 2) : bounds.height() - bottomInset - 8 - y;
    panel_->setFrame({x, top, width, y});
}

} // namespace uikit
