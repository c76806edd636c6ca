#pragma once

#include <optional>
#include <string>
#include <variant>

namespace belvakit {

// Where the support dialog stands. A state is entered by setting it and then running it.
struct SupportEngineState {
    struct ShowInitialUserMessage {
        std::string conversationLog;
        bool operator==(const ShowInitialUserMessage&) const = default;
    };
    struct IsEmailRequiredToCreateTicket {
        std::optional<std::string> id;
        std::string message;
        bool operator==(const IsEmailRequiredToCreateTicket&) const = default;
    };
    struct WaitingForEmailEntry {
        std::string pendingMessage;
        bool operator==(const WaitingForEmailEntry&) const = default;
    };
    struct CreateTicket {
        std::string body;
        bool showRequestListOption = false;
        bool operator==(const CreateTicket&) const = default;
    };
    struct ShowConfirmation {
        bool shouldShowRequestListOption = false;
        bool operator==(const ShowConfirmation&) const = default;
    };
    struct ShowErrorMessageWithRetry {
        std::string body;
        bool showRequestListOption = false;
        bool operator==(const ShowErrorMessageWithRetry&) const = default;
    };
    struct NotStarted {
        bool operator==(const NotStarted&) const = default;
    };
    struct ShowGreeting {
        bool operator==(const ShowGreeting&) const = default;
    };
    struct WaitingForTicketEntry {
        bool operator==(const WaitingForTicketEntry&) const = default;
    };

    using Value = std::variant<ShowInitialUserMessage, IsEmailRequiredToCreateTicket, WaitingForEmailEntry,
                               CreateTicket, ShowConfirmation, ShowErrorMessageWithRetry, NotStarted, ShowGreeting,
                               WaitingForTicketEntry>;
    Value value = NotStarted{};

    template <class Case>
    const Case* as() const {
        return std::get_if<Case>(&value);
    }

    bool operator==(const SupportEngineState&) const = default;
};

} // namespace belvakit
