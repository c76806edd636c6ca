#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// Help Center search: results with the term in bold, no results with the contact button, typing
// before the first search, the spinner of a search under way, and results in landscape.
std::vector<GalleryShot> searchShots();

} // namespace belvademo
