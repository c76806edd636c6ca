#pragma once

#include "uikit/view.hpp"

namespace renderer {

// Whether a shown view of the tree moves at `now` (an animation runs or a spinner spins), so a
// window must keep drawing frames.
bool isInMotion(const uikit::View& root, double now);

} // namespace renderer
