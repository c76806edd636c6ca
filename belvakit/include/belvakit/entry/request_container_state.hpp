#pragma once

#include "corvane/identity.hpp"
#include "dastrel/settings.hpp"
#include "mirrowset/configurations.hpp"
#include "tivra/action.hpp"
#include "tivra/middleware.hpp"
#include "tivra/reducer.hpp"

#include <optional>
#include <string>

namespace belvakit {

// Which ticket screen the container shows.
struct RequestScreenType {
    enum class Kind { noConversation, loading, conversation, end };

    Kind kind = Kind::loading;
    // Only meaningful for `noConversation`.
    bool requiresName = false;
    bool requiresEmail = false;

    static RequestScreenType noConversation(bool requiresName, bool requiresEmail) {
        return {Kind::noConversation, requiresName, requiresEmail};
    }
    static RequestScreenType loading() { return {Kind::loading}; }
    static RequestScreenType conversation() { return {Kind::conversation}; }
    static RequestScreenType end() { return {Kind::end}; }

    // The case alone: a change of the two requirements is no change of screen.
    bool operator==(const RequestScreenType& other) const { return kind == other.kind; }
};

struct RequestContainerState {
    std::optional<std::string> requestId;
    std::optional<mirrowset::Configurations> configs;
    RequestScreenType requestScreenType = RequestScreenType::loading();
    std::optional<dastrel::SupportSettings> settings;
    bool ticketClosed = false;

    bool operator==(const RequestContainerState&) const = default;
};

namespace RequestContainerActions {

// Starts the container afresh: back to loading, without settings.
struct Initalize final : tivra::Action {
    std::optional<std::string> requestId;
    mirrowset::Configurations configs;
    bool ticketClosed = false;
};

struct GetSettings final : tivra::Action {};

struct SettingsFetched final : tivra::Action {
    RequestScreenType screenType;
    dastrel::SupportSettings settings;
};

// The settings could not be had. Without a core object there can be no identity, so the screen
// ends; after a failed request it stays loading and can ask again.
struct SettingsFetchFailed final : tivra::Action {
    RequestScreenType screenType = RequestScreenType::loading();
};

} // namespace RequestContainerActions

class RequestContainerReducer final : public tivra::Reducer<RequestContainerState> {
public:
    RequestContainerState initialState() const override { return initialState_; }
    std::optional<RequestContainerState> reduce(const RequestContainerState& state,
                                                const tivra::Action& action) const override;

private:
    RequestContainerState initialState_;
};

// Fetches the settings on `GetSettings` and turns them, with the identity, into the screen to show.
class RequestContainerMiddleware final : public tivra::Middleware {
public:
    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;
};

// The screen for these settings, identity and ticket, with the log line of each decision.
RequestScreenType requestScreenType(const dastrel::SupportSettings& settings, const corvane::Identity* identity,
                                    const std::optional<std::string>& requestId);

// Writes what the no-conversation form was given into an anonymous identity, keeping what the
// identity had where nothing was given. A JWT identity stays as it is.
void updateIdentity(std::optional<std::string> name, std::optional<std::string> email);

} // namespace belvakit
