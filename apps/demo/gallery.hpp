#pragma once

#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace belvademo {

// One picture of the gallery: a screen, and how long after it appears the picture is taken.
struct GalleryShot {
    std::string name;  // the PNG's file name without ".png"
    std::string title;
    double seconds = 1;
    std::function<uikit::ViewController::Ptr()> make;
};

// A screen for each toolkit piece: toasts, the progress bar, the connectivity toast, the agent
// title, buttons and a themed table.
std::vector<GalleryShot> galleryShots();

// The gallery as a list; a tap on a row opens its screen.
uikit::ViewController::Ptr galleryMenu(const std::vector<GalleryShot>& shots);

} // namespace belvademo
