#include "belvakit/Request/createrequest/form_inputs.hpp"

#include "belvakit/toolkit/theme.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

constexpr double horizontalInset = 16;
constexpr double badgeSize = 20;

void style(uikit::TextInput& input) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    input.font = theme->mainFont;
    input.textColor = theme->inputFieldTextColor;
    input.placeholderColor = theme->metaTextColor;
}

} // namespace

FormTextField::FormTextField(std::shared_ptr<ValidatableTextField> field)
    : field_(std::move(field)), input_(uikit::make<uikit::TextField>()), errorImageView_(uikit::make<uikit::Label>()) {
    style(*input_);
    input_->setPlaceholder(field_->placeholder());
    input_->setAccessibilityLabel(field_->placeholder());
    input_->textInsets = {0, horizontalInset, 0, horizontalInset};
    // The input is the user's; the field is what the validator reads.
    input_->didBeginEditing = [this] {
        field_->beginEditing();
        if (didBeginEditing) didBeginEditing(*input_);
    };
    input_->didChange = [this] { field_->replaceText(input_->text()); };
    input_->didEndEditing = [this] { finishEditing(); };
    input_->shouldReturn = [this] { return input_->resignFirstResponder(); };
    addSubview(input_);

    errorImageView_->setText("!");
    errorImageView_->setFont(platform::Font::boldSystemFont(14));
    errorImageView_->setTextColor(platform::Color::white());
    errorImageView_->setTextAlignment(uikit::TextAlignment::center);
    errorImageView_->setBackgroundColor(platform::Color::fromRGB(214, 48, 49));
    errorImageView_->setCornerRadius(badgeSize / 2);
    errorImageView_->setClipsToBounds(true);
    addSubview(errorImageView_);
    refresh();
}

void FormTextField::finishEditing() {
    field_->endEditing();
    refresh();
}

void FormTextField::refresh() {
    const std::string text = field_->text().value_or("");
    if (input_->text() != text) input_->setText(text);
    errorImageView_->setHidden(!field_->isErrorImageViewShown());
    setNeedsLayout();
}

uikit::Size FormTextField::sizeThatFits(uikit::Size size) const {
    const double line = input_->intrinsicContentSize().height;
    return {size.width, std::max(44.0, line + 20)};
}

void FormTextField::layoutSubviews() {
    uikit::View::layoutSubviews();
    const auto area = bounds();
    const double badgeRoom = errorImageView_->isHidden() ? 0 : badgeSize + 8;
    input_->setFrame({0, 0, std::max(0.0, area.width() - badgeRoom), area.height()});
    errorImageView_->setFrame({area.width() - horizontalInset - badgeSize + 8, std::floor((area.height() - badgeSize) / 2),
                               badgeSize, badgeSize});
}

FormTextView::FormTextView(std::shared_ptr<PlaceHolderTextView> textView)
    : textView_(std::move(textView)), input_(uikit::make<uikit::TextView>()), placeholderLabel_(uikit::make<uikit::Label>()) {
    style(*input_);
    input_->scrollEnabled = false;
    input_->textInsets = {12, horizontalInset, 12, horizontalInset};
    input_->setAccessibilityIdentifier(textView_->accessibilityIdentifier());
    input_->setAccessibilityLabel(textView_->placeholderText());
    input_->didBeginEditing = [this] {
        textView_->beginEditing();
        if (didBeginEditing) didBeginEditing(*input_);
    };
    input_->didChange = [this] {
        textView_->replaceText(input_->text());
        refresh();
    };
    input_->didEndEditing = [this] { finishEditing(); };
    addSubview(input_);

    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    placeholderLabel_->setText(textView_->placeholderText());
    placeholderLabel_->setFont(theme->mainFont);
    placeholderLabel_->setTextColor(theme->metaTextColor);
    placeholderLabel_->setNumberOfLines(0);
    placeholderLabel_->setUserInteractionEnabled(false);
    placeholderLabel_->setAccessibilityIdentifier(textView_->placeholderLabel().accessibilityIdentifier);
    addSubview(placeholderLabel_);
    textView_->hideOrShowPlaceHolderView();
    refresh();
}

void FormTextView::finishEditing() {
    textView_->endEditing();
    refresh();
}

void FormTextView::refresh() {
    const std::string text = textView_->text().value_or("");
    if (input_->text() != text) input_->setText(text);
    placeholderLabel_->setHidden(textView_->placeholderLabel().hidden);
    invalidateIntrinsicContentSize();
    setNeedsLayout();
}

uikit::Size FormTextView::sizeThatFits(uikit::Size size) const {
    return {size.width, std::max(minimumHeight, std::ceil(input_->sizeThatFits(size).height))};
}

void FormTextView::layoutSubviews() {
    uikit::View::layoutSubviews();
    const auto area = bounds();
    input_->setFrame(area);
    const auto& insets = input_->textInsets;
    const double width = std::max(0.0, area.width() - insets.left - insets.right);
    const double height = placeholderLabel_->sizeThatFits({width, 0}).height;
    placeholderLabel_->setFrame({insets.left, insets.top, width, height});
}

} // namespace belvakit
