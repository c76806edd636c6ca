#include "belvakit/Request/createrequest/text_view.hpp"

#include "platform/notification_center.hpp"

namespace belvakit {

void TextView::setDelegate(std::weak_ptr<TextViewDelegate> delegate) {
    delegate_ = std::move(delegate);
    hasAssignedDelegate_ = true;
}

void TextView::beginEditing() {
    isFirstResponder_ = true;
    if (auto current = delegate()) current->textViewDidBeginEditing(*this);
}

void TextView::replaceText(std::string text) {
    text_ = std::move(text);
    if (auto current = delegate()) current->textViewDidChange(*this);
    platform::NotificationCenter::defaultCenter().post(UITextViewTextDidChangeNotification, this);
}

void TextView::endEditing() {
    if (!isFirstResponder_) return;
    isFirstResponder_ = false;
    if (auto current = delegate()) current->textViewDidEndEditing(*this);
}

} // namespace belvakit
