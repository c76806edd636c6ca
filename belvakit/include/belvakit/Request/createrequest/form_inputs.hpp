#pragma once

#include "belvakit/Request/createrequest/place_holder_text_view.hpp"
#include "belvakit/Request/createrequest/validatable_text_field.hpp"
#include "uikit/label.hpp"
#include "uikit/text_input.hpp"

#include <functional>
#include <memory>

namespace belvakit {

// What the form does when one of its inputs starts editing.
using FormInputBegan = std::function<void(uikit::TextInput& input)>;

// The face of a ValidatableTextField on the form: a one-line input, with an error badge while
// the field is invalid. The user's typing reaches the field, and the field's text the input.
class FormTextField final : public uikit::View {
public:
    explicit FormTextField(std::shared_ptr<ValidatableTextField> field);
    std::string_view className() const override { return "FormTextField"; }

    const std::shared_ptr<ValidatableTextField>& field() const { return field_; }
    const std::shared_ptr<uikit::TextField>& input() const { return input_; }
    const std::shared_ptr<uikit::Label>& errorImageView() const { return errorImageView_; }

    // Ends the field's editing when its input lost the keyboard without being told so.
    void finishEditing();
    // Shows the field's text and validity.
    void refresh();

    FormInputBegan didBeginEditing;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    std::shared_ptr<ValidatableTextField> field_;
    std::shared_ptr<uikit::TextField> input_;
    std::shared_ptr<uikit::Label> errorImageView_;
};

// The face of a PlaceHolderTextView on the form: a multi-line input that grows with its text,
// and the placeholder label while it is empty.
class FormTextView final : public uikit::View {
public:
    explicit FormTextView(std::shared_ptr<PlaceHolderTextView> textView);
    std::string_view className() const override { return "FormTextView"; }

    const std::shared_ptr<PlaceHolderTextView>& textView() const { return textView_; }
    const std::shared_ptr<uikit::TextView>& input() const { return input_; }
    const std::shared_ptr<uikit::Label>& placeholderLabel() const { return placeholderLabel_; }

    void finishEditing();
    void refresh();

    FormInputBegan didBeginEditing;
    double minimumHeight = 120;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    std::shared_ptr<PlaceHolderTextView> textView_;
    std::shared_ptr<uikit::TextView> input_;
    std::shared_ptr<uikit::Label> placeholderLabel_;
};

} // namespace belvakit
