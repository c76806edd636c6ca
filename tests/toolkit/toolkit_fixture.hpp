#pragma once

#include "test_support.hpp"
#include "uikit/view_controller.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

namespace toolkit_testing {

// A phone-sized window with one screen, on virtual time, with the log captured.
class ScreenTest : public testing::Test {
protected:
    void SetUp() override {
        window->setRootViewController(screen);
        window->layoutTree();
    }

    void run(double seconds) { time.run(seconds); }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    std::shared_ptr<uikit::Window> window = uikit::make<uikit::Window>();
    std::shared_ptr<uikit::ViewController> screen = std::make_shared<uikit::ViewController>();
};

} // namespace toolkit_testing
