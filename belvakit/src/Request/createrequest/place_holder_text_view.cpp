#include "belvakit/Request/createrequest/place_holder_text_view.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/entry/shared_store.hpp"

namespace belvakit {

void DefaultPlaceHolderTextViewDelegate::textViewDidBeginEditing(TextView& textView) {
    Actions::PlaceHolderTextViewEditingBegan action;
    action.text = textView.text().value_or("");
    sharedStore()->dispatch(action);
}

void DefaultPlaceHolderTextViewDelegate::textViewDidEndEditing(TextView& textView) {
    Actions::PlaceHolderTextViewEditingEnded action;
    action.text = textView.text().value_or("");
    sharedStore()->dispatch(action);
}

PlaceHolderTextView::PlaceHolderTextView()
    : textChangeObservation_(platform::NotificationCenter::defaultCenter().addObserver(
          UITextViewTextDidChangeNotification, this,
          [this](const platform::Notification&) { hideOrShowPlaceHolderView(); })) {}

std::shared_ptr<TextViewDelegate> PlaceHolderTextView::delegate() const {
    if (hasAssignedDelegate()) return TextView::delegate();
    if (!defaultDelegate_) defaultDelegate_ = std::make_shared<DefaultPlaceHolderTextViewDelegate>();
    return defaultDelegate_;
}

void PlaceHolderTextView::hideOrShowPlaceHolderView() {
    placeholderLabel_.hidden = !text().value_or("").empty();
}

void PlaceHolderTextView::touchesBegan() {
    hideOrShowPlaceHolderView();
}

} // namespace belvakit
