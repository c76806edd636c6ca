#pragma once

namespace belvakit {

// Enables a hosted screen's send button where it shows, which is the container's bar once the
// container has taken the button over. Without one, the hosted screen redraws its navigation's bar.
class NavigationItemDelegate {
public:
    virtual ~NavigationItemDelegate() = default;
    virtual void setRightBarButtonItemEnabled(bool enabled) = 0;
};

} // namespace belvakit
