#pragma once

#include "uikit/window.hpp"

#include <QImage>

#include <string>

namespace renderer {

// The view's tree laid out and painted at `scale` pixels a point, transparent where nothing is
// drawn; the image's device pixel ratio is the scale. Null without a Qt GUI application, for an
// empty view, or for a size beyond 16384 pixels a side.
QImage renderToImage(uikit::View& view, double scale = 1);

// The window as the screen shows it, on white, written as PNG. A scale of 0 takes the window's.
// False when nothing could be drawn or written.
bool renderToPNG(uikit::Window& window, const std::string& path, double scale = 0);

} // namespace renderer
