#pragma once

#include <any>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace quorvel {

enum class ItemDeliveryStatus { pending, sent, received };

// A choice the user can tap; its text becomes the user's answer.
struct Option {
    std::string id;
    std::string text;

    bool operator==(const Option&) const = default;
};

// A button that runs host-side work; the screen passes what the work needs in `arguments`.
struct Action {
    using Block = std::function<void(const std::map<std::string, std::any>& arguments)>;
    std::string id;
    std::string text;
    Block block;

    // The block can't be compared: two actions are equal by what the user sees.
    bool operator==(const Action& other) const { return id == other.id && text == other.text; }
};

// The end user's own text.
struct TextQuery {
    std::string id;
    std::string message;
    double timestamp = 0;
    ItemDeliveryStatus status = ItemDeliveryStatus::pending;

    bool operator==(const TextQuery&) const = default;
};

// A text from an agent or a bot.
struct TextResponse {
    std::string id;
    std::string message;
    std::string agentName;
    bool isBot = false;
    double timestamp = 0;
    ItemDeliveryStatus status = ItemDeliveryStatus::received;

    bool operator==(const TextResponse&) const = default;
};

struct OptionsResponse {
    std::string id;
    std::vector<Option> options;
    double timestamp = 0;
    ItemDeliveryStatus status = ItemDeliveryStatus::received;

    bool operator==(const OptionsResponse&) const = default;
};

struct ActionResponse {
    std::string id;
    std::string titleText;
    std::vector<Action> actions;
    double timestamp = 0;
    ItemDeliveryStatus status = ItemDeliveryStatus::received;

    bool operator==(const ActionResponse&) const = default;
};

// One row of the messaging screen.
using MessagingItem = std::variant<TextQuery, TextResponse, OptionsResponse, ActionResponse>;

const std::string& itemId(const MessagingItem& item);

} // namespace quorvel
