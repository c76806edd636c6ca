#pragma once

#include "platform/image.hpp"

#include <functional>
#include <memory>
#include <string>

namespace uikit {

class View;
class SearchController;

// An item of a navigation bar; the bar shows it as a button that runs `action`.
struct BarButtonItem {
    std::string title;
    platform::ImagePtr image;
    std::string accessibilityIdentifier;
    std::string accessibilityLabel;
    bool enabled = true;
    std::function<void()> action;
    // Shown instead of a button when set.
    std::shared_ptr<View> customView;
};

using BarButtonItemPtr = std::shared_ptr<BarButtonItem>;

// What a screen shows in the navigation bar while it is on top.
struct NavigationItem {
    std::string title;
    std::shared_ptr<View> titleView;
    BarButtonItemPtr leftBarButtonItem;
    BarButtonItemPtr rightBarButtonItem;
    BarButtonItemPtr backBarButtonItem;
    bool hidesBackButton = false;
    int largeTitleDisplayMode = 0;
    // Its search bar shows under the title while the screen is on top.
    std::shared_ptr<SearchController> searchController;
};

} // namespace uikit
