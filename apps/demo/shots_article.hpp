#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The Help Center article screen on the embedded help desk: attachments and votes, a rich page,
// right-to-left text, a vote given, loading, failed attachments, and one in landscape.
std::vector<GalleryShot> articleShots();

} // namespace belvademo
