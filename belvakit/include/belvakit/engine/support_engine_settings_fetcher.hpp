#pragma once

#include "corvane/identity.hpp"
#include "dastrel/settings.hpp"

#include <functional>
#include <memory>

namespace belvakit {

// Decides whether the dialog must ask for an email and whether the user can follow up on tickets.
struct SupportEngineSettingsFetcher {
    using Completion = std::function<void(bool emailRequired, bool conversationsEnabled)>;

    std::shared_ptr<dastrel::ConversationsSettingsProviderProtocol> conversationsSettingsProvider;
    std::shared_ptr<corvane::Identity> identity;

    // With conversations on, the user is reachable in the app; otherwise only an anonymous user
    // without an email needs to give one. A failed request counts as conversations off.
    void isEmailRequired(Completion completion) const;
};

} // namespace belvakit
