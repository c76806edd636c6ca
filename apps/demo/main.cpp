// belva-demo: a host application on the embedded help desk. In a window where a display exists;
// otherwise, or with --tour, a scripted walk through every screen that writes a picture per step.
#include "engine_dialog.hpp"
#include "gallery_runner.hpp"
#include "host_window.hpp"
#include "queue_walk.hpp"
#include "tour.hpp"

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

void usage() {
    std::cout << "usage: belva-demo [--window [--snapshot PNG] | --tour [DIR] | --shots DIR | --gallery | --engine | --queue]\n"
                 "  (none)       the host app in a window when a display exists, else the tour into ./belva-tour\n"
                 "  --window     the host app in a window, beside the help desk's switches and the log\n"
                 "               (--snapshot PNG draws that window to a picture and quits; no display needed)\n"
                 "  --tour DIR   a scripted walk through every screen, a picture per step in DIR\n"
                 "  --shots DIR  the gallery of single screens, drawn to DIR\n"
                 "  --gallery    the gallery in a window\n"
                 "  --engine     the support engine's dialog, printed\n"
                 "  --queue      the send queue without screens, printed\n";
}

bool hasDisplay() { return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY"); }

} // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "--engine") return belvademo::runEngineDialog();
    if (mode == "--queue") return belvademo::runQueueWalk();
    if (mode == "--shots" && argc > 2) return belvademo::renderGalleryShots(argc, argv, argv[2]);
    if (mode == "--gallery") return belvademo::runGalleryWindow(argc, argv);
    if (mode == "--tour") return belvademo::runTour(argc, argv, argc > 2 ? argv[2] : "belva-tour");
    if (mode == "--window") {
        std::optional<std::string> snapshot;
        if (argc > 3 && std::string_view(argv[2]) == "--snapshot") snapshot = argv[3];
        return belvademo::runHostWindow(argc, argv, snapshot);
    }
    if (mode.empty()) {
        if (hasDisplay()) return belvademo::runHostWindow(argc, argv);
        std::cout << "No display: touring the app offscreen instead.\n";
        return belvademo::runTour(argc, argv, "belva-tour");
    }
    usage();
    return mode == "--help" || mode == "-h" ? 0 : 2;
}
