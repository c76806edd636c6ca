#pragma once

#include "platform/object.hpp"
#include "uikit/view_controller.hpp"

namespace belvakit {

// A screen that shows one child screen at a time, over its whole size.
class ContainerViewController : public uikit::ViewController, public platform::Object {
public:
    std::string_view className() const override { return "ContainerViewController"; }

    const uikit::ViewController::Ptr& activeController() const { return activeController_; }
    // Swaps the child: the former one leaves the container, the new one fills it. The same
    // child again changes nothing; null leaves the container empty.
    void setActiveController(uikit::ViewController::Ptr controller);

    void viewWillLayoutSubviews() override;

private:
    uikit::ViewController::Ptr activeController_;
};

} // namespace belvakit
