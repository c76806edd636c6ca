#include "sandbox/conversations_settings_desk.hpp"

#include "platform/main_queue.hpp"

namespace sandbox {

std::shared_ptr<ConversationsSettingsDesk> ConversationsSettingsDesk::make() {
    return std::shared_ptr<ConversationsSettingsDesk>(new ConversationsSettingsDesk());
}

void ConversationsSettingsDesk::setEnabled(bool enabled) {
    std::lock_guard lock(mutex_);
    enabled_ = enabled;
}

void ConversationsSettingsDesk::setFailing(bool failing) {
    std::lock_guard lock(mutex_);
    failing_ = failing;
}

void ConversationsSettingsDesk::getConversationsSettings(
    std::function<void(std::optional<dastrel::CRVConversationsSettings>)> completion) {
    std::optional<dastrel::CRVConversationsSettings> answer;
    {
        std::lock_guard lock(mutex_);
        if (!failing_) answer = dastrel::CRVConversationsSettings{enabled_};
    }
    platform::MainQueue::shared().async([completion = std::move(completion), answer] { completion(answer); });
}

} // namespace sandbox
