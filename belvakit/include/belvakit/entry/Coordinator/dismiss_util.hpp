#pragma once

#include "uikit/bar_button_item.hpp"
#include "uikit/navigation_controller.hpp"

#include <functional>

namespace belvakit {

// Small navigation operations shared by the containers and the screens they host.
class DismissUtil {
public:
    DismissUtil() = delete;

    // Takes the screen out of the navigation stack, wherever it stands; the top one as a pop.
    static void remove(uikit::ViewController& screen, uikit::NavigationController& from);
    // Whether the screen was pushed onto this navigation controller: in its stack, above the root.
    static bool navigationController(const uikit::NavigationController& navigationController,
                                     const uikit::ViewController& didPush);
    // The button that closes a screen: none for a pushed screen, whose bar has its back button;
    // otherwise a cancel button that runs `action`.
    static uikit::BarButtonItemPtr barButtonFor(const uikit::ViewController& screen,
                                                const uikit::NavigationController* embededIn,
                                                std::function<void()> action);
    // Leaves the screen the way it came: popped when it was pushed, otherwise dismissed with
    // whatever presented it or the screen that contains it.
    static void popOrDismiss(uikit::ViewController& screen, bool animated);
};

} // namespace belvakit
