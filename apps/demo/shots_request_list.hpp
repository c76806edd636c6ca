#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The request list on the embedded help desk: loading, empty, rows (unread, closed, a failed send,
// agents' avatars), a failed fetch, offline with the kept rows, and the rows wide and on a tablet.
std::vector<GalleryShot> requestListShots();

} // namespace belvademo
