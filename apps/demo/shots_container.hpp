#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The ticket entry point: the loading screen with its progress, the failed settings fetch, and
// the form it embeds when conversations are off.
std::vector<GalleryShot> containerShots();

} // namespace belvademo
