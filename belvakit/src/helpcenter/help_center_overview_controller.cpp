#include "belvakit/helpcenter/help_center_overview_controller.hpp"

#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "belvakit/entry/Coordinator/help_center_contact_us_router.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_error_handler_utils.hpp"
#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"
#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

CRVHelpCenterOverviewRoutes& CRVHelpCenterOverviewRoutes::shared() {
    static CRVHelpCenterOverviewRoutes routes;
    return routes;
}

CRVHelpCenterOverviewController::CRVHelpCenterOverviewController(mirrowset::ConfigurationList configs) {
    mirrowset::Configurations configurations(std::move(configs));
    helpCenterUiConfig = configurations.configurationAddingDefault<CRVHelpCenterUiConfiguration>();
    helpCenterContentModel = helpCenterUiConfig->overviewContentModel;
    uiConfigs = configurations.list();
    reachability = CRVReachabilityWrapper::reachability();
}

CRVHelpCenterOverviewController::~CRVHelpCenterOverviewController() {
    if (searchController && searchController->isViewLoaded()) searchController->view()->removeFromSuperview();
}

std::shared_ptr<CRVHelpCenterOverviewController> CRVHelpCenterOverviewController::self() {
    return std::static_pointer_cast<CRVHelpCenterOverviewController>(shared_from_this());
}

uikit::NavigationItem& CRVHelpCenterOverviewController::navItem() {
    if (auto container = childDelegate.lock()) return container->navItem();
    return navigationItem();
}

void CRVHelpCenterOverviewController::loadView() {
    uikit::ViewController::loadView();
    const auto& root = view();
    toastWrapper = uikit::make<CRVToastViewWrapper>();
    toastWrapper->setAccessibilityIdentifier("CRVtoastWrapper");
    tableView = uikit::make<uikit::TableView>();
    tableView->setAccessibilityIdentifier("CRVhelpCenterOverviewTable");
    loadingSpinner = uikit::make<uikit::ActivityIndicatorView>(2);
    loadingSpinner->setAccessibilityIdentifier("CRVhelpCenterLoadingSpinner");
    root->addSubview(tableView);
    root->addSubview(toastWrapper);
    root->addSubview(loadingSpinner);
    loadingSpinner->startAnimating();
}

void CRVHelpCenterOverviewController::viewDidLoad() {
    navItem().largeTitleDisplayMode = 2;
    navItem().title = localized(LocalizedKey::helpCenterHelpCenterOverviewTitle);
    setUpResultsController();
    setUpSearchController();
    setUpTableView();
    setBackgroundColorWithCurrentTheme();
    setUpReachabilityObserver();

    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    fetchSettingsWithCompletionBlock([weakSelf](bool enabled, std::optional<std::string> locale) {
        auto strong = weakSelf.lock();
        if (!strong) return;
        strong->isConversationsEnabled = enabled;
        strong->setupNavBar();
        // An account without a Help Center locale has no Help Center to show.
        if (!locale) return strong->loadingSpinner->stopAnimating();
        strong->provider = dastrel::CRVHelpCenterProvider::make();
        strong->fetchTableData();
    });
}

void CRVHelpCenterOverviewController::viewWillAppear(bool animated) {
    uikit::ViewController::viewWillAppear(animated);
    // A pushed screen has its back button; otherwise a cancel button leaves the Help Center. Inside
    // a container, the container is what stands in the stack.
    const uikit::ViewController* standing = childDelegate.lock() && parentViewController() ? parentViewController() : this;
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    navItem().leftBarButtonItem = DismissUtil::barButtonFor(*standing, navigationController(), [weakSelf] {
        if (auto strong = weakSelf.lock()) strong->decideDismiss();
    });
    if (auto* navigation = navigationController()) navigation->refreshBar();
    view()->setNeedsLayout();
}

void CRVHelpCenterOverviewController::viewDidLayoutSubviews() {
    const auto bounds = view()->bounds();
    const double top = topLayoutGuideLength();
    const double toastHeight = toastWrapper->isHidden() ? 0.0 : toastWrapper->contentHeight;
    toastWrapper->setFrame({0, top + toastWrapperConstraint, bounds.width(), toastHeight});
    // A toast shown before the screen knew its bars (offline at load) moves under them.
    if (const auto& toast = toastWrapper->toastView; toast && toast->superview() == view().get()) {
        auto frame = toast->frame();
        if (frame.origin.y != top) {
            frame.origin.y = top;
            toast->setFrame(frame);
        }
    }
    const double tableTop = top + std::max(0.0, toastHeight + toastWrapperConstraint);
    // Rows keep out of the sides' insets (a phone's notch in landscape).
    const auto insets = safeAreaInsets();
    tableView->setFrame({insets.left, tableTop, std::max(0.0, bounds.width() - insets.left - insets.right),
                         std::max(0.0, bounds.height() - tableTop)});
    const auto spinnerSize = loadingSpinner->intrinsicContentSize();
    loadingSpinner->setFrame({(bounds.width() - spinnerSize.width) / 2, top + (bounds.height() - top - spinnerSize.height) / 2,
                              spinnerSize.width, spinnerSize.height});
}

void CRVHelpCenterOverviewController::setUpResultsController() {
    const auto& routes = CRVHelpCenterOverviewRoutes::shared();
    if (routes.searchResults) {
        auto [screen, updater] = routes.searchResults(self());
        resultsController = screen;
        delegate = updater;
    }
    if (resultsController) return;
    // The library's own results screen: it and the overview are each other's delegate.
    auto results = CRVHelpCenterSearchResultViewController::make();
    results->delegate = self();
    resultsController = results;
    delegate = results;
}

void CRVHelpCenterOverviewController::setUpSearchController() {
    searchController = std::make_shared<uikit::SearchController>(resultsController);
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    searchController->setSearchResultsUpdater([weakSelf](uikit::SearchController& controller) {
        auto strong = weakSelf.lock();
        if (auto updater = strong ? strong->delegate.lock() : nullptr) updater->updateSearchResultsForSearchController(controller);
    });
    searchController->willPresentSearchController = [weakSelf](uikit::SearchController&) {
        if (auto strong = weakSelf.lock()) strong->hideToastWrapperError(true);
    };
    searchController->didDismissSearchController = [weakSelf](uikit::SearchController&) {
        if (auto strong = weakSelf.lock()) strong->hideToastWrapperError(false);
    };
    searchController->searchBar()->searchButtonClicked = [weakSelf] {
        if (auto strong = weakSelf.lock()) strong->searchBarSearchButtonClicked();
    };
}

void CRVHelpCenterOverviewController::setUpTableView() {
    tableView->setHidden(true);
    navItem().searchController = searchController;
    tableHandler = CRVHelpCenterOverviewTableHandler::initWithTableView(tableView);
    tableHandler->delegate = std::static_pointer_cast<CRVHelpCenterOverviewTableHandlerDelegate>(self());
}

void CRVHelpCenterOverviewController::setBackgroundColorWithCurrentTheme() {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    if (auto* navigation = navigationController()) navigation->view()->setBackgroundColor(theme->secondaryBackgroundColor);
    view()->setBackgroundColor(theme->secondaryBackgroundColor);
    tableView->setBackgroundColor(theme->secondaryBackgroundColor);
    tableView->setBackgroundView(uikit::make<uikit::View>());
    loadingSpinner->setStyle(CRVAppearanceApplicator::isDarkTheme() ? 1 : 2);
}

void CRVHelpCenterOverviewController::setUpReachabilityObserver() {
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    auto block = [weakSelf](bool reachable) {
        if (auto strong = weakSelf.lock()) strong->reachabilityChanged(reachable);
    };
    reachability->registerReachableCallback(block);
    block(reachability->isNetworkReachable());
}

void CRVHelpCenterOverviewController::reachabilityChanged(bool reachable) {
    tableView->allowsSelection = reachable;
    searchController->searchBar()->setUserInteractionEnabled(reachable);
    if (reachable) return toastWrapper->dismiss();
    // Stays until the network is back.
    toastWrapper->showErrorInViewController(self(), localized(LocalizedKey::requestsConnectionError), 0.0);
}

void CRVHelpCenterOverviewController::fetchSettingsWithCompletionBlock(
    std::function<void(bool enabled, std::optional<std::string> locale)> block) {
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    dastrel::CRVConversationsSettingsProvider::getConversationsSettingsWithCallback(
        [weakSelf, block = std::move(block)](std::optional<dastrel::CRVConversationsSettings> conversations) mutable {
            if (!weakSelf.lock()) return;
            const bool enabled = conversations && conversations->enabled;
            dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback(
                [weakSelf, enabled, block = std::move(block)](std::optional<dastrel::CRVHelpCenterSettings> settings) {
                    if (!weakSelf.lock()) return;
                    // Failed settings still lead to a fetch; only an account without a locale stops it.
                    std::optional<std::string> locale = std::string();
                    if (settings) locale = settings->locale;
                    if (block) block(enabled, locale);
                });
        });
}

void CRVHelpCenterOverviewController::fetchTableData() {
    tableView->setHidden(true);
    loadingSpinner->startAnimating();
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    tableHandler->reloadWithHelpCenterOverviewModel(helpCenterContentModel, [weakSelf](auto error) {
        auto strong = weakSelf.lock();
        if (!strong) return;
        strong->tableView->setHidden(false);
        if (!error) return strong->loadingSpinner->stopAnimating();
        CRVHelpCenterErrorHandlerUtils::handleError(*error, strong);
    });
}

void CRVHelpCenterOverviewController::setupNavBar() {
    navItem().rightBarButtonItem = contactButton();
    // The bar shows what the item held when the screen came on top.
    if (auto* navigation = navigationController()) navigation->refreshBar();
}

uikit::BarButtonItemPtr CRVHelpCenterOverviewController::contactButton() {
    if (!helpCenterUiConfig->showContactOptions) return nullptr;
    const auto host = uiDelegate.lock();
    if (host && host->active() == 2) return nullptr;
    std::weak_ptr<CRVHelpCenterOverviewController> weakSelf = self();
    auto button = CRVConversationsUtil::contactUsBarButton(host, [weakSelf] {
        if (auto strong = weakSelf.lock()) strong->showContact();
    });
    if (button) button->accessibilityLabel = localized(LocalizedKey::helpCenterSupportContactSupport);
    return button;
}

void CRVHelpCenterOverviewController::showContact() {
    const auto& route = CRVHelpCenterOverviewRoutes::shared().contactUs;
    if (route) return route(self(), uiConfigs, helpCenterUiConfig->objcEngines(), false);
    CRVHelpCenterContactUsRouter(uiConfigs, self(), helpCenterUiConfig->objcEngines()).decideButtonActionForNavBar();
}

void CRVHelpCenterOverviewController::decideDismiss() {
    if (auto container = childDelegate.lock()) return container->willDismiss();
    DismissUtil::popOrDismiss(*this, true);
}

void CRVHelpCenterOverviewController::hideToastWrapperError(bool hidden) {
    toastWrapper->hideToastView(hidden);
    toastWrapperConstraint = hidden ? -toastWrapper->intrinsicContentSize().height : 0.0;
    view()->setNeedsLayout();
}

void CRVHelpCenterOverviewController::searchBarSearchButtonClicked() {
    auto updater = delegate.lock();
    if (updater) updater->searchControllerStartedSearch(*searchController);
    search = dastrel::CRVHelpCenterSearch{};
    search->setQuery(searchController->searchBar()->text());
    search->addSearchContentScope(helpCenterContentModel);
    if (!provider) provider = dastrel::CRVHelpCenterProvider::make();
    auto strong = self();
    provider->searchArticles(*search, [strong](auto results, auto) {
        // A failed search shows as no results.
        if (auto listener = strong->delegate.lock()) listener->searchControllerDidUpdateWithResults(*strong->searchController, results);
    });
}

void CRVHelpCenterOverviewController::pushOrIgnore(const uikit::ViewController::Ptr& screen) {
    if (!screen) return;
    if (auto* navigation = navigationController()) navigation->pushViewController(screen, true);
}

void CRVHelpCenterOverviewController::tableHandlerDidSelectArticle(CRVHelpCenterOverviewTableHandler&,
                                                                   const dastrel::CRVHelpCenterArticleViewModel& article,
                                                                   const uikit::IndexPath&) {
    const auto& route = CRVHelpCenterOverviewRoutes::shared().articleWithId;
    if (route) return pushOrIgnore(route(article.id, uiConfigs, uiDelegate.lock()));
    auto screen = CRVArticleViewController::initWithArticleId(std::to_string(article.id), uiConfigs);
    screen->uiDelegate = uiDelegate;
    pushOrIgnore(screen);
}

void CRVHelpCenterOverviewController::tableHandlerDidSelectSeeAllInSection(
    CRVHelpCenterOverviewTableHandler& handler, const dastrel::CRVHelpCenterSectionViewModel& section,
    const uikit::IndexPath& indexPath) {
    if (!provider) provider = dastrel::CRVHelpCenterProvider::make();
    auto strong = self();
    // The model of this fetch: a refetch since makes the answer stale.
    std::weak_ptr<CRVHelpCenterTableViewModel> model = handler.tableViewModel;
    provider->getArticlesWithSectionId(section.id, helpCenterContentModel.labels,
                                       [strong, model, section, indexPath](auto articles, auto) {
        const auto current = model.lock();
        if (!current || current != strong->tableHandler->tableViewModel) return;
        if (articles) {
            return strong->tableHandler->updateSection(
                section, dastrel::CRVHelpCenterArticleViewModel::convertWithArticles(*articles), indexPath);
        }
        // A failed load gives the row back, so that it can be asked for again.
        current->rebuildLookup();
        strong->tableView->reloadData();
    });
}

void CRVHelpCenterOverviewController::searchResultControllerDidSelectArticle(uikit::ViewController&,
                                                                             const dastrel::CRVHelpCenterArticle& article) {
    const auto& route = CRVHelpCenterOverviewRoutes::shared().articleWithArticle;
    if (route) {
        pushOrIgnore(route(article, uiConfigs, uiDelegate.lock()));
    } else {
        auto screen = CRVArticleViewController::initWithArticle(article, uiConfigs);
        screen->uiDelegate = uiDelegate;
        pushOrIgnore(screen);
    }
    if (auto* navigation = navigationController()) navigation->setNavigationBarHidden(false, true);
}

void CRVHelpCenterOverviewController::searchResultControllerDidSelectContactSupport(uikit::ViewController&) {
    const auto& route = CRVHelpCenterOverviewRoutes::shared().contactUs;
    if (route) return route(self(), uiConfigs, helpCenterUiConfig->objcEngines(), true);
    CRVHelpCenterContactUsRouter(uiConfigs, self(), helpCenterUiConfig->objcEngines()).decideButtonActionForEmptySearch();
}

bool CRVHelpCenterOverviewController::shouldShowContactOptions() const {
    return helpCenterUiConfig->showContactOptionsOnEmptySearch;
}

} // namespace belvakit
