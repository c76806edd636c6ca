#pragma once

#include "dastrel/help_center.hpp"
#include "uikit/index_path.hpp"

#include <cstddef>
#include <map>
#include <variant>
#include <vector>

namespace belvakit {

// The kinds of rows of the overview's table; the values are those the lookup holds.
enum CRVHelpCenterCellType : int {
    CRVHelpCenterCellTypeSection = 0,
    CRVHelpCenterCellTypeArticle = 1,
    CRVHelpCenterCellTypeLoading = 2,
    CRVHelpCenterCellTypeSeeAll = 3,
    CRVHelpCenterCellTypeSpacer = 4,
};

// One row of the table: the section it belongs to and, for an article row, the article. Rows
// point into the categories instead of copying them, so building rows copies no text.
struct CRVHelpCenterRowReference {
    int section = 0;   // index in the category's sections
    int article = -1;  // index in the section's articles; -1 for rows whose model is the section
    bool operator==(const CRVHelpCenterRowReference&) const = default;
};

// What a row shows: a section, an article, or nothing for a path outside the table.
using CRVHelpCenterRowModel = std::variant<std::monostate, const dastrel::CRVHelpCenterSectionViewModel*,
                                           const dastrel::CRVHelpCenterArticleViewModel*>;

using CRVHelpCenterCategories = std::vector<dastrel::CRVHelpCenterCategoryViewModel>;
using CRVHelpCenterTableSections = std::vector<std::vector<CRVHelpCenterRowReference>>;

// The row kind of each row, per table section. A row may have no entry, which reads as a section
// title; `entryCount` tells how many rows have one.
class CRVHelpCenterCellTypeLookup {
public:
    void set(const uikit::IndexPath& indexPath, int type);
    std::optional<int> entry(const uikit::IndexPath& indexPath) const;
    std::size_t entryCount() const;
    // Copies the entries of `other` over these.
    void merge(const CRVHelpCenterCellTypeLookup& other);
    bool operator==(const CRVHelpCenterCellTypeLookup&) const = default;

private:
    static constexpr int none = -1;
    std::vector<std::vector<int>> types_;  // none where a row has no entry
};

// Builds the rows and their kinds from the categories.
class CRVHelpCenterOverviewUtil {
public:
    CRVHelpCenterOverviewUtil() = delete;

    static CRVHelpCenterTableSections buildTableData(const CRVHelpCenterCategories& categories);
    static CRVHelpCenterCellTypeLookup buildLookupForCellTypes(const CRVHelpCenterCategories& categories);
    static CRVHelpCenterCellTypeLookup cellTypeLookupForSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                                                                const uikit::IndexPath& fromIndexPath, bool addSeeAllRow);
    // Every section but one equal to the category's last has a spacer under it.
    static bool shouldAddSpacerToSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                                         const dastrel::CRVHelpCenterCategoryViewModel& inCategory);
    static bool hasSeeAllRow(const dastrel::CRVHelpCenterSectionViewModel& section);
};

// The categories of the overview and the two lookups built from them: the row models per table
// section, and the row kinds. Main thread.
class CRVHelpCenterTableViewModel {
public:
    CRVHelpCenterTableViewModel() = default;
    explicit CRVHelpCenterTableViewModel(CRVHelpCenterCategories categories);

    // Stored only: whether a section shows See all is the server's answer, not this number.
    unsigned maxNumberOfUnexpandedArticles = 5;
    const CRVHelpCenterCategories& categories() const { return categories_; }
    const CRVHelpCenterTableSections& tableSections() const { return tableSections_; }
    const CRVHelpCenterCellTypeLookup& cellTypes() const { return cellTypes_; }

    // Replaces the categories without rebuilding; `rebuildLookup` follows.
    void updateWithCategories(CRVHelpCenterCategories categories) { categories_ = std::move(categories); }
    void rebuildLookup();
    // The row becomes a loading row; nothing else changes.
    void didSelectSeeAllAtIndexPath(const uikit::IndexPath& indexPath);
    // Puts the whole article list into the section and rebuilds.
    void updateSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                       std::vector<dastrel::CRVHelpCenterArticleViewModel> withAllArticles,
                       const uikit::IndexPath& atIndexPath);

    int cellTypeForIndexPath(const uikit::IndexPath& indexPath) const;
    CRVHelpCenterRowModel modelForIndexPath(const uikit::IndexPath& indexPath) const;
    const dastrel::CRVHelpCenterSectionViewModel* sectionAtIndexPath(const uikit::IndexPath& indexPath) const;
    const dastrel::CRVHelpCenterArticleViewModel* articleAtIndexPath(const uikit::IndexPath& indexPath) const;
    const dastrel::CRVHelpCenterCategoryViewModel* categoryForSection(int section) const;
    std::string titleForTableSection(int section) const;
    int numberOfRowsInTableSection(int section) const;
    int numberOfTableSecitons() const { return static_cast<int>(tableSections_.size()); }

private:
    CRVHelpCenterCategories categories_;
    CRVHelpCenterTableSections tableSections_;
    CRVHelpCenterCellTypeLookup cellTypes_;
};

} // namespace belvakit
