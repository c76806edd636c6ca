#pragma once

#include "platform/main_queue.hpp"
#include "test_support.hpp"
#include "uikit/view_controller.hpp"
#include "uikit/window.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace toolkit_testing {

// A phone-sized window with one screen, on virtual time, with the log captured.
class ScreenTest : public testing::Test {
protected:
    void SetUp() override {
        window->setRootViewController(screen);
        window->layoutTree();
    }

    // Moves virtual time on in small strides, running what the main queue is handed on the way.
    void run(double seconds) {
        const int strides = static_cast<int>(std::lround(seconds / 0.05));
        for (int i = 0; i < strides; ++i) {
            while (platform::MainQueue::shared().runPending() > 0) {}
            time.advance(platform::milliseconds(50));
        }
        while (platform::MainQueue::shared().runPending() > 0) {}
    }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    std::shared_ptr<uikit::Window> window = uikit::make<uikit::Window>();
    std::shared_ptr<uikit::ViewController> screen = std::make_shared<uikit::ViewController>();
};

} // namespace toolkit_testing
