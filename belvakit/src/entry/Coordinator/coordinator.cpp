#include "belvakit/entry/Coordinator/coordinator.hpp"

#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/settings.hpp"
#include "platform/main_queue.hpp"

namespace belvakit {

RequestCoordinator::RequestCoordinator(mirrowset::ConfigurationList configurations, ListBuilder listBuilder)
    : uiConfigurations(std::move(configurations)), listBuilder_(std::move(listBuilder)) {}

void RequestCoordinator::start(Present present, const uikit::ViewController::Ptr&) {
    auto build = [configurations = uiConfigurations, builder = listBuilder_ ? listBuilder_ : defaultListBuilder(),
                  present = std::move(present)] {
        if (!builder) {
            corvane::CoreLogger::error("No request list screen to start the request flow with");
            return present(nullptr);
        }
        present(builder(configurations));
    };
    const auto core = corvane::Corvane::instance();
    auto provider = core ? core->providerModule().provider<dastrel::ConversationsSettingsProviderProtocol>() : nullptr;
    if (!provider) return build();
    provider->getConversationsSettings([build = std::move(build)](std::optional<dastrel::CRVConversationsSettings>) {
        // The list reads the settings itself and leaves when conversations are off.
        if (platform::MainQueue::shared().isMainThread())
            build();
        else
            platform::MainQueue::shared().async(build);
    });
}

void HelpCenterCoordinator::start(Present present, const uikit::ViewController::Ptr&) {
    present(helpCenterController);
}

} // namespace belvakit
