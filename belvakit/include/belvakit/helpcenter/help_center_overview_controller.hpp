#pragma once

#include "belvakit/entry/container_child_delegate.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/helpcenter/conversations_util.hpp"
#include "belvakit/helpcenter/help_center_overview_table_handler.hpp"
#include "belvakit/toolkit/reachability_wrapper.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "dastrel/help_center_provider.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/image_view.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/table_view.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

using CRVHelpCenterUiConfiguration = HelpCenterUiConfiguration;

// A host container around the overview: gives the navigation item and takes the dismissal.
using CRVHelpCenterOverviewChildDelegate = CRVContainerChildControllerDelegate;

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

// Overrides of the screens and routes the overview opens: the article screen (by id, or for a
// finished article), the contact-us route and the search results screen. Without an article route
// the overview opens its own article screen; until a search route is installed search does nothing.
struct CRVHelpCenterOverviewRoutes {
    std::function<uikit::ViewController::Ptr(std::int64_t articleId, const mirrowset::ConfigurationList& configs,
                                             const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate)>
        articleWithId;
    std::function<uikit::ViewController::Ptr(const dastrel::CRVHelpCenterArticle& article,
                                             const mirrowset::ConfigurationList& configs,
                                             const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate)>
        articleWithArticle;
    // `fromEmptySearch` tells the button under an empty search from the navigation bar's. Without
    // one the contact-us router decides.
    std::function<void(const uikit::ViewController::Ptr& presenting, const mirrowset::ConfigurationList& configs,
                       const EngineList& engines, bool fromEmptySearch)>
        contactUs;
    // The results screen; it must also be the updater delegate given back with it.
    std::function<std::pair<uikit::ViewController::Ptr, std::shared_ptr<CRVHelpCenterSearchResultUpdaterDelegate>>(
        const std::shared_ptr<CRVHelpCenterSearchResultViewControllerDelegate>& overview)>
        searchResults;

    static CRVHelpCenterOverviewRoutes& shared();
};

// The first Help Center screen: categories, sections and articles in a table under a search bar,
// a spinner while loading, error toasts with retry, and the contact button. Main thread.
class CRVHelpCenterOverviewController final : public uikit::ViewController,
                                              public CRVHelpCenterOverviewTableHandlerDelegate,
                                              public CRVHelpCenterSearchResultViewControllerDelegate {
public:
    explicit CRVHelpCenterOverviewController(mirrowset::ConfigurationList configs);
    ~CRVHelpCenterOverviewController() override;
    std::string_view className() const override { return "CRVHelpCenterOverviewController"; }

    std::weak_ptr<CRVHelpCenterConversationsUIDelegate> uiDelegate;
    std::weak_ptr<CRVHelpCenterOverviewChildDelegate> childDelegate;

    // Views.
    std::shared_ptr<uikit::TableView> tableView;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper;
    std::shared_ptr<uikit::ActivityIndicatorView> loadingSpinner;
    // The toast strip's top offset: its negative height while hidden.
    double toastWrapperConstraint = 0;

    std::shared_ptr<uikit::SearchController> searchController;
    uikit::ViewController::Ptr resultsController;
    std::weak_ptr<CRVHelpCenterSearchResultUpdaterDelegate> delegate;
    std::optional<dastrel::CRVHelpCenterSearch> search;

    std::shared_ptr<CRVHelpCenterOverviewTableHandler> tableHandler;
    std::shared_ptr<CRVReachabilityWrapper> reachability;
    std::shared_ptr<dastrel::CRVHelpCenterProvider> provider;
    bool isConversationsEnabled = false;
    std::shared_ptr<CRVHelpCenterUiConfiguration> helpCenterUiConfig;
    dastrel::CRVHelpCenterOverviewContentModel helpCenterContentModel;
    mirrowset::ConfigurationList uiConfigs;

    uikit::NavigationItem& navItem();

    // Lifecycle.
    void loadView() override;
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidLayoutSubviews() override;

    // The conversations setting, then the Help Center locale: the block gets both, the locale
    // empty when the settings failed and absent only when the account has none.
    void fetchSettingsWithCompletionBlock(std::function<void(bool enabled, std::optional<std::string> locale)> block);
    void fetchTableData();
    void setupNavBar();
    void showContact();
    void decideDismiss();
    void hideToastWrapperError(bool hidden);
    void setBackgroundColorWithCurrentTheme();
    // The keyboard's search button: one query with the overview's scope.
    void searchBarSearchButtonClicked();

    // Table handler.
    void tableHandlerDidSelectArticle(CRVHelpCenterOverviewTableHandler& handler,
                                      const dastrel::CRVHelpCenterArticleViewModel& article,
                                      const uikit::IndexPath& indexPath) override;
    void tableHandlerDidSelectSeeAllInSection(CRVHelpCenterOverviewTableHandler& handler,
                                              const dastrel::CRVHelpCenterSectionViewModel& section,
                                              const uikit::IndexPath& indexPath) override;
    // Search results.
    void searchResultControllerDidSelectArticle(uikit::ViewController& resultController,
                                                const dastrel::CRVHelpCenterArticle& article) override;
    void searchResultControllerDidSelectContactSupport(uikit::ViewController& resultController) override;
    bool shouldShowContactOptions() const override;

private:
    std::shared_ptr<CRVHelpCenterOverviewController> self();
    void setUpResultsController();
    void setUpSearchController();
    void setUpTableView();
    void setUpReachabilityObserver();
    void reachabilityChanged(bool reachable);
    uikit::BarButtonItemPtr contactButton();
    void pushOrIgnore(const uikit::ViewController::Ptr& screen);
};

} // namespace belvakit
