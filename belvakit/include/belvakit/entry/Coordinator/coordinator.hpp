#pragma once

#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>

namespace belvakit {

// Decides the first screen of a flow. `present` takes that screen; it may run at once or later,
// on the main queue.
class CRVCoordinator {
public:
    using Present = std::function<void(uikit::ViewController::Ptr)>;

    virtual ~CRVCoordinator() = default;
    virtual void start(Present present, const uikit::ViewController::Ptr& with) = 0;
};

// The request list, once the conversations setting is known.
class RequestCoordinator final : public CRVCoordinator {
public:
    // Builds the list screen from the host's configurations.
    using ListBuilder = std::function<uikit::ViewController::Ptr(const mirrowset::ConfigurationList&)>;

    explicit RequestCoordinator(mirrowset::ConfigurationList configurations, ListBuilder listBuilder = nullptr);

    mirrowset::ConfigurationList uiConfigurations;

    // Every start ends with a screen: without the conversations setting (no core object, no
    // provider, a failed request) the list is built all the same and decides for itself.
    void start(Present present, const uikit::ViewController::Ptr& with) override;

    // The request list screen of the ticket side.
    static ListBuilder defaultListBuilder();

private:
    ListBuilder listBuilder_;
};

// The Help Center's first screen is the one it was given.
class HelpCenterCoordinator final : public CRVCoordinator {
public:
    HelpCenterCoordinator(uikit::ViewController::Ptr controller, mirrowset::ConfigurationList configurations)
        : helpCenterController(std::move(controller)), uiConfigurations(std::move(configurations)) {}

    uikit::ViewController::Ptr helpCenterController;
    mirrowset::ConfigurationList uiConfigurations;

    void start(Present present, const uikit::ViewController::Ptr& with) override;
};

using CRVHelpCenterCoordinator = HelpCenterCoordinator;

} // namespace belvakit
