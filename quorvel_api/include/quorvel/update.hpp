#pragma once

#include "quorvel/agent_details.hpp"
#include "quorvel/input_field_state.hpp"
#include "quorvel/messaging_item.hpp"

#include <ostream>
#include <string>
#include <variant>
#include <vector>

namespace quorvel {

// What an engine asks the messaging screen to show.
struct Update {
    struct AppendMessagingItems {
        std::vector<MessagingItem> items;
        bool animated = true;
        bool operator==(const AppendMessagingItems&) const = default;
    };
    struct UpdateMessagingItem {
        MessagingItem item;
        bool animated = true;
        bool operator==(const UpdateMessagingItem&) const = default;
    };
    struct ShowTyping {
        AgentDetails agent;
        bool operator==(const ShowTyping&) const = default;
    };
    struct HideTyping {
        bool operator==(const HideTyping&) const = default;
    };
    struct UpdateInputFieldState {
        InputFieldState state;
        bool operator==(const UpdateInputFieldState&) const = default;
    };
    struct ShowMenu {
        bool show = true;
        bool operator==(const ShowMenu&) const = default;
    };

    using Value = std::variant<AppendMessagingItems, UpdateMessagingItem, ShowTyping, HideTyping,
                               UpdateInputFieldState, ShowMenu>;
    Value value;

    static Update appendMessagingItems(std::vector<MessagingItem> items, bool animated) {
        return {AppendMessagingItems{std::move(items), animated}};
    }
    static Update updateMessagingItem(MessagingItem item, bool animated) {
        return {UpdateMessagingItem{std::move(item), animated}};
    }
    static Update showTyping(AgentDetails agent) { return {ShowTyping{std::move(agent)}}; }
    static Update hideTyping() { return {HideTyping{}}; }
    static Update updateInputFieldState(InputFieldState state) { return {UpdateInputFieldState{std::move(state)}}; }
    static Update showMenu(bool show) { return {ShowMenu{show}}; }

    bool operator==(const Update&) const = default;
};

// One line for a log or a console: what the update shows, without ids and times.
std::string describe(const MessagingItem& item);
std::string describe(const Update& update);
std::ostream& operator<<(std::ostream& out, const Update& update);

} // namespace quorvel
