#pragma once

#include "gallery.hpp"

#include <vector>

namespace belvademo {

// The conversation screen on the embedded help desk: a conversation of text, rich text with a
// link, pictures and a file; a failed message with its retry; a send under way; a new ticket; and
// the conversation in landscape.
std::vector<GalleryShot> conversationShots();

} // namespace belvademo
