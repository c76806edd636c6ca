#pragma once

#include "belvakit/Request/createrequest/form_validator.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/engine/support_engine_settings_fetcher.hpp"
#include "belvakit/engine/support_engine_state.hpp"
#include "belvakit/engine/support_messaging_update_dispatcher.hpp"
#include "belvakit/entry/ui_configurations.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// The scripted dialog by which a user leaves a request: one message, an email if needed, the
// ticket, and its outcome. Main thread only.
class SupportEngineModel : public std::enable_shared_from_this<SupportEngineModel> {
public:
    SupportEngineModel(std::shared_ptr<RequestProvider> requestProvider,
                       SupportEngineSettingsFetcher supportSettingsRequester,
                       std::shared_ptr<corvane::Identity> identity);

    std::string botName;

    const SupportEngineState& engineState() const { return engineState_; }
    void setUpdateDispatcher(std::weak_ptr<SupportMessagingUpdateDispatcher> dispatcher) {
        updateDispatcher_ = std::move(dispatcher);
    }
    const std::optional<RequestUiConfiguration>& requestConfiguration() const { return requestConfiguration_; }

    // Greets the user, or with a log of an earlier conversation goes straight to the ticket.
    void start(RequestUiConfiguration configuration, const std::string& conversationLog);
    void messageSubmitted(const std::string& text);
    void responseOptionClicked(const std::string& id, const std::string& text);

private:
    void enter(SupportEngineState state);
    void runState();
    void onSettings(bool emailRequired, bool conversationsEnabled);
    void onEmailEntered(const std::string& text, const std::string& pendingMessage);
    void onTicketResult(const std::optional<dastrel::CRVDispatcherResponse>& response,
                        const std::optional<dastrel::ProviderError>& error);
    void createTicket(const SupportEngineState::CreateTicket& ticket);
    void showConfirmation(bool shouldShowRequestListOption);
    void showErrorMessageWithRetry();

    void send(const quorvel::Update& update) const;
    void sendInput(std::optional<std::string> hint, bool enabled = true) const;
    void enqueueBotText(const std::string& text) const;
    void updateIdentityEmail(const std::string& email);

    SupportEngineState engineState_;
    std::shared_ptr<RequestProvider> requestProvider_;
    std::weak_ptr<SupportMessagingUpdateDispatcher> updateDispatcher_;
    std::optional<RequestUiConfiguration> requestConfiguration_;
    SupportEngineSettingsFetcher supportSettingsRequester_;
    FormValidator emailValidator_;
    std::shared_ptr<corvane::Identity> identity_;
    // The options message of the last failure, replaced by the user's choice on retry.
    std::string retryOptionsMessageId_;
};

} // namespace belvakit
