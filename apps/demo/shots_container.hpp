#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The ticket entry point: the loading screen with its progress, and the failed settings fetch.
std::vector<GalleryShot> containerShots();

} // namespace belvademo
