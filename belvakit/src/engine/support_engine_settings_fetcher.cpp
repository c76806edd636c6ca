#include "belvakit/engine/support_engine_settings_fetcher.hpp"

namespace belvakit {

namespace {

bool needsEmail(const corvane::Identity* identity) {
    const auto* anonymous = dynamic_cast<const corvane::Anonymous*>(identity);
    if (!anonymous) return false;
    return !anonymous->email() || anonymous->email()->empty();
}

} // namespace

void SupportEngineSettingsFetcher::isEmailRequired(Completion completion) const {
    auto decide = [identity = identity, completion = std::move(completion)](
                      std::optional<dastrel::CRVConversationsSettings> settings) {
        if (settings && settings->enabled) return completion(false, true);
        completion(needsEmail(identity.get()), false);
    };
    if (!conversationsSettingsProvider) return decide(std::nullopt);
    conversationsSettingsProvider->getConversationsSettings(std::move(decide));
}

} // namespace belvakit
