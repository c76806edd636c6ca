#include "renderer/application.hpp"

#include <QApplication>

#include <cstdlib>

namespace renderer {

bool hasGuiApplication() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

QApplication& ensureApplication(bool offscreen) {
    if (auto* existing = qobject_cast<QApplication*>(QCoreApplication::instance())) return *existing;
    const bool display = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    if (offscreen || !display) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // Qt keeps references to these for the application's life, which is the process's.
    static int argc = 1;
    static char name[] = "belva";
    static char* argv[] = {name, nullptr};
    static auto* application = new QApplication(argc, argv);
    return *application;
}

} // namespace renderer
