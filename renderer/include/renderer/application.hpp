#pragma once

class QApplication;

namespace renderer {

// Whether Qt's GUI application exists, which fonts and text need.
bool hasGuiApplication();

// The Qt application drawing needs, made once if the host has none. Without a display, or when
// asked, it runs on Qt's offscreen platform, so pictures can be made on any machine.
QApplication& ensureApplication(bool offscreen = false);

} // namespace renderer
