#include "belvakit/Request/conversation/input_field.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "uikit/image_view.hpp"
#include "uikit/text_measurer.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

constexpr double padding = 8;
constexpr double buttonSide = 36;
constexpr double stripHeight = 56;
constexpr double chipSide = 48;
constexpr int mostLines = 5;

} // namespace

InputField::InputField()
    : textView(uikit::make<uikit::TextView>()), placeholderLabel(uikit::make<uikit::Label>()),
      attachButton(uikit::make<uikit::Button>(uikit::ButtonType::system)),
      sendButton(uikit::make<uikit::Button>(uikit::ButtonType::system)), attachmentStrip(uikit::make<uikit::View>()) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    setBackgroundColor(theme->inputFieldBackgroundColor);
    setAccessibilityIdentifier("CRVinputField");

    textView->setAccessibilityIdentifier("CRVmessageBodyField");
    textView->font = theme->mainFont;
    textView->textColor = theme->inputFieldTextColor;
    textView->scrollEnabled = false;
    textView->textInsets = {6, 4, 6, 4};
    textView->setBackgroundColor(platform::Color::white());
    textView->setCornerRadius(8);
    textView->setBorderWidth(0.5);
    textView->setBorderColor(theme->separatorColor);
    textView->didChange = [this] {
        if (textChanged) textChanged(textView->text());
        placeholderLabel->setHidden(!textView->text().empty());
        setNeedsLayout();
    };
    textView->didBeginEditing = [this] {
        if (editingBegan) editingBegan(textView->text());
    };
    textView->didEndEditing = [this] {
        if (editingEnded) editingEnded(textView->text());
    };

    placeholderLabel->setAccessibilityIdentifier("writeAMessage");
    placeholderLabel->setFont(theme->mainFont);
    placeholderLabel->setTextColor(theme->metaTextColor);
    placeholderLabel->setUserInteractionEnabled(false);

    attachButton->setAccessibilityIdentifier("CRVattachButton");
    attachButton->setAccessibilityLabel(localized(LocalizedKey::requestsConversationsAddAttachmentsAccessibility));
    attachButton->setTitle("+");
    attachButton->titleLabel()->setFont(platform::Font::systemFont(28));
    attachButton->addTarget(uikit::ControlEvent::touchUpInside, [this] {
        if (attachButtonTapped) attachButtonTapped();
    });

    sendButton->setAccessibilityIdentifier("CRVsendButton");
    sendButton->setTitle("Send");
    sendButton->titleLabel()->setFont(platform::Font::boldSystemFont(16));
    sendButton->setTitleColor(theme->metaTextColor, uikit::ControlState::disabled);
    sendButton->setEnabled(false);
    sendButton->addTarget(uikit::ControlEvent::touchUpInside, [this] {
        if (!state_.canSend()) return;
        if (sendButtonTapped) sendButtonTapped(textView->text(), state_.attachments());
    });

    attachmentStrip->setAccessibilityIdentifier("CRVinputAttachments");
    for (const auto& view : std::vector<std::shared_ptr<uikit::View>>{attachmentStrip, textView, placeholderLabel, attachButton, sendButton})
        addSubview(view);
    render(state_);
}

void InputField::render(const InputFieldState& state) {
    state_ = state;
    if (textView->text() != state.text()) textView->setText(state.text());
    const auto& texts = state.inputTextAndImageViewState.textViewState;
    placeholderLabel->setText(localized(texts.hasMessages ? LocalizedKey::requestsCreateRequestInputReply
                                                          : LocalizedKey::requestsCreateRequestInputNew));
    placeholderLabel->setHidden(!textView->text().empty());
    textView->editable = !state.ticketClosed;
    textView->setEnabled(!state.ticketClosed);
    sendButton->setEnabled(state.canSend());
    sendButton->setTitleColor(state.primaryColor);
    attachButton->setTitleColor(state.primaryColor);
    if (state.attachButtonImage) attachButton->setImage(state.attachButtonImage);
    attachButton->setHidden(state.attachmentState == AttachmentButtonState::hidden || state.ticketClosed);
    attachButton->setSelected(state.attachmentState == AttachmentButtonState::selected);
    if (shownAttachments_ != state.attachments()) rebuildStrip();
    setNeedsLayout();
}

void InputField::rebuildStrip() {
    shownAttachments_ = state_.attachments();
    for (const auto& chip : std::vector(attachmentStrip->subviews())) chip->removeFromSuperview();
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    for (std::size_t index = 0; index < shownAttachments_.size(); ++index) {
        const auto& attachment = shownAttachments_[index];
        if (!attachment) continue;
        auto chip = uikit::make<uikit::View>();
        chip->setAccessibilityIdentifier("CRVinputAttachment" + std::to_string(index));
        chip->setBackgroundColor(platform::Color::white());
        chip->setCornerRadius(6);
        chip->setClipsToBounds(true);
        chip->setBorderWidth(0.5);
        chip->setBorderColor(theme->separatorColor);
        if (const auto* image = dynamic_cast<const InputImageViewModel*>(attachment.get())) {
            auto picture = uikit::make<uikit::ImageView>(image->image());
            picture->contentMode = uikit::ContentMode::scaleAspectFill;
            picture->setFrame({0, 0, chipSide, chipSide});
            chip->addSubview(picture);
        } else if (const auto* file = dynamic_cast<const InputFileViewModel*>(attachment.get())) {
            auto icon = uikit::make<uikit::ImageView>(file->icon());
            icon->contentMode = uikit::ContentMode::scaleAspectFit;
            icon->setFrame({12, 4, 24, 24});
            auto title = uikit::make<uikit::Label>();
            title->setText(file->title());
            title->setFont(theme->metaTextFont);
            title->setTextColor(theme->primaryTextColor);
            title->setTextAlignment(uikit::TextAlignment::center);
            title->setFrame({2, 30, chipSide - 4, 16});
            chip->addSubview(icon);
            chip->addSubview(title);
        }
        chip->addTapAction([this, index, identifier = attachment->identifier()] {
            if (attachmentRemoveTapped) attachmentRemoveTapped(static_cast<int>(index), identifier);
        });
        attachmentStrip->addSubview(chip);
    }
}

double InputField::textHeight(double width) const {
    const double inner = std::max(1.0, width - textView->textInsets.left - textView->textInsets.right);
    const auto& text = textView->text();
    const platform::AttributedString shown(text.empty() ? std::string("M") : text,
                                           {{platform::fontAttributeName, textView->font}});
    const double line = uikit::textMeasurer().measure(platform::AttributedString("M", {{platform::fontAttributeName, textView->font}}), inner, 1).height;
    const double measured = uikit::textMeasurer().measure(shown, inner, 0).height;
    return std::ceil(std::min(measured, line * mostLines)) + textView->textInsets.top + textView->textInsets.bottom;
}

double InputField::sendWidth() const { return std::max(buttonSide, sendButton->sizeThatFits({0, 0}).width); }

uikit::Size InputField::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    const double textWidth = std::max(1.0, width - 2 * padding - buttonSide - sendWidth() - 2 * padding);
    const double strip = shownAttachments_.empty() ? 0 : stripHeight;
    return {width, strip + std::max(buttonSide, textHeight(textWidth)) + 2 * padding};
}

void InputField::layoutSubviews() {
    uikit::View::layoutSubviews();
    const double width = bounds().width();
    const double strip = shownAttachments_.empty() ? 0 : stripHeight;
    attachmentStrip->setHidden(shownAttachments_.empty());
    attachmentStrip->setFrame({0, 0, width, strip});
    double x = padding;
    for (const auto& chip : attachmentStrip->subviews()) {
        chip->setFrame({x, (stripHeight - chipSide) / 2, chipSide, chipSide});
        x += chipSide + padding;
    }
    const double textX = padding + buttonSide + padding;
    const double send = sendWidth();
    const double textWidth = std::max(1.0, width - textX - send - 2 * padding);
    const double height = textHeight(textWidth);
    const double rowHeight = std::max(buttonSide, height);
    const double top = strip + padding;
    attachButton->setFrame({padding, top + rowHeight - buttonSide, buttonSide, buttonSide});
    textView->setFrame({textX, top + (rowHeight - height) / 2, textWidth, height});
    placeholderLabel->setFrame({textX + textView->textInsets.left, textView->frame().minY() + textView->textInsets.top,
                                textWidth - textView->textInsets.left - textView->textInsets.right,
                                height - textView->textInsets.top - textView->textInsets.bottom});
    sendButton->setFrame({width - padding - send, top + rowHeight - buttonSide, send, buttonSide});
}

} // namespace belvakit
