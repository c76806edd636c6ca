#pragma once

#include "belvakit/toolkit/theme.hpp"
#include "dastrel/help_center.hpp"
#include "platform/attributed_string.hpp"
#include "platform/font.hpp"
#include "uikit/table_view_cell.hpp"

#include <memory>
#include <string>

namespace belvakit {

inline constexpr const char* CRVSearchResultReuseIdentifier = "searchResult";

// One search result: the article's title over the names of its category and section, the
// search term in bold in each.
class CRVHelpCenterSearchResultTableViewCell final : public uikit::TableViewCell {
public:
    explicit CRVHelpCenterSearchResultTableViewCell(uikit::TableViewCellStyle style = uikit::TableViewCellStyle::defaultStyle,
                                                    std::string reuseIdentifier = "searchResult");
    std::string_view className() const override { return "CRVHelpCenterSearchResultTableViewCell"; }

    std::shared_ptr<uikit::Label> articleTitle;
    std::shared_ptr<uikit::Label> categoryAndSectionTitle;

    // Stand-ins for the platform's cell margins, which the kit's cells do not have.
    bool preservesSuperviewLayoutMargins = true;
    uikit::EdgeInsets layoutMargins{8, 15, 8, 15};

    void prepareWithArticle(const dastrel::CRVHelpCenterArticle& article, const std::string& searchTerm);
    // The last row's separator runs the full width; other rows keep theirs.
    void adjustInsetForLastArticle(bool isLast);

    // The whole string in the theme's sub-header font with the first case-insensitive match of
    // `boldText` in its bold face; without a match, the string with no attributes at all, so that
    // the label's own font holds. `font` is unused: both labels take the theme's fonts.
    static platform::AttributedString attributedStringWithString(const std::string& string, const std::string& boldText,
                                                                 const platform::Font& font);
    void applyTheme(const CRVLegacyTheme& theme);

    void prepareForReuse() override;
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    double placeLabels(double width, bool apply) const;
};

} // namespace belvakit
