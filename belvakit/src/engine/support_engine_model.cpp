#include "belvakit/engine/support_engine_model.hpp"

#include "belvakit/Request/queue/request_operations.hpp"

#include "belvakit/engine/support_interaction.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "platform/clock.hpp"
#include "platform/uuid.hpp"

namespace belvakit {

namespace {

using State = SupportEngineState;

SupportTextQuery userText(std::string id, quorvel::ItemDeliveryStatus status, std::string message) {
    return {std::move(id), platform::now(), status, std::move(message)};
}

} // namespace

SupportEngineModel::SupportEngineModel(std::shared_ptr<RequestProvider> requestProvider,
                                       SupportEngineSettingsFetcher supportSettingsRequester,
                                       std::shared_ptr<corvane::Identity> identity)
    : requestProvider_(std::move(requestProvider)), supportSettingsRequester_(std::move(supportSettingsRequester)),
      identity_(std::move(identity)) {}

void SupportEngineModel::start(RequestUiConfiguration configuration, const std::string& conversationLog) {
    requestConfiguration_ = std::move(configuration);
    if (conversationLog.empty())
        enter({State::ShowGreeting{}});
    else
        enter({State::ShowInitialUserMessage{conversationLog}});
}

void SupportEngineModel::enter(SupportEngineState state) {
    engineState_ = std::move(state);
    runState();
}

void SupportEngineModel::runState() {
    if (engineState_.as<State::ShowGreeting>()) {
        enqueueBotText(localized(LocalizedKey::supportEngineGreetingMessage));
        sendInput(std::nullopt);
        enter({State::WaitingForTicketEntry{}});
    } else if (const auto* initial = engineState_.as<State::ShowInitialUserMessage>()) {
        // The hand-over: the user's turn is shown as if they had asked to leave a message.
        const auto query = userText(platform::uuidString(), quorvel::ItemDeliveryStatus::sent,
                                    localized(LocalizedKey::requestsCreateRequestLeaveAMessageTitle));
        send(quorvel::Update::appendMessagingItems({query.item()}, true));
        sendInput(std::nullopt);
        enter({State::IsEmailRequiredToCreateTicket{std::nullopt, initial->conversationLog}});
    } else if (engineState_.as<State::IsEmailRequiredToCreateTicket>()) {
        supportSettingsRequester_.isEmailRequired([weak = weak_from_this()](bool emailRequired, bool conversationsEnabled) {
            if (auto self = weak.lock()) self->onSettings(emailRequired, conversationsEnabled);
        });
    } else if (const auto* ticket = engineState_.as<State::CreateTicket>()) {
        createTicket(*ticket);
    } else if (const auto* confirmation = engineState_.as<State::ShowConfirmation>()) {
        showConfirmation(confirmation->shouldShowRequestListOption);
    } else if (engineState_.as<State::ShowErrorMessageWithRetry>()) {
        showErrorMessageWithRetry();
    }
    // Not started and the two waiting states wait for the user.
}

void SupportEngineModel::onSettings(bool emailRequired, bool conversationsEnabled) {
    const auto* asking = engineState_.as<State::IsEmailRequiredToCreateTicket>();
    if (!asking) return;
    const auto pending = *asking;
    if (pending.id) {
        send(quorvel::Update::updateMessagingItem(
            userText(*pending.id, quorvel::ItemDeliveryStatus::sent, pending.message).item(), true));
        sendInput(std::nullopt);
    }
    if (emailRequired) {
        enqueueBotText(localized(LocalizedKey::supportEngineRequestCreatedEmailPromptMessage));
        sendInput(localized(LocalizedKey::supportEngineRequestCreatedEmailPromptHint));
        enter({State::WaitingForEmailEntry{pending.message}});
    } else {
        enter({State::CreateTicket{pending.message, conversationsEnabled}});
    }
}

void SupportEngineModel::messageSubmitted(const std::string& text) {
    if (engineState_.as<State::WaitingForTicketEntry>()) {
        const auto query = userText(platform::uuidString(), quorvel::ItemDeliveryStatus::pending, text);
        send(quorvel::Update::appendMessagingItems({query.item()}, true));
        sendInput(std::nullopt);
        enter({State::IsEmailRequiredToCreateTicket{query.id, text}});
    } else if (const auto* waiting = engineState_.as<State::WaitingForEmailEntry>()) {
        onEmailEntered(text, waiting->pendingMessage);
    }
}

void SupportEngineModel::onEmailEntered(const std::string& text, const std::string& pendingMessage) {
    send(quorvel::Update::appendMessagingItems(
        {userText(platform::uuidString(), quorvel::ItemDeliveryStatus::sent, text).item()}, true));
    if (!emailValidator_.isValid(text)) {
        enqueueBotText(localized(LocalizedKey::supportEngineRequestCreatedEmailValidationFailedMessage));
        sendInput(localized(LocalizedKey::supportEngineRequestCreatedEmailPromptHint));
        return;
    }
    updateIdentityEmail(text);
    sendInput(std::nullopt);
    // The user gave an email only because they can't follow up in the app: no list to offer.
    enter({State::CreateTicket{pendingMessage, false}});
}

void SupportEngineModel::createTicket(const SupportEngineState::CreateTicket& ticket) {
    sendInput(std::nullopt, false);
    const auto request = makeCreateRequest(ticket.body, requestConfiguration_.value_or(RequestUiConfiguration{}));
    requestProvider_->createRequest(request, [weak = weak_from_this()](auto response, auto error) {
        if (auto self = weak.lock()) self->onTicketResult(response, error);
    });
}

void SupportEngineModel::onTicketResult(const std::optional<dastrel::CRVDispatcherResponse>& response,
                                        const std::optional<dastrel::ProviderError>& error) {
    const auto* creating = engineState_.as<State::CreateTicket>();
    if (!creating) return;
    const auto ticket = *creating;
    if (!error && response) return enter({State::ShowConfirmation{ticket.showRequestListOption}});
    enter({State::ShowErrorMessageWithRetry{ticket.body, ticket.showRequestListOption}});
    corvane::CoreLogger::error("Ticket was not created. " + (error ? error->localizedDescription : std::string()));
}

void SupportEngineModel::showConfirmation(bool shouldShowRequestListOption) {
    if (!shouldShowRequestListOption)
        return enqueueBotText(localized(LocalizedKey::supportEngineRequestCreatedConversationsOffMessage));
    SupportActionOptionsMessage confirmation;
    confirmation.id = platform::uuidString();
    confirmation.timestamp = platform::now();
    confirmation.titleText = localized(LocalizedKey::supportEngineRequestCreatedConversationsEnabledMessage);
    confirmation.buttonText = localized(LocalizedKey::supportEngineRequestCreatedRequestListButton);
    confirmation.action = [dispatcher = updateDispatcher_](const std::map<std::string, std::any>& arguments) {
        if (auto target = dispatcher.lock()) target->openRequestList(arguments);
    };
    if (auto dispatcher = updateDispatcher_.lock()) dispatcher->enqueue({confirmation.item()});
}

void SupportEngineModel::showErrorMessageWithRetry() {
    const SupportTextMessage failure{platform::uuidString(), platform::now(), quorvel::ItemDeliveryStatus::received,
                                     localized(LocalizedKey::supportEngineMessageSendErrorMessage)};
    SupportResponseOptionsMessage retry;
    retry.id = platform::uuidString();
    retry.timestamp = platform::now();
    retry.responses = {{platform::uuidString(), localized(LocalizedKey::supportEngineMessageSendRetryButton)}};
    retryOptionsMessageId_ = retry.id;
    if (auto dispatcher = updateDispatcher_.lock()) dispatcher->enqueue({failure.item(botName), retry.item()});
}

void SupportEngineModel::responseOptionClicked(const std::string& id, const std::string& /*text*/) {
    const auto* failed = engineState_.as<State::ShowErrorMessageWithRetry>();
    if (!failed) return;
    const auto retry = *failed;
    // The options give way to the user's choice, in the same row.
    const auto& rowId = retryOptionsMessageId_.empty() ? id : retryOptionsMessageId_;
    send(quorvel::Update::updateMessagingItem(
        userText(rowId, quorvel::ItemDeliveryStatus::sent, localized(LocalizedKey::supportEngineMessageSendRetryButton))
            .item(),
        true));
    enter({State::CreateTicket{retry.body, retry.showRequestListOption}});
}

void SupportEngineModel::send(const quorvel::Update& update) const {
    if (auto dispatcher = updateDispatcher_.lock()) dispatcher->send(update);
}

void SupportEngineModel::sendInput(std::optional<std::string> hint, bool enabled) const {
    send(quorvel::Update::updateInputFieldState({.enabled = enabled, .endUserHint = std::move(hint)}));
}

void SupportEngineModel::enqueueBotText(const std::string& text) const {
    const SupportTextMessage message{platform::uuidString(), platform::now(), quorvel::ItemDeliveryStatus::received, text};
    if (auto dispatcher = updateDispatcher_.lock()) dispatcher->enqueue({message.item(botName)});
}

void SupportEngineModel::updateIdentityEmail(const std::string& email) {
    auto core = corvane::Corvane::instance();
    const auto present = core ? core->identity() : nullptr;
    const auto* anonymous = dynamic_cast<const corvane::Anonymous*>(present.get());
    if (!anonymous) return;
    auto identity = corvane::Identity::createAnonymous(anonymous->name(), email);
    core->setIdentity(identity);
    identity_ = identity;
    supportSettingsRequester_.identity = std::move(identity);
    corvane::CoreLogger::debug("Updated the anonymous identity with the email the user gave the support engine.");
}

} // namespace belvakit
