#include "belvakit/Request/conversation/message_cells.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/richtext/message_text.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/corvane.hpp"
#include "platform/calendar.hpp"
#include "uikit/application.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace belvakit {

namespace {

constexpr double margin = 12;
constexpr double paddingH = 12;
constexpr double paddingV = 8;
constexpr double widestBubble = 0.75;  // of the cell's width
constexpr double rowGap = 2;
constexpr double groupGap = 8;         // after the last row of a group
constexpr double statusGap = 2;
constexpr double retrySize = 26;
constexpr double retryGap = 6;
constexpr double iconSide = 32;

platform::Color agentBubbleColor() { return {0.93, 0.93, 0.94, 1}; }
platform::Color errorColor() { return platform::Color::fromRGB(214, 48, 49); }

// The user's text in the bubble's colour; links keep theirs.
platform::AttributedString recolored(const platform::AttributedString& text, const platform::Color& color) {
    platform::AttributedString out;
    for (const auto& run : text.runs()) {
        auto attributes = run.attributes;
        if (!attributes.find(platform::linkAttributeName)) attributes.set(platform::foregroundColorAttributeName, color);
        out.append(std::string_view(text.string()).substr(run.range.location, run.range.length), attributes);
    }
    return out;
}

double bubbleLimit(double width) { return std::max(60.0, std::floor(width * widestBubble)); }

bool endOfGroup(const std::optional<Message>& message) { return message && isEndOfGroup(*message); }

} // namespace

// MessageTextView

MessageTextView::MessageTextView() {
    setNumberOfLines(0);
    setUserInteractionEnabled(false);
}

void MessageTextView::setAttributedText(platform::AttributedString text) {
    links_.clear();
    for (const auto& run : text.runs())
        if (const auto* url = run.attributes.get<platform::URL>(platform::linkAttributeName))
            if (links_.empty() || !(links_.back() == *url)) links_.push_back(*url);
    setUserInteractionEnabled(!links_.empty());
    uikit::Label::setAttributedText(std::move(text));
}

bool MessageTextView::activateLink(const platform::URL& url) {
    if (shouldInteractWithURL && !shouldInteractWithURL(url)) return false;
    uikit::Application::openURL(url);
    return true;
}

bool MessageTextView::handleTap() {
    if (links_.empty()) return false;
    activateLink(links_.front());
    return true;
}

// BubbleView

BubbleView::BubbleView() {
    setCornerRadius(14);
    setClipsToBounds(true);
}

// StatusView

StatusView::StatusView()
    : contentContainer(uikit::make<uikit::View>()), subscriptLabel(uikit::make<uikit::Label>()) {
    contentView = contentContainer;
    subscriptLabel->setUserInteractionEnabled(false);
    contentContainer->addSubview(subscriptLabel);
    addSubview(contentContainer);
    setUserInteractionEnabled(false);
}

StatusView::Kind StatusView::kindFor(const Message& message) {
    const auto delivery = status(message);
    if (!delivery) return belvakit::isEndOfGroup(message) ? Kind::agentName : Kind::none;
    switch (*delivery) {
    case DeliveryStatus::failed: return Kind::error;
    case DeliveryStatus::lastDelivered: return Kind::delivered;
    case DeliveryStatus::notDelivered: return belvakit::isEndOfGroup(message) ? Kind::sending : Kind::none;
    case DeliveryStatus::delivered: return Kind::none;
    }
    return Kind::none;
}

void StatusView::show(Kind kind, const Message& message) {
    kind_ = kind;
    isAgent = !status(message).has_value();
    isEndOfGroup = belvakit::isEndOfGroup(message);
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    subscriptLabel->setFont(theme->metaTextFont);
    subscriptLabel->setTextColor(kind == Kind::error ? errorColor() : theme->metaTextColor);
    subscriptLabel->setTextAlignment(isAgent ? uikit::TextAlignment::left : uikit::TextAlignment::right);
    switch (kind) {
    case Kind::none:
        subscriptLabel->setText("");
        subscriptLabel->setAccessibilityIdentifier("");
        break;
    case Kind::delivered:
        subscriptLabel->setText(localized(LocalizedKey::requestsCreateRequestMessageSent));
        subscriptLabel->setAccessibilityIdentifier("deliveredLabel");
        break;
    case Kind::error:
        subscriptLabel->setText(localized(LocalizedKey::requestsCreateRequestCellError));
        subscriptLabel->setAccessibilityIdentifier("CRVerrorStatusView");
        break;
    case Kind::sending:
        subscriptLabel->setText(localized(LocalizedKey::requestsCreateRequestSending));
        subscriptLabel->setAccessibilityIdentifier("CRVsendingStatusView");
        break;
    case Kind::agentName:
        subscriptLabel->setText(message.visit([](const auto& record) -> std::string {
            if constexpr (IdentifiableUserMessage<std::decay_t<decltype(record)>>)
                return record.name;
            else
                return {};
        }));
        subscriptLabel->setAccessibilityIdentifier("CRVagentNameStatusView");
        break;
    }
    setHidden(kind == Kind::none);
    setNeedsLayout();
}

uikit::Size StatusView::sizeThatFits(uikit::Size size) const {
    if (kind_ == Kind::none) return {0, 0};
    const double available = std::max(0.0, size.width - 2 * horizontalPadding);
    const auto text = subscriptLabel->sizeThatFits({available, 0});
    return {std::min(size.width, text.width + 2 * horizontalPadding), text.height};
}

void StatusView::layoutSubviews() {
    uikit::View::layoutSubviews();
    contentContainer->setFrame(bounds());
    subscriptLabel->setFrame({horizontalPadding, 0, std::max(0.0, bounds().width() - 2 * horizontalPadding),
                              bounds().height()});
}

// MessageCell

void MessageCell::buildStatusAndRetry() {
    selectionStyle = uikit::TableViewCellSelectionStyle::none;
    statusView_ = uikit::make<StatusView>();
    contentView()->addSubview(statusView_);
    errorButton_ = uikit::make<uikit::Button>(uikit::ButtonType::custom);
    errorButton_->setAccessibilityIdentifier("CRVretryButton");
    errorButton_->setTitle("!");
    errorButton_->setTitleColor(platform::Color::white());
    errorButton_->titleLabel()->setFont(platform::Font::boldSystemFont(15));
    errorButton_->setBackgroundColor(errorColor());
    errorButton_->setCornerRadius(retrySize / 2);
    errorButton_->setAccessibilityLabel(localized(LocalizedKey::requestsCreateRequestFailedRetry));
    errorButton_->setHidden(true);
    errorButton_->addTarget(uikit::ControlEvent::touchUpInside, [this] {
        if (message_ && errorButtonTapHandler) errorButtonTapHandler(*message_);
    });
    contentView()->addSubview(errorButton_);
}

void MessageCell::setMessage(const Message& message) {
    message_ = message;
    statusView_->show(StatusView::kindFor(message), message);
    errorButton_->setHidden(!failed());
    setNeedsLayout();
}

void MessageCell::prepareForReuse() {
    uikit::TableViewCell::prepareForReuse();
    message_.reset();
}

bool MessageCell::isAgent() const { return message_ && !status(*message_).has_value(); }

bool MessageCell::failed() const { return message_ && status(*message_) == DeliveryStatus::failed; }

void MessageCell::tapped() {
    if (message_ && cellTapHandler) cellTapHandler(*message_);
}

double MessageCell::placeStatus(const uikit::Rect& bubble, double width, bool layOut) const {
    double bottom = bubble.maxY();
    if (statusView_->kind() != StatusView::Kind::none) {
        const auto size = statusView_->sizeThatFits({width - 2 * margin, 0});
        const double x = isAgent() ? bubble.minX() : std::max(margin, bubble.maxX() - size.width);
        if (layOut) statusView_->setFrame({x, bottom + statusGap, size.width, size.height});
        bottom += statusGap + size.height;
    }
    if (layOut && failed())
        errorButton_->setFrame({bubble.minX() - retryGap - retrySize, bubble.midY() - retrySize / 2, retrySize, retrySize});
    return bottom + (endOfGroup(message_) ? groupGap : rowGap);
}

// TextCell

TextCell::TextCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : MessageCell(style, std::move(reuseIdentifier)), messageTextView(uikit::make<MessageTextView>()),
      messageContainer(uikit::make<uikit::View>()), bubbleView(uikit::make<BubbleView>()) {
    bubbleView->addSubview(messageTextView);
    messageContainer->addSubview(bubbleView);
    contentView()->addSubview(messageContainer);
    bubbleView->addTapAction([this] { tapped(); });
    messageTextView->setAccessibilityIdentifier("CRVmessageText");
    messageTextView->shouldInteractWithURL = [this](const platform::URL& url) { return shouldOpen(url); };
    buildStatusAndRetry();
}

corvane::ActionHandlerRegistry* TextCell::actionHandlerRegistry() {
    const auto core = corvane::Corvane::instance();
    return core ? &core->actionHandlerRegistry() : nullptr;
}

bool TextCell::shouldOpen(const platform::URL& url) {
    auto* registry = actionHandlerRegistry();
    auto handler = registry ? registry->handler(url.absoluteString()) : nullptr;
    if (!handler) return true;
    if (openHelpCenterWithArticleId) openHelpCenterWithArticleId(std::move(handler), url);
    return false;
}

void TextCell::setMessage(const Message& message) {
    const auto* body = bodyOf(message);
    const std::string text = body ? *body : std::string();
    if (const auto* agent = message.getIf<AgentMessage>()) {
        // A body restored from disk has an empty html body: plain text, not a parse.
        const auto html = agent->htmlBody && !agent->htmlBody->empty() ? agent->htmlBody : std::nullopt;
        messageTextView->setAttributedText(messageCellText(true, agent->body, html));
        bubbleView->setBackgroundColor(agentBubbleColor());
        messageTextView->setAccessibilityLabel(localized(LocalizedKey::requestsConversationsAgentTextAccessibility));
    } else {
        messageTextView->setAttributedText(recolored(plainMessageText(text), platform::Color::white()));
        auto color = Theme::currentTheme().primaryColor();
        if (status(message) == DeliveryStatus::failed) color.alpha = 0.55;
        bubbleView->setBackgroundColor(color);
        messageTextView->setAccessibilityLabel(localized(LocalizedKey::requestsConversationsUserTextAccessibility));
    }
    MessageCell::setMessage(message);
}

uikit::Rect TextCell::bubbleFrame(double width) const {
    const double limit = bubbleLimit(width - 2 * margin) - 2 * paddingH;
    const auto text = messageTextView->sizeThatFits({std::max(1.0, limit), 0});
    const double bubbleWidth = std::ceil(text.width) + 2 * paddingH;
    const double bubbleHeight = std::ceil(std::max(text.height, 1.0)) + 2 * paddingV;
    const double x = isAgent() ? margin : width - margin - bubbleWidth;
    return {x, rowGap, bubbleWidth, bubbleHeight};
}

uikit::Size TextCell::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    return {width, placeStatus(bubbleFrame(width), width, false)};
}

void TextCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double width = bounds().width();
    const auto bubble = bubbleFrame(width);
    messageContainer->setFrame(contentView()->bounds());
    bubbleView->setFrame(bubble);
    messageTextView->setFrame({paddingH, paddingV, bubble.width() - 2 * paddingH, bubble.height() - 2 * paddingV});
    placeStatus(bubble, width, true);
}

// ImageCell

ImageCell::ImageCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : MessageCell(style, std::move(reuseIdentifier)), imageHolderView(uikit::make<uikit::View>()),
      attachmentImageView(uikit::make<uikit::ImageView>()), placeholderView(uikit::make<uikit::View>()) {
    imageHolderView->setCornerRadius(12);
    imageHolderView->setClipsToBounds(true);
    imageHolderView->setAccessibilityIdentifier("CRVimageAttachment");
    placeholderView->setBackgroundColor(platform::Color{0.88, 0.88, 0.9, 1});
    placeholderView->setUserInteractionEnabled(false);
    attachmentImageView->contentMode = uikit::ContentMode::scaleAspectFill;
    imageHolderView->addSubview(placeholderView);
    imageHolderView->addSubview(attachmentImageView);
    imageHolderView->addTapAction([this] { tapped(); });
    contentView()->addSubview(imageHolderView);
    buildStatusAndRetry();
}

void ImageCell::setMessage(const Message& message) {
    platform::ImagePtr picture;
    message.visit([&](const auto& record) {
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>) {
            picture = record.image ? record.image : record.thumbnailImage;
            imageHolderView->setAccessibilityLabel(record.filename);
        }
    });
    attachmentImageView->setImage(picture);
    attachmentImageView->setHidden(!picture);
    placeholderView->setHidden(picture != nullptr);
    imageHolderView->setAlpha(status(message) == DeliveryStatus::failed ? 0.55 : 1.0);
    MessageCell::setMessage(message);
}

uikit::Rect ImageCell::imageFrame(double cellWidth) const {
    const double basis = width.value_or(cellWidth);
    const double widest = std::max(40.0, std::min(basis * 0.6, cellWidth - 2 * margin - retrySize - retryGap));
    const double tallest = std::max(40.0, std::min(basis * 0.8, 320.0));
    platform::Size natural{4, 3};
    if (message_) {
        message_->visit([&](const auto& record) {
            if constexpr (ImageMessage<std::decay_t<decltype(record)>>) {
                if (record.imageSize.width > 0 && record.imageSize.height > 0)
                    natural = record.imageSize;
                else if (const auto& shown = record.image ? record.image : record.thumbnailImage)
                    if (shown->width > 0 && shown->height > 0) natural = shown->size();
            }
        });
    }
    double w = std::min(widest, std::max(natural.width, 40.0));
    double h = w * natural.height / natural.width;
    if (h > tallest) {
        h = tallest;
        w = std::max(40.0, h * natural.width / natural.height);
    }
    w = std::floor(w);
    h = std::floor(h);
    const double x = isAgent() ? margin : cellWidth - margin - w;
    return {x, rowGap, w, h};
}

uikit::Size ImageCell::sizeThatFits(uikit::Size size) const {
    const double cellWidth = size.width > 0 ? size.width : frame().width();
    return {cellWidth, placeStatus(imageFrame(cellWidth), cellWidth, false)};
}

void ImageCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double cellWidth = bounds().width();
    const auto frame = imageFrame(cellWidth);
    imageHolderView->setFrame(frame);
    const uikit::Rect inside{0, 0, frame.width(), frame.height()};
    placeholderView->setFrame(inside);
    attachmentImageView->setFrame(inside);
    placeStatus(frame, cellWidth, true);
}

// FileCell

FileCell::FileCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : MessageCell(style, std::move(reuseIdentifier)), attachmentView(uikit::make<uikit::View>()),
      bubbleView(uikit::make<BubbleView>()), iconView(uikit::make<uikit::ImageView>()),
      filenameLabel(uikit::make<uikit::Label>()), sizeLabel(uikit::make<uikit::Label>()) {
    attachmentView->setAccessibilityIdentifier("CRVfileAttachment");
    iconView->contentMode = uikit::ContentMode::scaleAspectFit;
    filenameLabel->setNumberOfLines(1);
    filenameLabel->setUserInteractionEnabled(false);
    sizeLabel->setUserInteractionEnabled(false);
    for (const auto& view : std::vector<std::shared_ptr<uikit::View>>{iconView, filenameLabel, sizeLabel})
        attachmentView->addSubview(view);
    bubbleView->addSubview(attachmentView);
    bubbleView->addTapAction([this] { tapped(); });
    contentView()->addSubview(bubbleView);
    buildStatusAndRetry();
}

void FileCell::setMessage(const Message& message) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    const bool agent = !status(message).has_value();
    const auto text = agent ? theme->primaryTextColor : platform::Color::white();
    message.visit([&](const auto& record) {
        if constexpr (FileMessage<std::decay_t<decltype(record)>>) {
            filenameLabel->setText(record.filename);
            sizeLabel->setText(fileSizeText(record.size));
            iconView->setImage(icon(record.fileType));
            attachmentView->setAccessibilityLabel(
                localized(agent ? LocalizedKey::requestsConversationsAgentFileAccessibility
                                : LocalizedKey::requestsConversationsUserFileAccessibility));
        }
    });
    filenameLabel->setFont(theme->mainFont);
    filenameLabel->setTextColor(text);
    sizeLabel->setFont(theme->metaTextFont);
    sizeLabel->setTextColor(agent ? theme->metaTextColor : platform::Color{1, 1, 1, 0.8});
    auto color = agent ? agentBubbleColor() : Theme::currentTheme().primaryColor();
    if (status(message) == DeliveryStatus::failed) color.alpha = 0.55;
    bubbleView->setBackgroundColor(color);
    MessageCell::setMessage(message);
}

uikit::Rect FileCell::bubbleFrame(double width) const {
    const double limit = bubbleLimit(width - 2 * margin);
    const double textLimit = std::max(1.0, limit - 2 * paddingH - iconSide - 8);
    const auto name = filenameLabel->sizeThatFits({textLimit, 0});
    const auto size = sizeLabel->sizeThatFits({textLimit, 0});
    const double textWidth = std::min(textLimit, std::max(name.width, size.width));
    const double bubbleWidth = std::ceil(2 * paddingH + iconSide + 8 + textWidth);
    const double bubbleHeight = std::ceil(std::max(iconSide, name.height + size.height) + 2 * paddingV);
    const double x = isAgent() ? margin : width - margin - bubbleWidth;
    return {x, rowGap, bubbleWidth, bubbleHeight};
}

uikit::Size FileCell::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    return {width, placeStatus(bubbleFrame(width), width, false)};
}

void FileCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double width = bounds().width();
    const auto bubble = bubbleFrame(width);
    bubbleView->setFrame(bubble);
    attachmentView->setFrame({0, 0, bubble.width(), bubble.height()});
    iconView->setFrame({paddingH, (bubble.height() - iconSide) / 2, iconSide, iconSide});
    const double textX = paddingH + iconSide + 8;
    const double textWidth = std::max(0.0, bubble.width() - textX - paddingH);
    const auto name = filenameLabel->sizeThatFits({textWidth, 0});
    const auto size = sizeLabel->sizeThatFits({textWidth, 0});
    const double top = (bubble.height() - name.height - size.height) / 2;
    filenameLabel->setFrame({textX, top, textWidth, name.height});
    sizeLabel->setFrame({textX, top + name.height, textWidth, size.height});
    placeStatus(bubble, width, true);
}

// SystemMessageCell

SystemMessageCell::SystemMessageCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : uikit::TableViewCell(style, std::move(reuseIdentifier)), label(uikit::make<uikit::Label>()) {
    selectionStyle = uikit::TableViewCellSelectionStyle::none;
    label->setNumberOfLines(0);
    label->setTextAlignment(uikit::TextAlignment::center);
    label->setUserInteractionEnabled(false);
    contentView()->addSubview(label);
}

void SystemMessageCell::configure() {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    label->setFont(theme->metaTextFont);
    label->setTextColor(theme->metaTextColor);
    if (!item) {
        label->setText("");
    } else if (const auto* date = std::get_if<DateItem>(&*item)) {
        label->setText(dateRowText(date->date));
        label->setAccessibilityIdentifier("CRVdateRow");
    } else if (const auto* notice = std::get_if<SystemMessage>(&*item)) {
        label->setText(notice->message);
        label->setAccessibilityIdentifier("CRVsystemMessage");
    }
    setNeedsLayout();
}

uikit::Size SystemMessageCell::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    const auto text = label->sizeThatFits({std::max(1.0, width - 4 * margin), 0});
    return {width, std::ceil(text.height) + 2 * groupGap};
}

void SystemMessageCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double width = bounds().width();
    const auto text = label->sizeThatFits({std::max(1.0, width - 4 * margin), 0});
    label->setFrame({2 * margin, groupGap, std::max(0.0, width - 4 * margin), std::ceil(text.height)});
}

std::string fileSizeText(std::int64_t bytes) {
    if (bytes < 0) bytes = 0;
    char text[32];
    if (bytes < 1024) {
        std::snprintf(text, sizeof text, "%lld B", static_cast<long long>(bytes));
    } else if (bytes < 1024 * 1024) {
        std::snprintf(text, sizeof text, "%.1f KB", static_cast<double>(bytes) / 1024.0);
    } else {
        std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
    }
    return text;
}

std::string dateRowText(Date date) {
    if (auto text = platform::Calendar::current().format(date, "MMMM dd")) return *text;
    return platform::dateDescription(date);
}

} // namespace belvakit
