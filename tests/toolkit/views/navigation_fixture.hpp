#pragma once

#include "test_support.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

namespace toolkit_testing {

// A screen in a navigation controller in a key phone window: its top guide ends below the bar, at 64.
class NavigationScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->makeKeyAndVisible();
        window->setRootViewController(navigation);
        // The kit lays the navigation view out before it knows its controller; this pass places the bar.
        navigation->view()->setNeedsLayout();
        window->layoutTree();
    }

    testing_support::VirtualTime time;
    std::shared_ptr<uikit::ViewController> screen = std::make_shared<uikit::ViewController>();
    std::shared_ptr<uikit::NavigationController> navigation = std::make_shared<uikit::NavigationController>(screen);
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
};

} // namespace toolkit_testing
