#include "belvakit/helpcenter/article_attachments.hpp"
#include "belvakit/helpcenter/format_fill.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "uikit/table_view.hpp"

#include <cmath>

namespace belvakit {

namespace {

constexpr const char* cellClass = "CRVSupportAttachmentCell";

template <class T>
std::optional<T> appearance(std::string_view property) {
    return CRVUIUtil::appearanceValue<T>(cellClass, property);
}

// Applies `value` to the stored property and, through `apply`, to the view, only when it changes.
template <class T, class Apply>
void setIfDiffers(std::optional<T>& stored, const T& value, Apply apply) {
    if (stored && *stored == value) return;
    stored = value;
    apply(value);
}

} // namespace

const std::string& CRVSupportAttachmentCell::cellIdentifier() {
    static const std::string identifier = cellClass;
    return identifier;
}

CRVSupportAttachmentCell::CRVSupportAttachmentCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : uikit::TableViewCell(style, std::move(reuseIdentifier)),
      title_(uikit::make<uikit::Label>()),
      fileSize_(uikit::make<uikit::Label>()) {
    setBackgroundColor(whiteColor(0.94, 1.0));
    fileSize_->setAccessibilityIdentifier("CRVfileSize");
    fileSize_->setFont(platform::Font::systemFont(12.0));
    fileSize_->setTextAlignment(uikit::TextAlignment::right);
    title_->setAccessibilityIdentifier("CRVattachmentTitle");
    contentView()->addSubview(title_);
    contentView()->addSubview(fileSize_);

    if (auto value = appearance<platform::Color>("viewBackgroundColor")) setViewBackgroundColor(*value);
    if (auto value = appearance<platform::Font>("fileSizeLabelFont")) setFileSizeLabelFont(*value);
    if (auto value = appearance<platform::Color>("fileSizeLabelColor")) setFileSizeLabelColor(*value);
    if (auto value = appearance<platform::Color>("fileSizeLabelBackground")) setFileSizeLabelBackground(*value);
    if (auto value = appearance<platform::Font>("titleLabelFont")) setTitleLabelFont(*value);
    if (auto value = appearance<platform::Color>("titleLabelColor")) setTitleLabelColor(*value);
    if (auto value = appearance<platform::Color>("titleLabelBackground")) setTitleLabelBackground(*value);
}

void CRVSupportAttachmentCell::setViewBackgroundColor(const platform::Color& color) {
    setIfDiffers(viewBackgroundColor_, color, [this](const platform::Color& value) { setBackgroundColor(value); });
}
void CRVSupportAttachmentCell::setFileSizeLabelFont(const platform::Font& font) {
    setIfDiffers(fileSizeLabelFont_, font, [this](const platform::Font& value) { fileSize_->setFont(value); });
}
void CRVSupportAttachmentCell::setFileSizeLabelColor(const platform::Color& color) {
    setIfDiffers(fileSizeLabelColor_, color, [this](const platform::Color& value) { fileSize_->setTextColor(value); });
}
void CRVSupportAttachmentCell::setFileSizeLabelBackground(const platform::Color& color) {
    setIfDiffers(fileSizeLabelBackground_, color,
                 [this](const platform::Color& value) { fileSize_->setBackgroundColor(value); });
}
void CRVSupportAttachmentCell::setTitleLabelFont(const platform::Font& font) {
    setIfDiffers(titleLabelFont_, font, [this](const platform::Font& value) { title_->setFont(value); });
}
void CRVSupportAttachmentCell::setTitleLabelColor(const platform::Color& color) {
    setIfDiffers(titleLabelColor_, color, [this](const platform::Color& value) { title_->setTextColor(value); });
}
void CRVSupportAttachmentCell::setTitleLabelBackground(const platform::Color& color) {
    setIfDiffers(titleLabelBackground_, color, [this](const platform::Color& value) { title_->setBackgroundColor(value); });
}

double CRVSupportAttachmentCell::cellHeightForWidth(double width) const {
    const double fitWidth = std::max(1.0, width - totalPaddingWidth);
    const auto fitted = [fitWidth](const uikit::Label& label) { return label.sizeThatFits({fitWidth, 0}).height; };
    return std::ceil(totalPaddingHeight + fitted(*title_) + fitted(*fileSize_));
}

void CRVSupportAttachmentCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double height = frame().height();
    const double w = frame().width() - 65.0;
    title_->setFrame({15.0, 0, std::max(0.0, w - 30.0), height});
    fileSize_->setFrame({w - 15.0, 0, 65.0, height});
}

std::string attachmentAccessibilityLabel(const std::string& fileName, const std::string& fileSize) {
    return fillFormat(localized(LocalizedKey::helpCenterArticleAttachmentAccessibility),
                      {fillFormat("%@. %@", {fileName, fileSize})});
}

std::shared_ptr<CRVHelpCenterAttachmentsDataSource> CRVHelpCenterAttachmentsDataSource::initWithArticleId(
    std::string articleId) {
    return create<CRVHelpCenterAttachmentsDataSource>(std::move(articleId));
}

void CRVHelpCenterAttachmentsDataSource::reloadData() {
    ++*pending_;
    provider->getAttachmentWithArticleId(
        articleId, [callback = callback, pending = pending_](std::optional<std::vector<dastrel::CRVHelpCenterAttachment>> attachments,
                                                             std::optional<dastrel::ProviderError> error) {
            --*pending;
            if (!callback) return;
            if (!attachments) return callback(std::nullopt, std::move(error));
            callback(std::vector<std::any>(attachments->begin(), attachments->end()), std::move(error));
        });
}

std::shared_ptr<uikit::TableViewCell> CRVHelpCenterAttachmentsDataSource::cellForRowAt(uikit::TableView& table,
                                                                                        const uikit::IndexPath& indexPath) {
    auto cell = table.dequeueReusableCell(cellIdentifierForDataSource(), indexPath);
    const auto item = itemAtIndexPath(indexPath);
    const auto* attachment = std::any_cast<dastrel::CRVHelpCenterAttachment>(&item);
    auto* attachmentCell = dynamic_cast<CRVSupportAttachmentCell*>(cell.get());
    if (!attachment || !attachmentCell) return cell;
    const std::string size = attachment->humanReadableFileSize();
    attachmentCell->title()->setText(attachment->file_name);
    attachmentCell->fileSize()->setText(size);
    attachmentCell->setAccessibilityLabel(attachmentAccessibilityLabel(attachment->file_name, size));
    return cell;
}

} // namespace belvakit
