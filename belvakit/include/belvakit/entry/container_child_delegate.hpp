#pragma once

#include "uikit/bar_button_item.hpp"

namespace belvakit {

// What a screen shown inside a container asks of the container: the navigation item on view,
// where the child's title and bar buttons go, and the way out when the child is done.
class CRVContainerChildControllerDelegate {
public:
    virtual ~CRVContainerChildControllerDelegate() = default;
    // The item the navigation bar shows while the container is on top.
    virtual uikit::NavigationItem& navItem() = 0;
    // The child has finished: the container leaves.
    virtual void willDismiss() = 0;
};

} // namespace belvakit
