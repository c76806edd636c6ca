#include "uikit/search_controller.hpp"

#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <algorithm>

namespace uikit {

SearchController::SearchController(Ptr searchResultsController)
    : results_(std::move(searchResultsController)), searchBar_(make<SearchBar>()) {
    searchBar_->controller_ = this;
}

SearchController::~SearchController() {
    if (searchBar_->controller_ == this) searchBar_->controller_ = nullptr;
}

void SearchController::loadView() {
    ViewController::loadView();
    const auto& root = view();
    root->setBackgroundColor(std::nullopt);
    dimmingView_ = make<View>();
    dimmingView_->setBackgroundColor(platform::Color{0, 0, 0, 0.3});
    dimmingView_->setAccessibilityIdentifier("SearchDimmingView");
    // Tapping what the search dims ends the search, as on the platform.
    dimmingView_->addTapAction([weak = weak_from_this()] {
        if (const auto self = weak.lock()) static_cast<SearchController&>(*self).setActive(false);
    });
    root->addSubview(dimmingView_);
    if (results_) {
        addChildViewController(results_);
        root->addSubview(results_->view());
        results_->didMoveToParentViewController(this);
    }
}

void SearchController::viewWillLayoutSubviews() {
    const Rect bounds = view()->bounds();
    dimmingView_->setFrame(bounds);
    if (results_) results_->view()->setFrame(bounds);
}

ViewController* SearchController::host() const {
    for (View* parent = searchBar_->superview(); parent; parent = parent->superview())
        if (auto* owner = parent->viewController(); owner && owner != this) return owner;
    return nullptr;
}

void SearchController::refreshHost() {
    ViewController* owner = host();
    if (!owner) return;
    auto* navigation = dynamic_cast<NavigationController*>(owner);
    if (!navigation) navigation = owner->navigationController();
    if (!navigation || !navigation->isViewLoaded()) return;
    navigation->view()->setNeedsLayout();
    navigation->navigationBar()->setNeedsLayout();
    navigation->view()->layoutIfNeeded();
}

void SearchController::placeBelowBar() {
    const Window* window = searchBar_->window();
    if (!window || !presentingViewController()) return;
    const double top = searchBar_->convert(searchBar_->bounds(), nullptr).maxY();
    const Rect whole = window->bounds();
    view()->setFrame({0, top, whole.width(), std::max(0.0, whole.height() - top)});
    view()->layoutIfNeeded();
}

void SearchController::setActive(bool active) {
    if (active == active_) return;
    if (active) {
        if (willPresentSearchController) willPresentSearchController(*this);
        active_ = true;
        if (automaticallyShowsCancelButton) searchBar_->setShowsCancelButton(true);
        ViewController* from = host();
        if (from && from->isViewLoaded() && from->view()->window()) {
            while (from->presentedViewController()) from = from->presentedViewController().get();
            refreshHost();
            from->presentViewController(shared_from_this(), false);
            placeBelowBar();
        }
        updateResults();
        if (didPresentSearchController) didPresentSearchController(*this);
        return;
    }
    if (willDismissSearchController) willDismissSearchController(*this);
    active_ = false;
    searchBar_->textField()->resignFirstResponder();
    if (automaticallyShowsCancelButton) searchBar_->setShowsCancelButton(false);
    if (auto* presenter = presentingViewController()) presenter->dismissViewController(false);
    refreshHost();
    if (searchResultsUpdater) searchResultsUpdater(*this);
    if (didDismissSearchController) didDismissSearchController(*this);
}

void SearchController::searchBarMoved() {
    if (!active_ || !isViewLoaded() || !presentingViewController()) return;
    const bool barShown = searchBar_->window() != nullptr;
    view()->setHidden(!barShown);
    if (barShown) placeBelowBar();
}

void SearchController::textChanged() {
    if (active_) updateResults();
}

void SearchController::updateResults() {
    loadViewIfNeeded();
    const bool showResults = results_ && (showsSearchResultsController || !searchBar_->text().empty());
    if (results_) results_->view()->setHidden(!showResults);
    dimmingView_->setHidden(!obscuresBackgroundDuringPresentation);
    // Not dimming and nothing to show: taps go through to the screen below.
    view()->setUserInteractionEnabled(obscuresBackgroundDuringPresentation || showResults);
    // The updater runs last, so what it shows or hides stands.
    if (searchResultsUpdater) searchResultsUpdater(*this);
}

} // namespace uikit
