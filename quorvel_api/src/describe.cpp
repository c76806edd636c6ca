#include "quorvel/update.hpp"

#include "platform/overloaded.hpp"

namespace quorvel {

namespace {

using platform::Overloaded;

const char* statusName(ItemDeliveryStatus status) {
    switch (status) {
    case ItemDeliveryStatus::pending: return "pending";
    case ItemDeliveryStatus::sent: return "sent";
    case ItemDeliveryStatus::received: return "received";
    }
    return "unknown";
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string describe(const InputFieldState& state) {
    std::string text = state.enabled ? "open" : "closed";
    if (state.endUserHint) text += " hint " + quoted(*state.endUserHint);
    return text;
}

} // namespace

const std::string& itemId(const MessagingItem& item) {
    return std::visit([](const auto& typed) -> const std::string& { return typed.id; }, item);
}

std::string describe(const MessagingItem& item) {
    return std::visit(
        Overloaded{
            [](const TextQuery& query) { return "query(" + std::string(statusName(query.status)) + ") " + quoted(query.message); },
            [](const TextResponse& response) {
                return (response.isBot ? "bot " : "agent ") + quoted(response.agentName) + ": " + quoted(response.message);
            },
            [](const OptionsResponse& response) {
                std::string text = "options";
                for (const auto& option : response.options) text += " [" + option.text + "]";
                return text;
            },
            [](const ActionResponse& response) {
                std::string text = "action " + quoted(response.titleText);
                for (const auto& action : response.actions) text += " [" + action.text + "]";
                return text;
            },
        },
        item);
}

std::string describe(const Update& update) {
    return std::visit(
        Overloaded{
            [](const Update::AppendMessagingItems& append) {
                std::string text = "append";
                for (const auto& item : append.items) text += " {" + describe(item) + "}";
                return text;
            },
            [](const Update::UpdateMessagingItem& change) { return "update {" + describe(change.item) + "}"; },
            [](const Update::ShowTyping& typing) { return "typing " + quoted(typing.agent.agentName); },
            [](const Update::HideTyping&) { return std::string("hide typing"); },
            [](const Update::UpdateInputFieldState& input) { return "input " + describe(input.state); },
            [](const Update::ShowMenu& menu) { return std::string(menu.show ? "menu shown" : "menu hidden"); },
        },
        update.value);
}

std::ostream& operator<<(std::ostream& out, const Update& update) { return out << describe(update); }

} // namespace quorvel
