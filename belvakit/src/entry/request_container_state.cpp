#include "belvakit/entry/request_container_state.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

namespace belvakit {

namespace {

bool present(const std::optional<std::string>& text) { return text && !text->empty(); }

} // namespace

std::optional<RequestContainerState> RequestContainerReducer::reduce(const RequestContainerState& state,
                                                                     const tivra::Action& action) const {
    if (const auto* initialize = tivra::actionAs<RequestContainerActions::Initalize>(action)) {
        RequestContainerState fresh = initialState_;
        fresh.requestId = initialize->requestId;
        fresh.configs = initialize->configs;
        fresh.ticketClosed = initialize->ticketClosed;
        return fresh;
    }
    if (const auto* fetched = tivra::actionAs<RequestContainerActions::SettingsFetched>(action)) {
        RequestContainerState next = state;
        next.requestScreenType = fetched->screenType;
        next.settings = fetched->settings;
        return next;
    }
    if (const auto* failed = tivra::actionAs<RequestContainerActions::SettingsFetchFailed>(action)) {
        if (failed->screenType == RequestScreenType::loading()) return std::nullopt;
        RequestContainerState next = state;
        next.requestScreenType = failed->screenType;
        return next;
    }
    return std::nullopt;
}

void RequestContainerMiddleware::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                          const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    if (tivra::actionAs<RequestContainerActions::GetSettings>(action)) {
        const tivra::State current = getState();
        const auto* state = current.value<RequestContainerState>(tivra::stateKeyOf<RequestContainerState>());
        const auto core = state ? corvane::Corvane::instance() : nullptr;
        auto provider = core ? core->providerModule().provider<dastrel::SettingsProvider>() : nullptr;
        if (state && !core) {
            // No core object, so no identity: the flow cannot go on. Reported, so nobody waits.
            next(action);
            RequestContainerActions::SettingsFetchFailed failed;
            failed.screenType = requestScreenType({}, nullptr, state->requestId);
            dispatch(failed);
            return;
        }
        if (state && !provider) {
            next(action);
            dispatch(RequestContainerActions::SettingsFetchFailed{});
            return;
        }
        if (provider) {
            provider->getSettings([identity = core->identity(), requestId = state->requestId,
                                   dispatch](std::optional<dastrel::SupportSettings> settings) {
                if (!settings) return dispatch(RequestContainerActions::SettingsFetchFailed{});
                RequestContainerActions::SettingsFetched fetched;
                fetched.screenType = requestScreenType(*settings, identity.get(), requestId);
                fetched.settings = *settings;
                dispatch(fetched);
                Actions::SettingsFetched table;
                table.isAttachmentsEnabled = settings->attachmentsEnabled;
                table.maxAttachmentSize = settings->maxAttachmentSize;
                table.systemMessage = settings->systemMessage;
                dispatch(table);
            });
        }
    }
    next(action);
}

RequestScreenType requestScreenType(const dastrel::SupportSettings& settings, const corvane::Identity* identity,
                                    const std::optional<std::string>& requestId) {
    if (!identity) {
        corvane::CoreLogger::error("No identity set. Dismissing Request creation");
        return RequestScreenType::end();
    }
    bool requiresName = false;
    bool requiresEmail = false;
    if (const auto* anonymous = dynamic_cast<const corvane::Anonymous*>(identity)) {
        requiresName = !present(anonymous->name());
        requiresEmail = !present(anonymous->email());
    }
    if (settings.conversationsEnabled) {
        corvane::CoreLogger::verbose("Conversations enable, presnting Conversations Screen");
        return RequestScreenType::conversation();
    }
    if (requestId) {
        corvane::CoreLogger::error("Conversations are disabled. Dismissing Request creation");
        return RequestScreenType::end();
    }
    if (!settings.neverRequestEmail || !requiresEmail) {
        corvane::CoreLogger::verbose(std::string("Conversations disabled, showing no conversations screen with Name: ") +
                                     (requiresName ? "true" : "false") + " and Email: " +
                                     (requiresEmail ? "true" : "false"));
        return RequestScreenType::noConversation(requiresName, requiresEmail);
    }
    corvane::CoreLogger::error(
        "Conversations are disabled, never request email is enabled. With this configuration created tickets are "
        "unreachable by the user. Dismissing Request creation");
    return RequestScreenType::end();
}

void updateIdentity(std::optional<std::string> name, std::optional<std::string> email) {
    if (!present(name)) name.reset();
    if (!present(email)) email.reset();
    if (!name && !email) return;
    const auto core = corvane::Corvane::instance();
    const auto identity = core ? core->identity() : nullptr;
    if (dynamic_cast<const corvane::Jwt*>(identity.get())) {
        corvane::CoreLogger::debug("JWT is set, not updating");
        return;
    }
    if (const auto* anonymous = dynamic_cast<const corvane::Anonymous*>(identity.get())) {
        corvane::CoreLogger::debug("Anonymous identity found.");
        if (present(anonymous->name()))
            corvane::CoreLogger::debug("Found name: " + *anonymous->name() + " in existing identity.");
        if (present(anonymous->email()))
            corvane::CoreLogger::debug("Found email: " + *anonymous->email() + " in existing identity.");
        if (!name) name = anonymous->name();
        if (!email) email = anonymous->email();
    }
    corvane::CoreLogger::debug("No conversations screen; Updating identity with: " + name.value_or("") + " " +
                               email.value_or(""));
    if (core) core->setIdentity(corvane::Identity::createAnonymous(std::move(name), std::move(email)));
}

} // namespace belvakit
