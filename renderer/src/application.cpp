#include "renderer/application.hpp"

#include <QApplication>

#include <cstdlib>

namespace renderer {

bool hasGuiApplication() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

std::unique_ptr<QApplication> startApplication(int& argc, char** argv, bool offscreen) {
    if (QCoreApplication::instance()) return nullptr;
    const bool display = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    if (offscreen || !display) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace renderer
