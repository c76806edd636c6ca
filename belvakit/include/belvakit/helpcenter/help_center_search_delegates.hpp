#pragma once

#include "dastrel/help_center.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/view_controller.hpp"

#include <optional>
#include <vector>

namespace belvakit {

// How the overview talks to its search results screen.
class CRVHelpCenterSearchResultUpdaterDelegate {
public:
    virtual ~CRVHelpCenterSearchResultUpdaterDelegate() = default;
    virtual void searchControllerStartedSearch(uikit::SearchController& searchController) = 0;
    // A failed search arrives as no list.
    virtual void searchControllerDidUpdateWithResults(uikit::SearchController& searchController,
                                                      const std::optional<std::vector<dastrel::CRVHelpCenterArticle>>& results) = 0;
    // As the user types; no query goes out from here.
    virtual void updateSearchResultsForSearchController(uikit::SearchController&) {}
};

// How the search results screen talks to the overview.
class CRVHelpCenterSearchResultViewControllerDelegate {
public:
    virtual ~CRVHelpCenterSearchResultViewControllerDelegate() = default;
    virtual void searchResultControllerDidSelectArticle(uikit::ViewController& resultController,
                                                        const dastrel::CRVHelpCenterArticle& article) = 0;
    virtual void searchResultControllerDidSelectContactSupport(uikit::ViewController& resultController) = 0;
    virtual bool shouldShowContactOptions() const = 0;
};

} // namespace belvakit
