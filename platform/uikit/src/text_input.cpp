#include "uikit/text_input.hpp"

#include "uikit/text_measurer.hpp"
#include "uikit/window.hpp"

#include <cmath>

namespace uikit {

TextInput::TextInput(Rect frame) : Control(frame), font(platform::Font::systemFont(17)) {}

void TextInput::setText(std::string text) {
    text_ = std::move(text);
    invalidateIntrinsicContentSize();
}

bool TextInput::becomeFirstResponder() {
    auto* owner = window();
    if (!owner || !editable || !isEnabled()) return false;
    const bool was = isFirstResponder();
    if (!owner->makeFirstResponder(this)) return false;
    if (!was) {
        sendActions(ControlEvent::editingDidBegin);
        if (didBeginEditing) didBeginEditing();
    }
    return true;
}

bool TextInput::resignFirstResponder() {
    if (!isFirstResponder()) return false;
    window()->resignFirstResponder(this);
    sendActions(ControlEvent::editingDidEnd);
    if (didEndEditing) didEndEditing();
    return true;
}

bool TextInput::isFirstResponder() const {
    const auto* owner = window();
    return owner && owner->firstResponder() == this;
}

bool TextInput::change(std::string next) {
    if (shouldChangeText && !shouldChangeText(next)) return false;
    text_ = std::move(next);
    invalidateIntrinsicContentSize();
    sendActions(ControlEvent::editingChanged);
    if (didChange) didChange();
    return true;
}

void TextInput::insertText(const std::string& typed) {
    if (!editable) return;
    // Character by character, as keys give them: a character of several bytes goes in whole.
    for (std::size_t i = 0; i < typed.size();) {
        const char c = typed[i];
        std::size_t length = 1;
        while (i + length < typed.size() && (static_cast<unsigned char>(typed[i + length]) & 0xC0) == 0x80) ++length;
        if (c == '\b') {
            deleteBackward();
        } else if (c == '\n' && className() == "UITextField") {
            pressReturn();
        } else {
            change(text_ + typed.substr(i, length));
        }
        i += length;
    }
}

void TextInput::deleteBackward() {
    if (text_.empty()) return;
    std::size_t cut = text_.size() - 1;
    while (cut > 0 && (static_cast<unsigned char>(text_[cut]) & 0xC0) == 0x80) --cut;  // whole characters
    change(text_.substr(0, cut));
}

void TextInput::pressReturn() {
    if (shouldReturn) shouldReturn();
}

bool TextInput::handleTap() {
    becomeFirstResponder();
    Control::handleTap();
    return true;
}

Size TextField::intrinsicContentSize() const {
    const double line = std::ceil(font.pointSize() * 1.2);
    return {noIntrinsicMetric, line + textInsets.top + textInsets.bottom};
}

Size TextView::sizeThatFits(Size size) const {
    const double width = std::max(1.0, size.width - textInsets.left - textInsets.right);
    const platform::AttributedString measured(text().empty() ? std::string(" ") : text(),
                                              {{platform::AttributeName::font, font}});
    const Size text = textMeasurer().measure(measured, width, 0);
    return {size.width, text.height + textInsets.top + textInsets.bottom};
}

} // namespace uikit
