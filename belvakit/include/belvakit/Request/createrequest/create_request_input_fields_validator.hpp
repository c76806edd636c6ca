#pragma once

#include "belvakit/Request/createrequest/form_validator.hpp"
#include "belvakit/Request/createrequest/place_holder_text_view.hpp"
#include "belvakit/Request/createrequest/validatable_text_field.hpp"
#include "platform/notification_center.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace belvakit {

class CreateRequestInputFieldsValidatorDelegate {
public:
    virtual ~CreateRequestInputFieldsValidatorDelegate() = default;
    // `emailValid`: whether to show the email as good; `formValid`: whether send may be enabled.
    virtual void validationChanged(bool emailValid, bool formValid) = 0;
    // Run when any field starts editing; none by default.
    virtual std::function<void()> beginEditingCallback() const { return nullptr; }
};

// Watches the fields of the new-request form and reports their validity to the form.
// A field that is gone or off screen is not required.
class CreateRequestInputFieldsValidator final : public TextFieldDelegate,
                                                public TextViewDelegate,
                                                public std::enable_shared_from_this<CreateRequestInputFieldsValidator> {
public:
    static std::shared_ptr<CreateRequestInputFieldsValidator> make();

    const FormValidator& validator() const { return validator_; }
    std::shared_ptr<CreateRequestInputFieldsValidatorDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<CreateRequestInputFieldsValidatorDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    std::shared_ptr<ValidatableTextField> name() const { return name_.lock(); }
    std::shared_ptr<ValidatableTextField> email() const { return email_.lock(); }
    std::shared_ptr<PlaceHolderTextView> descriptionView() const { return descriptionView_.lock(); }
    // Each binding makes this the field's delegate and watches its text changes.
    void setName(const std::shared_ptr<ValidatableTextField>& field);
    void setEmail(const std::shared_ptr<ValidatableTextField>& field);
    void setDescriptionView(const std::shared_ptr<PlaceHolderTextView>& view);

    // Name, email and description, in this order, without those that are gone.
    std::vector<std::shared_ptr<const TextContainerView>> views() const;

    // Reports, then calls `send` only if the required fields pass.
    void checkBeforeSend(const std::function<void()>& send);

    void textFieldDidBeginEditing(ValidatableTextField& field) override;
    void textFieldDidEndEditing(ValidatableTextField& field) override;
    void textViewDidBeginEditing(TextView& textView) override;
    void textViewDidChange(TextView& textView) override;

    // The form whose edits it reports.
    std::uint64_t formId = 0;

private:
    CreateRequestInputFieldsValidator() = default;
    platform::ObservationToken bind(std::weak_ptr<ValidatableTextField>& slot,
                                    const std::shared_ptr<ValidatableTextField>& field);
    void textFieldDidChange(const platform::Notification& notification);
    void beginEditing() const;
    void report(bool emailValid) const;
    void updateEdits() const;

    FormValidator validator_;
    std::weak_ptr<CreateRequestInputFieldsValidatorDelegate> delegate_;
    std::weak_ptr<ValidatableTextField> name_;
    std::weak_ptr<ValidatableTextField> email_;
    std::weak_ptr<PlaceHolderTextView> descriptionView_;
    platform::ObservationToken nameObservation_;
    platform::ObservationToken emailObservation_;
};

} // namespace belvakit
