#pragma once

#include "uikit/window.hpp"

#include <QString>

namespace renderer {

// A user's input turned into the kit's operations; KitWidget calls these with its events.

// A click at a point of the window (its coordinates): in the keyboard's band, a key types into
// the first responder; a link of a web view's page under it goes to the web view's navigation
// delegate; otherwise the view under it gets the tap.
bool clickAt(uikit::Window& window, uikit::Point point);

// The wheel at a point: the innermost scroll view under it that can still move that way scrolls
// by (dx, dy) points. False when none could.
bool scrollAt(uikit::Window& window, uikit::Point point, double dx, double dy);

// A key typed with Qt's key code and text: the window's first responder, when it takes text,
// inserts the text, deletes backward or takes the return. False when nothing took it.
bool typeKey(uikit::Window& window, int key, const QString& text);

} // namespace renderer
