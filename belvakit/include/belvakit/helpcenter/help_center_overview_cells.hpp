#pragma once

#include "belvakit/toolkit/theme.hpp"
#include "dastrel/help_center.hpp"
#include "uikit/image_view.hpp"
#include "uikit/index_path.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view_cell.hpp"

#include <memory>

namespace belvakit {

// The views of the overview's table. Each reads the current legacy theme through `applyTheme`.

// A category's header.
class CRVHelpCenterOverviewHeaderView final : public uikit::View {
public:
    CRVHelpCenterOverviewHeaderView();
    std::string_view className() const override { return "CRVHelpCenterOverviewHeaderView"; }
    void prepareWithCategory(const dastrel::CRVHelpCenterCategoryViewModel& category);
    double heightForHeaderWidth(double width);
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::Label> title;
    const std::shared_ptr<uikit::View> topSeparator;
    const std::shared_ptr<uikit::View> bottomSeparator;
};

// A section's title row.
class CRVHelpCenterOverviewSectionTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterOverviewSectionTableViewCell(uikit::TableViewCellStyle style = {}, std::string identifier = {});
    std::string_view className() const override { return "CRVHelpCenterOverviewSectionTableViewCell"; }
    void prepareWithModel(const dastrel::CRVHelpCenterSectionViewModel& section, const uikit::IndexPath& indexPath);
    double heightOfCellForWidth(double width);
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::Label> title;
    // The line above the title; hidden on the first row of a category.
    const std::shared_ptr<uikit::View> separatorView;
    // One device pixel.
    double separatorHeight;
};

class CRVHelpCenterOverviewArticleTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterOverviewArticleTableViewCell(uikit::TableViewCellStyle style = {}, std::string identifier = {});
    std::string_view className() const override { return "CRVHelpCenterOverviewArticleTableViewCell"; }
    void prepareWithModel(const dastrel::CRVHelpCenterArticleViewModel& article);
    double heightOfCellForWidth(double width);
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::Label> title;
};

// The row that loads the rest of a section: its detail title and a down arrow.
class CRVHelpCenterOverviewSeeAllTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterOverviewSeeAllTableViewCell(uikit::TableViewCellStyle style = {}, std::string identifier = {});
    std::string_view className() const override { return "CRVHelpCenterOverviewSeeAllTableViewCell"; }
    void prepareWithModel(const dastrel::CRVHelpCenterSectionViewModel& section);
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::Label> detailTitle;
    const std::shared_ptr<uikit::ImageView> arrow;
};

class CRVHelpCenterOverviewLoadingTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterOverviewLoadingTableViewCell(uikit::TableViewCellStyle style = {}, std::string identifier = {});
    std::string_view className() const override { return "CRVHelpCenterOverviewLoadingTableViewCell"; }
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::ActivityIndicatorView> spinner;
};

class CRVHelpCenterOverviewSpacerTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterOverviewSpacerTableViewCell(uikit::TableViewCellStyle style = {}, std::string identifier = {});
    std::string_view className() const override { return "CRVHelpCenterOverviewSpacerTableViewCell"; }
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::View> topLine;
    const std::shared_ptr<uikit::View> bottomLine;
};

class CRVHelpCenterOverviewFooterView final : public uikit::View {
public:
    CRVHelpCenterOverviewFooterView();
    std::string_view className() const override { return "CRVHelpCenterOverviewFooterView"; }
    void applyTheme(const CRVLegacyTheme& theme);
    void layoutSubviews() override;

    const std::shared_ptr<uikit::View> line;
};

} // namespace belvakit
