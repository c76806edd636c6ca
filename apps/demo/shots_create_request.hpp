#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The form that creates a ticket: empty, with a bad email, with attachments, sending, failed,
// asking before its edits are discarded, and filled in landscape.
std::vector<GalleryShot> createRequestShots();

} // namespace belvademo
