#pragma once

#include "corvane/corvane.hpp"
#include "sandbox/attachment_store.hpp"
#include "sandbox/conversations_settings_desk.hpp"
#include "sandbox/help_center_desk.hpp"
#include "sandbox/telemetry_desk.hpp"
#include "sandbox/settings_desk.hpp"
#include "sandbox/ticket_desk.hpp"

#include <filesystem>
#include <memory>
#include <string>

namespace sandbox {

// The embedded, in-process help desk: the default implementation of the providers that the
// host-side libraries offer, for the demo and the tests.
class HelpDesk : public std::enable_shared_from_this<HelpDesk> {
public:
    struct Options {
        // Where the core keeps caches and the session store.
        std::filesystem::path storageDirectory;
        std::string accountUrl = "https://belva.example.com";
        std::string appId = "belva-demo";
        std::string clientId = "mobile_sdk_client_belva";
    };

    static std::shared_ptr<HelpDesk> make(Options options);

    // A core object on this help desk, with its providers registered and the given identity,
    // made the shared instance.
    std::shared_ptr<corvane::Corvane> initializeCorvane(std::shared_ptr<corvane::Identity> identity);

    const Options& options() const { return options_; }
    // The ticket and attachment providers of this desk answer on worker threads, as real ones do;
    // settings keep answering on the main queue.
    void setAnswersOnWorkerThreads(bool onWorkerThreads) const;
    // Uploads and the files the help desk serves.
    const std::shared_ptr<AttachmentStore>& attachments() const { return attachments_; }
    // Requests, comments, people and the simulated agent.
    const std::shared_ptr<TicketDesk>& tickets() const { return tickets_; }
    // Whether users can follow up on their tickets in the app.
    const std::shared_ptr<ConversationsSettingsDesk>& conversationsSettings() const { return conversationsSettings_; }
    // Categories, sections and articles, search, votes and the Help Center settings; starts with the
    // sample content built into the library.
    const std::shared_ptr<HelpCenterDesk>& helpCenter() const { return helpCenter_; }
    // The usage events the library sent.
    const std::shared_ptr<TelemetryDesk>& telemetry() const { return telemetry_; }
    // The account's ticket settings: conversations, attachments, email, referrer, system message.
    const std::shared_ptr<SettingsDesk>& settings() const { return settings_; }

private:
    explicit HelpDesk(Options options);
    Options options_;
    std::shared_ptr<AttachmentStore> attachments_;
    std::shared_ptr<TicketDesk> tickets_;
    std::shared_ptr<ConversationsSettingsDesk> conversationsSettings_ = ConversationsSettingsDesk::make();
    std::shared_ptr<HelpCenterDesk> helpCenter_;
    std::shared_ptr<TelemetryDesk> telemetry_ = std::make_shared<TelemetryDesk>();
    std::shared_ptr<SettingsDesk> settings_ = SettingsDesk::make();
};

} // namespace sandbox
