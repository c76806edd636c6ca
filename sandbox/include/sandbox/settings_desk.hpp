#pragma once

#include "dastrel/settings.hpp"
#include "platform/scheduler.hpp"

#include <cstddef>
#include <memory>
#include <mutex>

namespace sandbox {

// The account's ticket settings, with switches for each that the screens read and for failing
// requests. Answers arrive on the main queue after the latency.
class SettingsDesk final : public dastrel::SettingsProvider, public std::enable_shared_from_this<SettingsDesk> {
public:
    static std::shared_ptr<SettingsDesk> make();

    dastrel::SupportSettings settings() const;
    void setSettings(dastrel::SupportSettings settings);
    void setConversationsEnabled(bool enabled);
    void setNeverRequestEmail(bool never);
    void setAttachments(bool enabled, std::int64_t maxAttachmentSize);
    void setReferrer(bool showLogo, std::optional<std::string> url);
    void setSystemMessage(std::string message);
    // While failing, every request answers with no settings.
    void setFailing(bool failing);
    void setLatency(platform::Duration latency);
    // How many times the settings were asked for.
    std::size_t requestCount() const;

    void getSettings(std::function<void(std::optional<dastrel::SupportSettings>)> completion) override;

private:
    SettingsDesk() = default;
    mutable std::mutex mutex_;
    dastrel::SupportSettings settings_;
    bool failing_ = false;
    platform::Duration latency_{};
    std::size_t requests_ = 0;
};

} // namespace sandbox
