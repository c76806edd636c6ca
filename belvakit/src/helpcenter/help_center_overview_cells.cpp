#include "belvakit/helpcenter/help_center_overview_cells.hpp"
#include "belvakit/helpcenter/format_fill.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/resources/image_resources.hpp"
#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/ui_util.hpp"

#include <cmath>

namespace belvakit {

namespace {

constexpr double sidePadding = 15.0;

double hairline() { return CRVUIUtil::separatorHeightForScreenScale(); }

double fittedHeight(const uikit::Label& label, double width) {
    return std::ceil(label.sizeThatFits({std::max(width, 0.0), uikit::noIntrinsicMetric}).height);
}

std::shared_ptr<uikit::Label> multilineLabel(const char* identifier) {
    auto label = uikit::make<uikit::Label>();
    label->setNumberOfLines(0);
    label->setAccessibilityIdentifier(identifier);
    label->setTextAlignment(uikit::TextAlignment::natural);
    return label;
}

} // namespace

CRVHelpCenterOverviewHeaderView::CRVHelpCenterOverviewHeaderView()
    : title(multilineLabel("CRVcategoryTitle")), topSeparator(uikit::make<uikit::View>()),
      bottomSeparator(uikit::make<uikit::View>()) {
    addSubview(title);
    addSubview(topSeparator);
    addSubview(bottomSeparator);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewHeaderView::prepareWithCategory(const dastrel::CRVHelpCenterCategoryViewModel& category) {
    title->setText(category.name);
    setAccessibilityLabel(fillFormat(localized(LocalizedKey::helpCenterCategoryAccessibility), {category.name}));
}

double CRVHelpCenterOverviewHeaderView::heightForHeaderWidth(double width) {
    return fittedHeight(*title, width - 2 * sidePadding) + 32.0;
}

void CRVHelpCenterOverviewHeaderView::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.secondaryBackgroundColor);
    title->setBackgroundColor(current.secondaryBackgroundColor);
    title->setTextColor(current.primaryTextColor);
    title->setFont(current.boldSubHeaderFont);
    topSeparator->setBackgroundColor(current.separatorColor);
    bottomSeparator->setBackgroundColor(current.separatorColor);
}

void CRVHelpCenterOverviewHeaderView::layoutSubviews() {
    uikit::View::layoutSubviews();
    const auto size = frame().size;
    const double height = fittedHeight(*title, size.width - 2 * sidePadding);
    title->setFrame({sidePadding, size.height - 8.0 - height, size.width - 2 * sidePadding, height});
    topSeparator->setFrame({0, 0, size.width, hairline()});
    bottomSeparator->setFrame({0, size.height - hairline(), size.width, hairline()});
}

CRVHelpCenterOverviewSectionTableViewCell::CRVHelpCenterOverviewSectionTableViewCell(uikit::TableViewCellStyle style,
                                                                                     std::string identifier)
    : uikit::TableViewCell(style, std::move(identifier)), title(multilineLabel("CRVsectionTitle")),
      separatorView(uikit::make<uikit::View>()), separatorHeight(hairline()) {
    contentView()->addSubview(title);
    contentView()->addSubview(separatorView);
    selectionStyle = uikit::TableViewCellSelectionStyle::none;
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewSectionTableViewCell::prepareWithModel(const dastrel::CRVHelpCenterSectionViewModel& section,
                                                                 const uikit::IndexPath& indexPath) {
    title->setText(section.name);
    setAccessibilityLabel(fillFormat(localized(LocalizedKey::helpCenterSectionAccessibility), {section.name}));
    separatorView->setHidden(indexPath.row == 0);
}

double CRVHelpCenterOverviewSectionTableViewCell::heightOfCellForWidth(double width) {
    return fittedHeight(*title, width - 2 * sidePadding) + 26.0;
}

void CRVHelpCenterOverviewSectionTableViewCell::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.primaryBackgroundColor);
    contentView()->setBackgroundColor(current.primaryBackgroundColor);
    title->setTextColor(current.primaryTextColor);
    title->setFont(current.boldSubHeaderFont);
    separatorView->setBackgroundColor(current.separatorColor);
}

void CRVHelpCenterOverviewSectionTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const auto size = contentView()->frame().size;
    title->setFrame({sidePadding, 16.0, size.width - 2 * sidePadding, fittedHeight(*title, size.width - 2 * sidePadding)});
    separatorView->setFrame({sidePadding, 0, size.width - sidePadding, separatorHeight});
}

CRVHelpCenterOverviewArticleTableViewCell::CRVHelpCenterOverviewArticleTableViewCell(uikit::TableViewCellStyle style,
                                                                                     std::string identifier)
    : uikit::TableViewCell(style, std::move(identifier)), title(multilineLabel("CRVarticleTitle")) {
    contentView()->addSubview(title);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewArticleTableViewCell::prepareWithModel(const dastrel::CRVHelpCenterArticleViewModel& article) {
    title->setText(article.name);
    setAccessibilityLabel(fillFormat(localized(LocalizedKey::helpCenterArticleAccessibility), {article.name}));
}

double CRVHelpCenterOverviewArticleTableViewCell::heightOfCellForWidth(double width) {
    return fittedHeight(*title, width - 2 * sidePadding) + 16.0;
}

void CRVHelpCenterOverviewArticleTableViewCell::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.primaryBackgroundColor);
    contentView()->setBackgroundColor(current.primaryBackgroundColor);
    title->setTextColor(current.secondaryTextColor);
    title->setFont(current.subHeaderFont);
}

void CRVHelpCenterOverviewArticleTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const auto size = contentView()->frame().size;
    title->setFrame({sidePadding, 8.0, size.width - 2 * sidePadding, fittedHeight(*title, size.width - 2 * sidePadding)});
}

CRVHelpCenterOverviewSeeAllTableViewCell::CRVHelpCenterOverviewSeeAllTableViewCell(uikit::TableViewCellStyle style,
                                                                                   std::string identifier)
    : uikit::TableViewCell(style, std::move(identifier)), detailTitle(multilineLabel("CRVseeAllTitle")),
      arrow(uikit::make<uikit::ImageView>()) {
    detailTitle->setNumberOfLines(1);
    arrow->setImage(resourceImage("icoDown"));
    arrow->contentMode = uikit::ContentMode::center;
    contentView()->addSubview(detailTitle);
    contentView()->addSubview(arrow);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewSeeAllTableViewCell::prepareWithModel(const dastrel::CRVHelpCenterSectionViewModel& section) {
    detailTitle->setText(section.detailTitle + " ");
    setAccessibilityLabel(section.detailTitle);
    setNeedsLayout();
}

void CRVHelpCenterOverviewSeeAllTableViewCell::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.primaryBackgroundColor);
    contentView()->setBackgroundColor(current.primaryBackgroundColor);
    detailTitle->setFont(current.boldSubHeaderFont);
    detailTitle->setTextColor(Theme::currentTheme().primaryColor());
    arrow->setTintColor(Theme::currentTheme().primaryColor());
}

void CRVHelpCenterOverviewSeeAllTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const auto size = contentView()->frame().size;
    const double arrowSide = 12.0;
    const double textWidth = std::min(detailTitle->sizeThatFits({size.width, size.height}).width,
                                      std::max(size.width - 2 * sidePadding - arrowSide, 0.0));
    detailTitle->setFrame({sidePadding, 0, textWidth, size.height});
    arrow->setFrame({sidePadding + textWidth, (size.height - arrowSide) / 2, arrowSide, arrowSide});
}

CRVHelpCenterOverviewLoadingTableViewCell::CRVHelpCenterOverviewLoadingTableViewCell(uikit::TableViewCellStyle style,
                                                                                     std::string identifier)
    : uikit::TableViewCell(style, std::move(identifier)), spinner(uikit::make<uikit::ActivityIndicatorView>(2)) {
    spinner->setAccessibilityIdentifier("CRVseeAllSpinner");
    contentView()->addSubview(spinner);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewLoadingTableViewCell::applyTheme(const CRVLegacyTheme& current) {
    contentView()->setBackgroundColor(current.primaryBackgroundColor);
    spinner->setStyle(CRVAppearanceApplicator::isDarkTheme() ? 1 : 2);
}

void CRVHelpCenterOverviewLoadingTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const auto size = contentView()->frame().size;
    spinner->setFrame({(size.width - 20) / 2, (size.height - 20) / 2, 20, 20});
}

CRVHelpCenterOverviewSpacerTableViewCell::CRVHelpCenterOverviewSpacerTableViewCell(uikit::TableViewCellStyle style,
                                                                                   std::string identifier)
    : uikit::TableViewCell(style, std::move(identifier)), topLine(uikit::make<uikit::View>()),
      bottomLine(uikit::make<uikit::View>()) {
    selectionStyle = uikit::TableViewCellSelectionStyle::none;
    contentView()->addSubview(topLine);
    contentView()->addSubview(bottomLine);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewSpacerTableViewCell::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.secondaryBackgroundColor);
    contentView()->setBackgroundColor(current.secondaryBackgroundColor);
    topLine->setBackgroundColor(current.separatorColor);
    bottomLine->setBackgroundColor(current.separatorColor);
}

void CRVHelpCenterOverviewSpacerTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const auto size = contentView()->frame().size;
    topLine->setFrame({0, 0, size.width, hairline()});
    bottomLine->setFrame({0, size.height - hairline(), size.width, hairline()});
}

CRVHelpCenterOverviewFooterView::CRVHelpCenterOverviewFooterView() : uikit::View({0, 0, 320, 20}), line(uikit::make<uikit::View>()) {
    addSubview(line);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

void CRVHelpCenterOverviewFooterView::applyTheme(const CRVLegacyTheme& current) {
    setBackgroundColor(current.secondaryBackgroundColor);
    line->setBackgroundColor(current.separatorColor);
}

void CRVHelpCenterOverviewFooterView::layoutSubviews() {
    uikit::View::layoutSubviews();
    line->setFrame({0, 0, frame().width(), hairline()});
}

} // namespace belvakit
