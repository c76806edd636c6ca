#pragma once

#include "belvakit/Request/createrequest/validatable_view.hpp"
#include "platform/object.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// Posted by a text field after the user changed its text; the field is the object.
inline const std::string UITextFieldTextDidChangeNotification = "UITextFieldTextDidChangeNotification";

class ValidatableTextField;

class TextFieldDelegate {
public:
    virtual ~TextFieldDelegate() = default;
    virtual void textFieldDidBeginEditing(ValidatableTextField& field) = 0;
    virtual void textFieldDidEndEditing(ValidatableTextField& field) = 0;
};

// A one-line text field that carries a validity flag, without a drawing surface.
// The user's gestures come in through beginEditing, replaceText and endEditing.
class ValidatableTextField : public platform::Object, public ValidatableView, public TextContainerView {
public:
    std::optional<std::string> text() const override { return text_; }
    // Programmatic: notifies nobody, as on the platform.
    void setText(std::optional<std::string> text) { text_ = std::move(text); }

    bool isViewValid() const override { return isViewValid_; }
    void setIsViewValid(bool valid) override { isViewValid_ = valid; }
    // The error image is up exactly while the field is invalid.
    bool isErrorImageViewShown() const { return !isViewValid_; }

    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(std::string placeholder) { placeholder_ = std::move(placeholder); }

    // Whether the field is in a window, that is on the form; the form clears it when it removes the field.
    bool hasWindow() const { return hasWindow_; }
    void setHasWindow(bool hasWindow) { hasWindow_ = hasWindow; }
    bool isFirstResponder() const { return isFirstResponder_; }

    std::shared_ptr<TextFieldDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<TextFieldDelegate> delegate) { delegate_ = std::move(delegate); }

    void beginEditing();
    // The user's edit: the new text, then the text-changed notification.
    void replaceText(std::string text);
    void endEditing();

private:
    std::optional<std::string> text_ = std::string();
    bool isViewValid_ = true;
    std::string placeholder_;
    bool hasWindow_ = false;
    bool isFirstResponder_ = false;
    std::weak_ptr<TextFieldDelegate> delegate_;
};

} // namespace belvakit
