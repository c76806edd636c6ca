#pragma once

#include "uikit/bar_button_item.hpp"

namespace belvakit {

// What a container offers the screen it hosts.
class CRVContainerChildControllerDelegate {
public:
    virtual ~CRVContainerChildControllerDelegate() = default;
    // Where the hosted screen's bar buttons show: the container's item, as the container is on top.
    virtual uikit::NavigationItem& navItem() = 0;
    // The hosted screen is done; the container leaves.
    virtual void willDismiss() = 0;
};

// Enables a hosted screen's send button where it shows, which is the container's bar once the
// container has taken the button over.
class NavigationItemDelegate {
public:
    virtual ~NavigationItemDelegate() = default;
    virtual void setRightBarButtonItemEnabled(bool enabled) = 0;
};

} // namespace belvakit
