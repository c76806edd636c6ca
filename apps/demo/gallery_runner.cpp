#include "gallery_runner.hpp"

#include "gallery.hpp"
#include "platform/main_queue.hpp"
#include "platform/scheduler.hpp"
#include "renderer/application.hpp"
#include "renderer/kit_widget.hpp"
#include "renderer/main_queue_pump.hpp"
#include "renderer/offscreen.hpp"
#include "renderer/qt_html_measurer.hpp"
#include "renderer/qt_text_measurer.hpp"
#include "uikit/window.hpp"

#include <QApplication>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

namespace belvademo {

namespace {

// Moves virtual time on in small steps, running what falls due, as a running app would.
void pass(platform::ManualScheduler& time, double seconds) {
    auto& main = platform::MainQueue::shared();
    const auto step = platform::milliseconds(10);
    for (double elapsed = 0; elapsed < seconds - 1e-9; elapsed += 0.01) {
        while (main.runPending() > 0) {
        }
        // The caches answer from their own threads in real time: a moment for them, or the
        // picture is taken before the screen hears back.
        std::this_thread::sleep_for(std::chrono::microseconds(300));
        while (main.runPending() > 0) {
        }
        time.advance(step);
    }
    while (main.runPending() > 0) {
    }
}

struct Variant {
    std::string suffix;
    uikit::Environment environment;
};

} // namespace

int renderGalleryShots(int& argc, char** argv, const std::string& directory) {
    const auto application = renderer::startApplication(argc, argv, true);
    renderer::installQtTextMeasurer();
    renderer::installQtHTMLMeasurer();
    auto time = std::make_shared<platform::ManualScheduler>();
    const auto realTime = platform::MainQueue::shared().setScheduler(time);
    std::filesystem::create_directories(directory);

    int failures = 0;
    for (const auto& shot : galleryShots()) {
        // Every screen in phone portrait; the table and a toast also wide and on a tablet.
        std::vector<Variant> variants{{"", uikit::Environment::phonePortrait()}};
        if (shot.name == "themed-table" || shot.name == "toast-type-3-button")
            variants.insert(variants.end(), {{"-landscape", uikit::Environment::phoneLandscape()},
                                             {"-tablet", uikit::Environment::tablet()}});
        for (const auto& variant : variants) {
            auto window = std::make_shared<uikit::Window>(variant.environment);
            window->makeKeyAndVisible();
            window->setRootViewController(shot.make());
            window->layoutTree();
            pass(*time, shot.seconds);
            window->layoutTree();
            const auto path = (std::filesystem::path(directory) / (shot.name + variant.suffix + ".png")).string();
            if (renderer::renderToPNG(*window, path)) {
                std::cout << "wrote " << path << "\n";
            } else {
                std::cerr << "could not draw " << path << "\n";
                ++failures;
            }
            window->setRootViewController(nullptr);
            pass(*time, 1);  // lets what the screen left behind end
        }
    }
    platform::MainQueue::shared().setScheduler(realTime);
    return failures == 0 ? 0 : 1;
}

int runGalleryWindow(int& argc, char** argv) {
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
        std::cerr << "No display: use --shots DIR to draw the gallery to pictures instead.\n";
        return 1;
    }
    const auto application = renderer::startApplication(argc, argv, false);
    renderer::installQtTextMeasurer();
    renderer::installQtHTMLMeasurer();
    renderer::MainQueuePump pump;
    auto window = std::make_shared<uikit::Window>(uikit::Environment::phonePortrait());
    window->makeKeyAndVisible();
    window->setRootViewController(galleryMenu(galleryShots()));
    renderer::KitWidget widget(window);
    widget.setWindowTitle("BelvaKit gallery");
    pump.setDidRunWork([&widget] { widget.refresh(); });
    widget.show();
    return application ? application->exec() : QApplication::exec();
}

} // namespace belvademo
