#pragma once

#include "belvakit/Request/createrequest/text_view.hpp"
#include "belvakit/Request/createrequest/validatable_view.hpp"
#include "platform/notification_center.hpp"

#include <memory>
#include <string>

namespace belvakit {

// Tells the store when the user starts and stops writing in a placeholder text view.
class DefaultPlaceHolderTextViewDelegate final : public TextViewDelegate {
public:
    void textViewDidBeginEditing(TextView& textView) override;
    void textViewDidEndEditing(TextView& textView) override;
};

struct PlaceholderLabel {
    std::string text;
    bool hidden = false;
    std::string accessibilityIdentifier = "writeAMessage";
};

// A text view that shows a placeholder while it is empty.
class PlaceHolderTextView final : public TextView, public ValidatableView {
public:
    PlaceHolderTextView();

    bool isViewValid() const override { return isViewValid_; }
    void setIsViewValid(bool valid) override { isViewValid_ = valid; }

    const std::string& placeholderText() const { return placeholderLabel_.text; }
    void setPlaceholderText(std::string text) { placeholderLabel_.text = std::move(text); }
    const PlaceholderLabel& placeholderLabel() const { return placeholderLabel_; }
    const std::string& accessibilityIdentifier() const { return accessibilityIdentifier_; }

    // Until another delegate is set, a DefaultPlaceHolderTextViewDelegate made on first use.
    std::shared_ptr<TextViewDelegate> delegate() const override;

    void hideOrShowPlaceHolderView();
    void touchesBegan();

private:
    bool isViewValid_ = true;
    PlaceholderLabel placeholderLabel_;
    std::string accessibilityIdentifier_ = "CRVmessageBodyField";
    mutable std::shared_ptr<DefaultPlaceHolderTextViewDelegate> defaultDelegate_;
    platform::ObservationToken textChangeObservation_;
};

} // namespace belvakit
