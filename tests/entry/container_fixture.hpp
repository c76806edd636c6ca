#pragma once

#include "../queue/host_fixture.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <string>

namespace container_testing {

// A phone window with a navigation stack, the embedded help desk as the core's providers, virtual
// time and the log captured.
class ContainerTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->makeKeyAndVisible();
        window->setRootViewController(navigation);
        window->layoutTree();
    }
    void TearDown() override {
        // Screens leave the window before the core goes, as a host tears down.
        window->setRootViewController(nullptr);
        run(0.5);
        corvane::Corvane::reset();
        dastrel::Support::reset();
    }

    std::shared_ptr<corvane::Corvane> startCore(std::shared_ptr<corvane::Identity> identity) {
        auto core = desk->initializeCorvane(std::move(identity));
        dastrel::Support::initialize(core);
        return core;
    }

    // Moves virtual time on in small strides, running what the main queue is handed on the way.
    void run(double seconds) { queue_testing::pass(time, platform::seconds(seconds), platform::milliseconds(50)); }

    bool logged(platform::LogLevel level, const std::string& text) const { return log.contains(level, text); }

    // Pushes the screen above the root and lets it appear.
    void push(const uikit::ViewController::Ptr& screen) {
        navigation->pushViewController(screen, false);
        window->layoutTree();
        run(0.1);
    }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    testing_support::TemporaryDirectory directory;
    std::shared_ptr<sandbox::HelpDesk> desk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    std::shared_ptr<uikit::ViewController> root = std::make_shared<uikit::ViewController>();
    std::shared_ptr<uikit::NavigationController> navigation = std::make_shared<uikit::NavigationController>(root);
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
};

// A child screen that stands in for the ones the container embeds, named by what it stands for.
inline uikit::ViewController::Ptr standIn(const std::string& name) {
    auto screen = std::make_shared<uikit::ViewController>();
    screen->view()->setAccessibilityIdentifier(name);
    screen->setTitle(name);
    return screen;
}

} // namespace container_testing
