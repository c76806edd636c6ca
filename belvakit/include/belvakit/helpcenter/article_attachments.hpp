#pragma once

#include "belvakit/helpcenter/help_center_data_source.hpp"
#include "platform/color.hpp"
#include "platform/font.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view_cell.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// One attachment of an article: its file name and, at the trailing edge, its size. Its looks come
// from the appearance (a host's values, then the theme's palette) when it is made.
class CRVSupportAttachmentCell final : public uikit::TableViewCell {
public:
    static const std::string& cellIdentifier();
    static constexpr double totalPaddingWidth = 30.0;
    static constexpr double totalPaddingHeight = totalPaddingWidth + 15.0;

    explicit CRVSupportAttachmentCell(uikit::TableViewCellStyle style = uikit::TableViewCellStyle::defaultStyle,
                                      std::string reuseIdentifier = cellIdentifier());
    std::string_view className() const override { return "CRVSupportAttachmentCell"; }

    const std::shared_ptr<uikit::Label>& title() const { return title_; }
    const std::shared_ptr<uikit::Label>& fileSize() const { return fileSize_; }

    // Appearance properties; a setter applies only a value that differs.
    const std::optional<platform::Color>& viewBackgroundColor() const { return viewBackgroundColor_; }
    void setViewBackgroundColor(const platform::Color& color);
    const std::optional<platform::Font>& fileSizeLabelFont() const { return fileSizeLabelFont_; }
    void setFileSizeLabelFont(const platform::Font& font);
    const std::optional<platform::Color>& fileSizeLabelColor() const { return fileSizeLabelColor_; }
    void setFileSizeLabelColor(const platform::Color& color);
    const std::optional<platform::Color>& fileSizeLabelBackground() const { return fileSizeLabelBackground_; }
    void setFileSizeLabelBackground(const platform::Color& color);
    const std::optional<platform::Font>& titleLabelFont() const { return titleLabelFont_; }
    void setTitleLabelFont(const platform::Font& font);
    const std::optional<platform::Color>& titleLabelColor() const { return titleLabelColor_; }
    void setTitleLabelColor(const platform::Color& color);
    const std::optional<platform::Color>& titleLabelBackground() const { return titleLabelBackground_; }
    void setTitleLabelBackground(const platform::Color& color);

    // The padding and both labels fitted to the width less the padding, rounded up.
    double cellHeightForWidth(double width) const;
    void layoutSubviews() override;

private:
    std::shared_ptr<uikit::Label> title_;
    std::shared_ptr<uikit::Label> fileSize_;
    std::optional<platform::Color> viewBackgroundColor_;
    std::optional<platform::Font> fileSizeLabelFont_;
    std::optional<platform::Color> fileSizeLabelColor_;
    std::optional<platform::Color> fileSizeLabelBackground_;
    std::optional<platform::Font> titleLabelFont_;
    std::optional<platform::Color> titleLabelColor_;
    std::optional<platform::Color> titleLabelBackground_;
};

// The attachments of one article, fetched from the Help Center provider.
class CRVHelpCenterAttachmentsDataSource final : public CRVHelpCenterDataSource {
public:
    static std::shared_ptr<CRVHelpCenterAttachmentsDataSource> initWithArticleId(std::string articleId);
    explicit CRVHelpCenterAttachmentsDataSource(std::string id) : articleId(std::move(id)) {}

    const std::string articleId;
    // Fetches asked for and not yet answered.
    int pendingFetches() const { return *pending_; }

    void reloadData() override;
    std::string cellIdentifierForDataSource() const override { return CRVSupportAttachmentCell::cellIdentifier(); }
    // Only attachments are filled in: name, size, and an accessibility label naming both.
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;

private:
    // Shared with the answers, which may come after the data source has gone.
    std::shared_ptr<int> pending_ = std::make_shared<int>(0);
};

// "ios.CRVHelpCenter.article.attachment.accessibility" with "name. size" in its place.
std::string attachmentAccessibilityLabel(const std::string& fileName, const std::string& fileSize);

} // namespace belvakit
