#include "sandbox/settings_desk.hpp"

#include "answer.hpp"

namespace sandbox {

std::shared_ptr<SettingsDesk> SettingsDesk::make() { return std::shared_ptr<SettingsDesk>(new SettingsDesk()); }

dastrel::SupportSettings SettingsDesk::settings() const {
    std::lock_guard lock(mutex_);
    return settings_;
}

void SettingsDesk::setSettings(dastrel::SupportSettings settings) {
    std::lock_guard lock(mutex_);
    settings_ = std::move(settings);
}

void SettingsDesk::setConversationsEnabled(bool enabled) {
    std::lock_guard lock(mutex_);
    settings_.conversationsEnabled = enabled;
}

void SettingsDesk::setNeverRequestEmail(bool never) {
    std::lock_guard lock(mutex_);
    settings_.neverRequestEmail = never;
}

void SettingsDesk::setAttachments(bool enabled, std::int64_t maxAttachmentSize) {
    std::lock_guard lock(mutex_);
    settings_.attachmentsEnabled = enabled;
    settings_.maxAttachmentSize = maxAttachmentSize;
}

void SettingsDesk::setReferrer(bool showLogo, std::optional<std::string> url) {
    std::lock_guard lock(mutex_);
    settings_.showReferrerLogo = showLogo;
    settings_.referrerUrl = std::move(url);
}

void SettingsDesk::setSystemMessage(std::string message) {
    std::lock_guard lock(mutex_);
    settings_.systemMessage = std::move(message);
}

void SettingsDesk::setFailing(bool failing) {
    std::lock_guard lock(mutex_);
    failing_ = failing;
}

void SettingsDesk::setLatency(platform::Duration latency) {
    std::lock_guard lock(mutex_);
    latency_ = latency;
}

std::size_t SettingsDesk::requestCount() const {
    std::lock_guard lock(mutex_);
    return requests_;
}

void SettingsDesk::getSettings(std::function<void(std::optional<dastrel::SupportSettings>)> completion) {
    std::optional<dastrel::SupportSettings> answer;
    platform::Duration latency{};
    {
        std::lock_guard lock(mutex_);
        ++requests_;
        if (!failing_) answer = settings_;
        latency = latency_;
    }
    deliverAnswer(latency, false, [completion = std::move(completion), answer] { completion(answer); });
}

} // namespace sandbox
