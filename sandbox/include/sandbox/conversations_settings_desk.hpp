#pragma once

#include "dastrel/settings.hpp"

#include <memory>
#include <mutex>

namespace sandbox {

// The help desk's conversations setting, with a switch for failing requests.
// Answers arrive on the main queue.
class ConversationsSettingsDesk final : public dastrel::ConversationsSettingsProviderProtocol,
                                        public std::enable_shared_from_this<ConversationsSettingsDesk> {
public:
    static std::shared_ptr<ConversationsSettingsDesk> make();

    void setEnabled(bool enabled);
    // While failing, every request answers with no settings.
    void setFailing(bool failing);

    void getConversationsSettings(
        std::function<void(std::optional<dastrel::CRVConversationsSettings>)> completion) override;

private:
    ConversationsSettingsDesk() = default;
    mutable std::mutex mutex_;
    bool enabled_ = true;
    bool failing_ = false;
};

} // namespace sandbox
