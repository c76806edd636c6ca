#pragma once

#include "uikit/search_bar.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>

namespace uikit {

// Search over a screen: owns a search bar and, while active, is presented over the screen that
// holds the bar, below the bar, showing the results screen (and dimming what lies under it).
// Typing calls the results updater; the cancel button ends the search. While its bar is out of the
// window (a screen pushed over the one holding it), an active search steps aside, and it comes back
// with the bar, as a search presented in its screen's context does.
class SearchController : public ViewController {
public:
    explicit SearchController(Ptr searchResultsController = nullptr);
    ~SearchController() override;
    std::string_view className() const override { return "UISearchController"; }

    const std::shared_ptr<SearchBar>& searchBar() const { return searchBar_; }
    const Ptr& searchResultsController() const { return results_; }

    bool isActive() const { return active_; }
    void setActive(bool active);

    // Told when the search begins or ends and whenever the text changes while it is active.
    std::function<void(SearchController&)> searchResultsUpdater;
    void setSearchResultsUpdater(std::function<void(SearchController&)> updater) { searchResultsUpdater = std::move(updater); }
    bool obscuresBackgroundDuringPresentation = true;
    bool hidesNavigationBarDuringPresentation = true;
    bool automaticallyShowsCancelButton = true;
    // The results show even while the text is empty.
    bool showsSearchResultsController = false;

    // Delegate.
    std::function<void(SearchController&)> willPresentSearchController;
    std::function<void(SearchController&)> didPresentSearchController;
    std::function<void(SearchController&)> willDismissSearchController;
    std::function<void(SearchController&)> didDismissSearchController;

    void loadView() override;
    void viewWillLayoutSubviews() override;

private:
    friend class SearchBar;
    void textChanged();
    void updateResults();
    void searchBarMoved();
    void refreshHost();
    ViewController* host() const;
    void placeBelowBar();
    Ptr results_;
    std::shared_ptr<SearchBar> searchBar_;
    std::shared_ptr<View> dimmingView_;
    bool active_ = false;
};

} // namespace uikit
