#include "belvakit/Request/createrequest/validatable_text_field.hpp"

#include "platform/notification_center.hpp"

namespace belvakit {

void ValidatableTextField::beginEditing() {
    isFirstResponder_ = true;
    if (auto delegate = delegate_.lock()) delegate->textFieldDidBeginEditing(*this);
}

void ValidatableTextField::replaceText(std::string text) {
    text_ = std::move(text);
    platform::NotificationCenter::defaultCenter().post(UITextFieldTextDidChangeNotification, this);
}

void ValidatableTextField::endEditing() {
    if (!isFirstResponder_) return;
    isFirstResponder_ = false;
    if (auto delegate = delegate_.lock()) delegate->textFieldDidEndEditing(*this);
}

} // namespace belvakit
