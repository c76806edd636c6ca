#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The Help Center overview on the embedded help desk: loaded, a section expanded by See all, an
// empty answer, a failure, offline, and the overview in landscape and on a tablet.
std::vector<GalleryShot> helpCenterShots();

} // namespace belvademo
