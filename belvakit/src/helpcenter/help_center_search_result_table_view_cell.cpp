#include "belvakit/helpcenter/help_center_search_result_table_view_cell.hpp"

#include "platform/text_search.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

constexpr double verticalMargin = 12;
constexpr double lineGap = 4;
constexpr uikit::EdgeInsets standardSeparatorInset{0, 15, 0, 0};
constexpr uikit::EdgeInsets standardLayoutMargins{8, 15, 8, 15};

double measuredHeight(const uikit::Label& label, double width) {
    if (label.text().empty()) return 0;
    return std::ceil(label.sizeThatFits({width, 0}).height);
}

// A string with no attributes leaves the label's own font and colour in force; the kit's labels
// only do that for plain text.
void show(uikit::Label& label, platform::AttributedString text) {
    if (text.runs().size() <= 1 && (text.empty() || text.attributesAt(0).empty()))
        label.setText(text.string());
    else
        label.setAttributedText(std::move(text));
}

// Sideways safe area of the window the cell shows in (or will: cells are measured before they join it).
double sideInset(const uikit::View& cell) {
    const uikit::Window* window = cell.window() ? cell.window() : uikit::Window::keyWindow();
    if (!window) return 0;
    const auto& insets = window->environment().safeAreaInsets;
    return std::max(insets.left, insets.right);
}

} // namespace

CRVHelpCenterSearchResultTableViewCell::CRVHelpCenterSearchResultTableViewCell(uikit::TableViewCellStyle style,
                                                                               std::string reuseIdentifier)
    : uikit::TableViewCell(style, std::move(reuseIdentifier)),
      articleTitle(uikit::make<uikit::Label>()),
      categoryAndSectionTitle(uikit::make<uikit::Label>()) {
    articleTitle->setNumberOfLines(0);
    articleTitle->setAccessibilityIdentifier("CRVsearchResultTitle");
    categoryAndSectionTitle->setNumberOfLines(0);
    categoryAndSectionTitle->setAccessibilityIdentifier("CRVsearchResultParents");
    contentView()->addSubview(articleTitle);
    contentView()->addSubview(categoryAndSectionTitle);
    applyTheme(*CRVLegacyTheme::currentAppliedTheme());
}

platform::AttributedString CRVHelpCenterSearchResultTableViewCell::attributedStringWithString(const std::string& string,
                                                                                              const std::string& boldText,
                                                                                              const platform::Font&) {
    const auto found = platform::rangeOfStringCaseInsensitive(string, boldText);
    if (!found) return platform::AttributedString(string);
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    const std::string_view whole(string);
    platform::AttributedString result;
    result.append(whole.substr(0, found->location), {{platform::AttributeName::font, theme->subHeaderFont}});
    result.append(whole.substr(found->location, found->length), {{platform::AttributeName::font, theme->boldSubHeaderFont}});
    result.append(whole.substr(found->location + found->length), {{platform::AttributeName::font, theme->subHeaderFont}});
    return result;
}

void CRVHelpCenterSearchResultTableViewCell::applyTheme(const CRVLegacyTheme& theme) {
    articleTitle->setTextColor(theme.primaryTextColor);
    // The title's own font, for titles that do not hold the term.
    articleTitle->setFont(theme.subHeaderFont);
    categoryAndSectionTitle->setTextColor(theme.metaTextColor);
    categoryAndSectionTitle->setFont(theme.subtitleFont);
    setBackgroundColor(theme.primaryBackgroundColor);
}

void CRVHelpCenterSearchResultTableViewCell::prepareWithArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                const std::string& searchTerm) {
    show(*articleTitle, attributedStringWithString(article.title, searchTerm, articleTitle->font()));
    show(*categoryAndSectionTitle,
         attributedStringWithString(article.articleParents, searchTerm, categoryAndSectionTitle->font()));
    setAccessibilityLabel(article.articleParents.empty() ? article.title : article.title + ", " + article.articleParents);
    setNeedsLayout();
}

void CRVHelpCenterSearchResultTableViewCell::adjustInsetForLastArticle(bool isLast) {
    if (!isLast) return;
    separatorInset = {};
    preservesSuperviewLayoutMargins = false;
    layoutMargins = {};
    setNeedsLayout();
}

void CRVHelpCenterSearchResultTableViewCell::prepareForReuse() {
    uikit::TableViewCell::prepareForReuse();
    // A cell that was the last row shows other rows with the standard inset again.
    separatorInset = standardSeparatorInset;
    preservesSuperviewLayoutMargins = true;
    layoutMargins = standardLayoutMargins;
    articleTitle->setText({});
    categoryAndSectionTitle->setText({});
}

double CRVHelpCenterSearchResultTableViewCell::placeLabels(double width, bool apply) const {
    // The text keeps the platform's standard indent even when the margins go to zero for the last row,
    // and keeps clear of the sideways safe area.
    const double side = 15 + sideInset(*this);
    const double textWidth = std::max(1.0, width - 2 * side);
    double y = verticalMargin;
    bool first = true;
    for (const auto& label : {articleTitle, categoryAndSectionTitle}) {
        const double height = measuredHeight(*label, textWidth);
        if (height <= 0) continue;
        if (!first) y += lineGap;
        if (apply) label->setFrame({side, y, textWidth, height});
        y += height;
        first = false;
    }
    return std::ceil(y + verticalMargin);
}

uikit::Size CRVHelpCenterSearchResultTableViewCell::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : frame().width();
    return {width, placeLabels(width, false)};
}

void CRVHelpCenterSearchResultTableViewCell::layoutSubviews() {
    // Keeping the superview's margins, the separator starts under the text, clear of the safe area.
    if (preservesSuperviewLayoutMargins) separatorInset.left = standardSeparatorInset.left + sideInset(*this);
    uikit::TableViewCell::layoutSubviews();
    placeLabels(contentView()->bounds().width(), true);
}

} // namespace belvakit
