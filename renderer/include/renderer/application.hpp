#pragma once

#include <memory>

class QApplication;

namespace renderer {

// Whether Qt's GUI application exists, which fonts and text need.
bool hasGuiApplication();

// The Qt application that drawing needs, for the host's main to keep while it draws (argc and
// argv must live as long). Without a display, or when asked, it runs on Qt's offscreen platform,
// so pictures can be made on any machine. Null when the process has an application already.
std::unique_ptr<QApplication> startApplication(int& argc, char** argv, bool offscreen = false);

} // namespace renderer
