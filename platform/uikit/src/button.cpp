#include "uikit/button.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

unsigned Control::state() const {
    unsigned state = ControlState::normal;
    if (highlighted_) state |= ControlState::highlighted;
    if (!enabled_) state |= ControlState::disabled;
    if (selected_) state |= ControlState::selected;
    return state;
}

void Control::addTarget(ControlEvent event, std::function<void()> action) {
    targets_.emplace_back(event, std::move(action));
}

void Control::removeTargets(ControlEvent event) {
    std::erase_if(targets_, [&](const auto& target) { return target.first == event; });
}

void Control::sendActions(ControlEvent event) {
    const auto targets = targets_;  // an action may change them
    for (const auto& [on, action] : targets)
        if (on == event && action) action();
}

bool Control::handleTap() {
    if (!enabled_) return false;
    sendActions(ControlEvent::touchUpInside);
    View::handleTap();
    return true;
}

Button::Button(ButtonType type, Rect frame) : Control(frame), type_(type), titleLabel_(make<Label>()) {
    titleLabel_->setFont(platform::Font::systemFont(15));
    titleLabel_->setTextAlignment(TextAlignment::center);
    titleLabel_->setUserInteractionEnabled(false);
    addSubview(titleLabel_);
    if (type == ButtonType::system) titleColors_[ControlState::normal] = platform::Color::fromRGB(0, 122, 255);
    refreshTitle();
}

namespace {
template <class Map>
auto lookup(const Map& map, unsigned state) -> const typename Map::mapped_type* {
    // The exact state, then each single state it holds, then normal.
    for (const unsigned wanted : {state, state & ControlState::disabled, state & ControlState::highlighted,
                                  state & ControlState::selected}) {
        if (wanted == ControlState::normal) continue;
        if (const auto found = map.find(wanted); found != map.end()) return &found->second;
    }
    const auto normal = map.find(ControlState::normal);
    return normal != map.end() ? &normal->second : nullptr;
}
} // namespace

void Button::setTitle(std::string title, unsigned state) {
    titles_[state] = std::move(title);
    refreshTitle();
}

std::string Button::title(unsigned state) const {
    const auto* found = lookup(titles_, state);
    return found ? *found : std::string();
}

void Button::setTitleColor(platform::Color color, unsigned state) {
    titleColors_[state] = color;
    refreshTitle();
}

std::optional<platform::Color> Button::titleColor(unsigned state) const {
    const auto* found = lookup(titleColors_, state);
    return found ? std::optional(*found) : std::nullopt;
}

void Button::setImage(platform::ImagePtr image, unsigned state) {
    images_[state] = std::move(image);
    invalidateIntrinsicContentSize();
}

platform::ImagePtr Button::image(unsigned state) const {
    const auto* found = lookup(images_, state);
    return found ? *found : nullptr;
}

void Button::refreshTitle() {
    titleLabel_->setText(currentTitle());
    titleLabel_->setTextColor(titleColor(state()).value_or(platform::Color::black()));
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

Size Button::sizeThatFits(Size) const {
    const Size text = titleLabel_->sizeThatFits({0, 0});
    const auto picture = currentImage();
    const double imageWidth = picture ? picture->width : 0;
    const double imageHeight = picture ? picture->height : 0;
    const double width = text.width + imageWidth + contentEdgeInsets.left + contentEdgeInsets.right;
    const double height = std::max(text.height, imageHeight) + contentEdgeInsets.top + contentEdgeInsets.bottom;
    // A system button is never shorter than a finger's tap.
    return {std::ceil(width), std::ceil(type_ == ButtonType::system ? std::max(height, 30.0) : height)};
}

void Button::layoutSubviews() {
    Control::layoutSubviews();
    // Titles follow the state as it is when laid out.
    std::string title = currentTitle();
    const platform::Color color = titleColor(state()).value_or(platform::Color::black());
    if (title != titleLabel_->text()) titleLabel_->setText(std::move(title));
    if (!(color == titleLabel_->textColor())) titleLabel_->setTextColor(color);
    const Rect content = bounds().inset(contentEdgeInsets);
    const auto picture = currentImage();
    const double imageWidth = picture ? picture->width : 0;
    const Size text = titleLabel_->sizeThatFits({std::max(0.0, content.width() - imageWidth), 0});
    double x = content.minX() + imageWidth;
    if (contentHorizontalAlignment == TextAlignment::center)
        x = content.minX() + imageWidth + std::max(0.0, (content.width() - imageWidth - text.width) / 2);
    else if (contentHorizontalAlignment == TextAlignment::right)
        x = content.maxX() - text.width;
    titleLabel_->setFrame({std::floor(x), std::floor(content.minY() + (content.height() - text.height) / 2),
                           std::min(text.width, content.width()), text.height});
}

} // namespace uikit
