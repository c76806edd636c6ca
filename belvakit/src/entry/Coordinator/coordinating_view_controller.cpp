#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"

#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

CoordinatingViewController::CoordinatingViewController(std::shared_ptr<CRVCoordinator> startingCoordinator)
    : coordinator(std::move(startingCoordinator)), spinner(uikit::make<uikit::ActivityIndicatorView>(2)) {
    spinner->setAccessibilityIdentifier("CRVcoordinatorSpinner");
}

void CoordinatingViewController::viewDidLoad() {
    view()->setBackgroundColor(platform::Color::white());
    view()->addSubview(spinner);
}

void CoordinatingViewController::viewWillLayoutSubviews() {
    ContainerViewController::viewWillLayoutSubviews();
    const auto bounds = view()->bounds();
    const auto size = spinner->frame().size;
    spinner->setFrame({(bounds.width() - size.width) / 2, (bounds.height() - size.height) / 2, size.width, size.height});
}

void CoordinatingViewController::viewWillAppear(bool animated) {
    ContainerViewController::viewWillAppear(animated);
    if (!coordinator) return;
    // Each appearance asks again; the screen it names takes the place of the one before.
    const std::uint64_t asked = ++startsAsked_;
    spinner->startAnimating();
    std::weak_ptr<CoordinatingViewController> weak =
        std::static_pointer_cast<CoordinatingViewController>(shared_from_this());
    coordinator->start(
        [weak, asked](uikit::ViewController::Ptr screen) {
            const auto self = weak.lock();
            // An answer older than one already shown would bring back a stale screen.
            if (!self || asked < self->startsAnswered_) return;
            self->startsAnswered_ = asked;
            if (!self->isStarting()) self->spinner->stopAnimating();
            if (!screen) return;
            // The child names its title and buttons as its view loads, which the swap does.
            self->setActiveController(screen);
            self->adoptNavigationItem(*screen);
        },
        shared_from_this());
}

void CoordinatingViewController::adoptNavigationItem(const uikit::ViewController& child) {
    const auto& item = child.navigationItem();
    auto& own = navigationItem();
    // A child that writes onto this bar through its delegate leaves its own item empty.
    if (!item.title.empty()) own.title = item.title;
    if (item.titleView) own.titleView = item.titleView;
    if (item.leftBarButtonItem) own.leftBarButtonItem = item.leftBarButtonItem;
    if (item.rightBarButtonItem) own.rightBarButtonItem = item.rightBarButtonItem;
    if (item.searchController) own.searchController = item.searchController;
    if (auto* navigation = navigationController()) navigation->refreshBar();
}

void CoordinatingViewController::viewDidAppear(bool animated) {
    ContainerViewController::viewDidAppear(animated);
    auto* navigation = navigationController();
    const auto& child = activeController();
    if (!navigation || !child || !child->isViewLoaded()) return;
    // Under a translucent bar the navigation's own view shows; it takes the child's colour.
    const auto& navigationView = navigation->view();
    if (navControllerView.expired()) {
        navControllerView = navigationView;
        navControllerViewColor = navigationView->backgroundColor();
    }
    navigationView->setBackgroundColor(child->view()->backgroundColor());
}

void CoordinatingViewController::viewDidDisappear(bool animated) {
    ContainerViewController::viewDidDisappear(animated);
    if (const auto navigationView = navControllerView.lock()) navigationView->setBackgroundColor(navControllerViewColor);
    navControllerView.reset();
    navControllerViewColor.reset();
}

void CoordinatingViewController::willDismiss() { DismissUtil::popOrDismiss(*this, true); }

} // namespace belvakit
