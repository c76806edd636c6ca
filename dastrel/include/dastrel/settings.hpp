#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace dastrel {

// The account's settings for tickets.
struct SupportSettings {
    bool conversationsEnabled = true;
    bool attachmentsEnabled = true;
    std::int64_t maxAttachmentSize = 20 * 1024 * 1024;
    bool neverRequestEmail = false;
    bool showClosedRequests = true;
    bool showReferrerLogo = false;
    std::optional<std::string> referrerUrl;
    std::string systemMessage;

    bool operator==(const SupportSettings&) const = default;
};

struct CRVConversationsSettings {
    bool enabled = true;
};

// Fetches the ticket settings; an absent answer means they could not be had.
class SettingsProvider {
public:
    virtual ~SettingsProvider() = default;
    virtual void getSettings(std::function<void(std::optional<SupportSettings>)> completion) = 0;
};

class ConversationsSettingsProviderProtocol {
public:
    virtual ~ConversationsSettingsProviderProtocol() = default;
    virtual void getConversationsSettings(std::function<void(std::optional<CRVConversationsSettings>)> completion) = 0;
};

} // namespace dastrel
