#pragma once

#include "uikit/navigation_controller.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace belvademo {

// One way from the host's home screen into the support screens.
struct EntryPoint {
    std::string identifier;  // of its row
    std::string title;
    std::string subtitle;
    std::function<uikit::ViewController::Ptr()> make;
};

// What the host offers, through the library's public factories: the Help Center, the user's
// requests, a new request, and the support engine in the host's chat screen.
std::vector<EntryPoint> entryPoints();

// The host application: its home screen, a row per entry point, in a navigation on which the
// entries' screens are pushed.
std::shared_ptr<uikit::NavigationController> makeHostApp();

} // namespace belvademo
