#include "belvakit/Request/createrequest/create_request_input_fields_validator.hpp"

#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "platform/trimming.hpp"

#include <algorithm>

namespace belvakit {

std::shared_ptr<CreateRequestInputFieldsValidator> CreateRequestInputFieldsValidator::make() {
    return std::shared_ptr<CreateRequestInputFieldsValidator>(new CreateRequestInputFieldsValidator());
}

void CreateRequestInputFieldsValidator::setName(const std::shared_ptr<ValidatableTextField>& field) {
    nameObservation_ = bind(name_, field);
}

void CreateRequestInputFieldsValidator::setEmail(const std::shared_ptr<ValidatableTextField>& field) {
    emailObservation_ = bind(email_, field);
}

void CreateRequestInputFieldsValidator::setDescriptionView(const std::shared_ptr<PlaceHolderTextView>& view) {
    descriptionView_ = view;
    if (view) view->setDelegate(std::static_pointer_cast<TextViewDelegate>(shared_from_this()));
}

platform::ObservationToken CreateRequestInputFieldsValidator::bind(std::weak_ptr<ValidatableTextField>& slot,
                                                                   const std::shared_ptr<ValidatableTextField>& field) {
    slot = field;
    if (!field) return {};
    field->setDelegate(std::static_pointer_cast<TextFieldDelegate>(shared_from_this()));
    return platform::NotificationCenter::defaultCenter().addObserver(
        UITextFieldTextDidChangeNotification, field.get(),
        [weakSelf = weak_from_this()](const platform::Notification& notification) {
            if (auto self = weakSelf.lock()) self->textFieldDidChange(notification);
        });
}

std::vector<std::shared_ptr<const TextContainerView>> CreateRequestInputFieldsValidator::views() const {
    std::vector<std::shared_ptr<const TextContainerView>> views;
    if (auto field = name_.lock()) views.push_back(field);
    if (auto field = email_.lock()) views.push_back(field);
    if (auto view = descriptionView_.lock()) views.push_back(view);
    return views;
}

void CreateRequestInputFieldsValidator::checkBeforeSend(const std::function<void()>& send) {
    // An email off screen is one the form doesn't ask for.
    auto field = email_.lock();
    const bool emailValid = field && field->hasWindow() ? validator_.validate(*field) : true;
    report(emailValid);
    if (emailValid && FormValidator::allFilled(views())) send();
}

void CreateRequestInputFieldsValidator::textFieldDidBeginEditing(ValidatableTextField&) {
    beginEditing();
}

void CreateRequestInputFieldsValidator::textViewDidBeginEditing(TextView&) {
    beginEditing();
}

// Any field that ends editing re-checks the email, trimmed, whichever field it was.
void CreateRequestInputFieldsValidator::textFieldDidEndEditing(ValidatableTextField&) {
    auto field = email_.lock();
    if (!field) return;
    if (auto text = field->text()) field->setText(platform::trimmingWhitespaceAndNewlines(*text));
    report(validator_.validate(*field));
}

void CreateRequestInputFieldsValidator::textFieldDidChange(const platform::Notification& notification) {
    const auto* changed = dynamic_cast<const ValidatableTextField*>(notification.object);
    auto field = email_.lock();
    if (changed && field && field->text()) {
        // Before the first failure, typing keeps the flag the field already shows.
        report(validator_.inlineValidationEnabeled ? validator_.isValid(*field->text()) : changed->isViewValid());
    }
    updateEdits();
}

void CreateRequestInputFieldsValidator::textViewDidChange(TextView&) {
    auto field = email_.lock();
    report(field && field->hasWindow() ? validator_.validate(*field) : true);
    updateEdits();
}

void CreateRequestInputFieldsValidator::beginEditing() const {
    auto form = delegate_.lock();
    if (!form) return;
    if (auto callback = form->beginEditingCallback()) callback();
}

void CreateRequestInputFieldsValidator::report(bool emailValid) const {
    auto form = delegate_.lock();
    if (!form) return;
    form->validationChanged(emailValid, emailValid && FormValidator::allFilled(views()));
}

void CreateRequestInputFieldsValidator::updateEdits() const {
    const auto all = views();
    CreateRequestActions::Edited action;
    action.formId = formId;
    action.hasEdits = std::any_of(all.begin(), all.end(), [](const auto& view) {
        return !platform::trimmingWhitespaceAndNewlines(view->text().value_or("")).empty();
    });
    sharedStore()->dispatch(action);
}

} // namespace belvakit
