#pragma once

#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/helpcenter/help_center_search_result_table_view_cell.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "dastrel/help_center.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/table_view.hpp"
#include "uikit/view_controller.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// The table's estimated row height; the name keeps its spelling.
inline constexpr double estimatedSearchResultHight = 72.0;

// The results of a Help Center search, under the overview's search bar: a spinner while a search
// runs, the matching articles with the term in bold, or a line saying nothing was found with a
// button to contact support. Hidden until the first search of a presentation. Main thread.
class CRVHelpCenterSearchResultViewController final : public uikit::ViewController,
                                                      public uikit::TableViewDataSource,
                                                      public uikit::TableViewDelegate,
                                                      public CRVHelpCenterSearchResultUpdaterDelegate {
public:
    static std::shared_ptr<CRVHelpCenterSearchResultViewController> make();
    std::string_view className() const override { return "CRVHelpCenterSearchResultViewController"; }

    std::weak_ptr<CRVHelpCenterSearchResultViewControllerDelegate> delegate;
    // Searches begun since the view last disappeared.
    unsigned numberOfSearches = 0;
    // The term of the results on show: the search bar's text when they arrived.
    std::string searchTerm;
    std::vector<dastrel::CRVHelpCenterArticle> data;

    std::shared_ptr<uikit::TableView> tableView;
    std::shared_ptr<uikit::ActivityIndicatorView> loadingSpinner;
    std::shared_ptr<uikit::View> noResultsView;
    std::shared_ptr<uikit::Label> noResultsLabel;
    std::shared_ptr<uikit::Button> contactSupportButton;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper;

    // The search controller's updater: called as the user types, it shows nothing before the
    // first search and keeps the last results after it.
    void updateSearchResultsForSearchController(uikit::SearchController& searchController) override;

    // From the overview.
    void searchControllerStartedSearch(uikit::SearchController& searchController) override;
    void searchControllerDidUpdateWithResults(uikit::SearchController& searchController,
                                              const std::optional<std::vector<dastrel::CRVHelpCenterArticle>>& results) override;

    // "No results" in the label's font and ` "term"` in its bold face, at the label's size.
    platform::AttributedString noResultsString() const;
    void applyTheme(const CRVLegacyTheme& theme);

    // Lifecycle.
    void loadView() override;
    void viewWillAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewDidLayoutSubviews() override;

    // Table.
    int numberOfRowsInSection(uikit::TableView& table, int section) override;
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    void didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;

private:
    CRVHelpCenterSearchResultViewController() = default;
    void contactSupportTapped();
};

} // namespace belvakit
