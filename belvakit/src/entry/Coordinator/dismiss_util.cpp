#include "belvakit/entry/Coordinator/dismiss_util.hpp"

#include "belvakit/entry/localized_strings.hpp"

#include <algorithm>

namespace belvakit {

void DismissUtil::remove(uikit::ViewController& screen, uikit::NavigationController& from) {
    const auto& stack = from.viewControllers();
    const auto found = std::find_if(stack.begin(), stack.end(), [&](const auto& entry) { return entry.get() == &screen; });
    if (found == stack.end()) return;
    if (found + 1 == stack.end() && stack.size() > 1) {
        from.popViewController(false);
        return;
    }
    std::vector<uikit::ViewController::Ptr> kept;
    for (const auto& entry : stack)
        if (entry.get() != &screen) kept.push_back(entry);
    from.setViewControllers(std::move(kept), false);
}

bool DismissUtil::navigationController(const uikit::NavigationController& navigationController,
                                       const uikit::ViewController& didPush) {
    const auto& stack = navigationController.viewControllers();
    for (std::size_t index = 1; index < stack.size(); ++index)
        if (stack[index].get() == &didPush) return true;
    return false;
}

uikit::BarButtonItemPtr DismissUtil::barButtonFor(const uikit::ViewController& screen,
                                                  const uikit::NavigationController* embededIn,
                                                  std::function<void()> action) {
    if (embededIn && navigationController(*embededIn, screen)) return nullptr;
    auto item = std::make_shared<uikit::BarButtonItem>();
    item->title = localized(LocalizedKey::requestsLeftBarButtonTitleCancel);
    item->accessibilityIdentifier = "CRVcancelButton";
    item->action = std::move(action);
    return item;
}

void DismissUtil::popOrDismiss(uikit::ViewController& screen, bool animated) {
    // The screen that stands in a navigation stack: this one, or the container holding it.
    uikit::ViewController* standing = &screen;
    uikit::NavigationController* navigation = nullptr;
    while (standing) {
        auto* parent = standing->parentViewController();
        if ((navigation = dynamic_cast<uikit::NavigationController*>(parent))) break;
        standing = parent;
    }
    if (navigation && standing && navigationController(*navigation, *standing)) {
        // Only the top of the stack is popped; a screen further down goes out of the stack.
        if (navigation->topViewController() == standing)
            navigation->popViewController(animated);
        else
            remove(*standing, *navigation);
        return;
    }
    // The presented screen that holds this one goes, with everything on it.
    for (uikit::ViewController* level = &screen; level; level = level->parentViewController()) {
        if (auto* presenter = level->presentingViewController()) {
            presenter->dismissViewController(animated);
            return;
        }
    }
}

} // namespace belvakit
