#include "belvakit/helpcenter/help_center_table_view_model.hpp"

#include <algorithm>

namespace belvakit {

void CRVHelpCenterCellTypeLookup::set(const uikit::IndexPath& indexPath, int type) {
    if (indexPath.section < 0 || indexPath.row < 0) return;
    const auto section = static_cast<std::size_t>(indexPath.section), row = static_cast<std::size_t>(indexPath.row);
    if (types_.size() <= section) types_.resize(section + 1);
    auto& rows = types_[section];
    if (rows.size() <= row) rows.resize(row + 1, none);
    rows[row] = type;
}

std::optional<int> CRVHelpCenterCellTypeLookup::entry(const uikit::IndexPath& indexPath) const {
    if (indexPath.section < 0 || indexPath.row < 0 || static_cast<std::size_t>(indexPath.section) >= types_.size())
        return std::nullopt;
    const auto& rows = types_[static_cast<std::size_t>(indexPath.section)];
    if (static_cast<std::size_t>(indexPath.row) >= rows.size()) return std::nullopt;
    const int type = rows[static_cast<std::size_t>(indexPath.row)];
    return type == none ? std::nullopt : std::optional<int>(type);
}

std::size_t CRVHelpCenterCellTypeLookup::entryCount() const {
    std::size_t count = 0;
    for (const auto& rows : types_) count += static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), [](int t) { return t != none; }));
    return count;
}

void CRVHelpCenterCellTypeLookup::merge(const CRVHelpCenterCellTypeLookup& other) {
    for (std::size_t section = 0; section < other.types_.size(); ++section)
        for (std::size_t row = 0; row < other.types_[section].size(); ++row)
            if (other.types_[section][row] != none)
                set({static_cast<int>(section), static_cast<int>(row)}, other.types_[section][row]);
}

bool CRVHelpCenterOverviewUtil::hasSeeAllRow(const dastrel::CRVHelpCenterSectionViewModel& section) {
    return section.article_count > static_cast<std::int64_t>(section.articles.size());
}

bool CRVHelpCenterOverviewUtil::shouldAddSpacerToSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                                                         const dastrel::CRVHelpCenterCategoryViewModel& inCategory) {
    return !inCategory.sections.empty() && !(section == inCategory.sections.back());
}

CRVHelpCenterTableSections CRVHelpCenterOverviewUtil::buildTableData(const CRVHelpCenterCategories& categories) {
    CRVHelpCenterTableSections result;
    result.reserve(categories.size());
    for (const auto& category : categories) {
        std::vector<CRVHelpCenterRowReference> rows;
        for (int index = 0; index < static_cast<int>(category.sections.size()); ++index) {
            const auto& section = category.sections[static_cast<std::size_t>(index)];
            rows.push_back({index, -1});
            for (int article = 0; article < static_cast<int>(section.articles.size()); ++article)
                rows.push_back({index, article});
            if (hasSeeAllRow(section)) rows.push_back({index, -1});
            if (shouldAddSpacerToSection(section, category)) rows.push_back({index, -1});
        }
        result.push_back(std::move(rows));
    }
    return result;
}

namespace {

// Writes one section's kinds from its first row and gives how many rows got one. Shared by the
// per-section lookup and the whole build, which writes in place instead of merging.
int writeSectionKinds(CRVHelpCenterCellTypeLookup& lookup, const dastrel::CRVHelpCenterSectionViewModel& section,
                      const uikit::IndexPath& fromIndexPath, bool addSeeAllRow) {
    const int start = fromIndexPath.row;
    lookup.set({fromIndexPath.section, start}, CRVHelpCenterCellTypeSection);
    // The counter starts from 0, not from the section's first row: a section with a See all row
    // and no loaded articles puts that row's kind at row 1 of the table section.
    int counter = 0;
    const int articles = static_cast<int>(section.articles.size());
    for (int index = 0; index < articles; ++index) {
        counter = start + 1 + index;
        lookup.set({fromIndexPath.section, counter}, CRVHelpCenterCellTypeArticle);
    }
    int written = 1 + articles;
    if (addSeeAllRow) {
        ++counter;
        lookup.set({fromIndexPath.section, counter}, CRVHelpCenterCellTypeSeeAll);
        // Only a row not written above is a new entry.
        if (counter != start && (counter <= start || counter > start + articles)) ++written;
    }
    return written;
}

} // namespace

CRVHelpCenterCellTypeLookup CRVHelpCenterOverviewUtil::cellTypeLookupForSection(
    const dastrel::CRVHelpCenterSectionViewModel& section, const uikit::IndexPath& fromIndexPath, bool addSeeAllRow) {
    CRVHelpCenterCellTypeLookup lookup;
    writeSectionKinds(lookup, section, fromIndexPath, addSeeAllRow);
    return lookup;
}

CRVHelpCenterCellTypeLookup CRVHelpCenterOverviewUtil::buildLookupForCellTypes(const CRVHelpCenterCategories& categories) {
    CRVHelpCenterCellTypeLookup result;
    for (int tableSection = 0; tableSection < static_cast<int>(categories.size()); ++tableSection) {
        const auto& category = categories[static_cast<std::size_t>(tableSection)];
        int row = 0;
        for (const auto& section : category.sections) {
            row += writeSectionKinds(result, section, {tableSection, row}, hasSeeAllRow(section));
            if (shouldAddSpacerToSection(section, category)) {
                result.set({tableSection, row}, CRVHelpCenterCellTypeSpacer);
                ++row;
            }
        }
    }
    return result;
}

CRVHelpCenterTableViewModel::CRVHelpCenterTableViewModel(CRVHelpCenterCategories categories)
    : categories_(std::move(categories)) {
    rebuildLookup();
}

void CRVHelpCenterTableViewModel::rebuildLookup() {
    tableSections_ = CRVHelpCenterOverviewUtil::buildTableData(categories_);
    cellTypes_ = CRVHelpCenterOverviewUtil::buildLookupForCellTypes(categories_);
}

void CRVHelpCenterTableViewModel::didSelectSeeAllAtIndexPath(const uikit::IndexPath& indexPath) {
    cellTypes_.set(indexPath, CRVHelpCenterCellTypeLoading);
}

void CRVHelpCenterTableViewModel::updateSection(const dastrel::CRVHelpCenterSectionViewModel& section,
                                                std::vector<dastrel::CRVHelpCenterArticleViewModel> withAllArticles,
                                                const uikit::IndexPath& atIndexPath) {
    const auto* oldCategory = categoryForSection(atIndexPath.section);
    if (!oldCategory) return;
    const auto newSection = section.sectionByReplacingWithArticles(std::move(withAllArticles));
    const auto newCategory = oldCategory->updateWithSection(newSection);
    // The first equal category is the one replaced, as a lookup by equality finds it.
    const auto found = std::find(categories_.begin(), categories_.end(), *oldCategory);
    if (found != categories_.end()) *found = newCategory;
    rebuildLookup();
}

int CRVHelpCenterTableViewModel::cellTypeForIndexPath(const uikit::IndexPath& indexPath) const {
    return cellTypes_.entry(indexPath).value_or(CRVHelpCenterCellTypeSection);
}

CRVHelpCenterRowModel CRVHelpCenterTableViewModel::modelForIndexPath(const uikit::IndexPath& indexPath) const {
    if (indexPath.section < 0 || indexPath.row < 0 || indexPath.section >= numberOfTableSecitons()) return {};
    const auto& rows = tableSections_[static_cast<std::size_t>(indexPath.section)];
    if (static_cast<std::size_t>(indexPath.row) >= rows.size()) return {};
    const auto reference = rows[static_cast<std::size_t>(indexPath.row)];
    const auto& section =
        categories_[static_cast<std::size_t>(indexPath.section)].sections[static_cast<std::size_t>(reference.section)];
    if (reference.article < 0) return &section;
    return &section.articles[static_cast<std::size_t>(reference.article)];
}

const dastrel::CRVHelpCenterSectionViewModel* CRVHelpCenterTableViewModel::sectionAtIndexPath(
    const uikit::IndexPath& indexPath) const {
    const auto model = modelForIndexPath(indexPath);
    const auto* section = std::get_if<const dastrel::CRVHelpCenterSectionViewModel*>(&model);
    return section ? *section : nullptr;
}

const dastrel::CRVHelpCenterArticleViewModel* CRVHelpCenterTableViewModel::articleAtIndexPath(
    const uikit::IndexPath& indexPath) const {
    const auto model = modelForIndexPath(indexPath);
    const auto* article = std::get_if<const dastrel::CRVHelpCenterArticleViewModel*>(&model);
    return article ? *article : nullptr;
}

const dastrel::CRVHelpCenterCategoryViewModel* CRVHelpCenterTableViewModel::categoryForSection(int section) const {
    if (section < 0 || section >= static_cast<int>(categories_.size())) return nullptr;
    return &categories_[static_cast<std::size_t>(section)];
}

std::string CRVHelpCenterTableViewModel::titleForTableSection(int section) const {
    const auto* category = categoryForSection(section);
    return category ? category->name : std::string();
}

int CRVHelpCenterTableViewModel::numberOfRowsInTableSection(int section) const {
    if (section < 0 || section >= numberOfTableSecitons()) return 0;
    return static_cast<int>(tableSections_[static_cast<std::size_t>(section)].size());
}

} // namespace belvakit
