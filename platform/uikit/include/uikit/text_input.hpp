#pragma once

#include "uikit/button.hpp"
#include "uikit/label.hpp"

#include <functional>
#include <string>

namespace uikit {

// What text inputs share: text, placeholder, first responder and the callbacks a delegate gives.
class TextInput : public Control {
public:
    explicit TextInput(Rect frame = {});

    const std::string& text() const { return text_; }
    // Programmatic: no change callbacks, as on the platform.
    void setText(std::string text);
    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(std::string placeholder) { placeholder_ = std::move(placeholder); }
    platform::Font font;
    platform::Color textColor = platform::Color::black();
    std::optional<platform::Color> placeholderColor;
    TextAlignment textAlignment = TextAlignment::natural;
    EdgeInsets textInsets;
    bool editable = true;
    int keyboardType = 0;
    int returnKeyType = 0;
    bool secureTextEntry = false;

    // Delegate: may the edit happen; it happened; editing begins or ends; the return key.
    std::function<bool(const std::string& replacement)> shouldChangeText;
    std::function<void()> didChange;
    std::function<void()> didBeginEditing;
    std::function<void()> didEndEditing;
    std::function<bool()> shouldReturn;

    bool becomeFirstResponder();
    bool resignFirstResponder();
    bool isFirstResponder() const;

    // What typing does: each character (or a backspace "\b") goes through the delegate.
    void insertText(const std::string& typed);
    void deleteBackward();
    void pressReturn();

    bool handleTap() override;

private:
    bool change(std::string next);
    std::string text_;
    std::string placeholder_;
};

class TextField final : public TextInput {
public:
    using TextInput::TextInput;
    std::string_view className() const override { return "UITextField"; }
    Size intrinsicContentSize() const override;
};

// Many lines; grows with its text when it is not scrolled.
class TextView final : public TextInput {
public:
    using TextInput::TextInput;
    std::string_view className() const override { return "UITextView"; }
    bool scrollEnabled = true;
    Size sizeThatFits(Size size) const override;
};

} // namespace uikit
