#pragma once

#include "belvakit/Request/createrequest/validatable_view.hpp"
#include "platform/object.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// Posted by a text view after the user changed its text; the view is the object.
inline const std::string UITextViewTextDidChangeNotification = "UITextViewTextDidChangeNotification";

class TextView;

class TextViewDelegate {
public:
    virtual ~TextViewDelegate() = default;
    virtual void textViewDidBeginEditing(TextView&) {}
    virtual void textViewDidChange(TextView&) {}
    virtual void textViewDidEndEditing(TextView&) {}
};

// A multi-line text view without a drawing surface.
// The user's gestures come in through beginEditing, replaceText and endEditing.
class TextView : public platform::Object, public TextContainerView {
public:
    std::optional<std::string> text() const override { return text_; }
    // Programmatic: notifies nobody, as on the platform.
    void setText(std::optional<std::string> text) { text_ = std::move(text); }

    // Whether the view is in a window, that is on the form.
    bool hasWindow() const { return hasWindow_; }
    void setHasWindow(bool hasWindow) { hasWindow_ = hasWindow; }
    bool isFirstResponder() const { return isFirstResponder_; }

    virtual std::shared_ptr<TextViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<TextViewDelegate> delegate);

    void beginEditing();
    // The user's edit: the new text, the delegate's textViewDidChange, then the notification.
    void replaceText(std::string text);
    void endEditing();

protected:
    bool hasAssignedDelegate() const { return hasAssignedDelegate_; }

private:
    std::optional<std::string> text_ = std::string();
    bool hasWindow_ = false;
    bool isFirstResponder_ = false;
    std::weak_ptr<TextViewDelegate> delegate_;
    bool hasAssignedDelegate_ = false;
};

} // namespace belvakit
