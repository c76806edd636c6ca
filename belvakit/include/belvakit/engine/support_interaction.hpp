#pragma once

#include "belvakit/date.hpp"
#include "quorvel/messaging_item.hpp"

#include <concepts>
#include <string>
#include <vector>

namespace belvakit {

// A record of the support dialog, as the messaging screen will show it.
template <class T>
concept SupportInteraction = requires(const T& record) {
    { record.id } -> std::convertible_to<std::string>;
    { record.timestamp } -> std::convertible_to<Date>;
    { record.messageStatus } -> std::convertible_to<quorvel::ItemDeliveryStatus>;
};

// The bot's text.
struct SupportTextMessage {
    std::string id;
    Date timestamp = 0;
    quorvel::ItemDeliveryStatus messageStatus = quorvel::ItemDeliveryStatus::received;
    std::string message;

    quorvel::MessagingItem item(const std::string& botName) const;
};

// The user's text.
struct SupportTextQuery {
    std::string id;
    Date timestamp = 0;
    quorvel::ItemDeliveryStatus messageStatus = quorvel::ItemDeliveryStatus::pending;
    std::string message;

    quorvel::MessagingItem item() const;
};

struct SupportOption {
    std::string id;
    std::string text;
};

struct SupportResponseOptionsMessage {
    std::string id;
    quorvel::ItemDeliveryStatus messageStatus = quorvel::ItemDeliveryStatus::received;
    std::vector<SupportOption> responses;
    Date timestamp = 0;

    quorvel::MessagingItem item() const;
};

struct SupportActionOptionsMessage {
    std::string id;
    Date timestamp = 0;
    quorvel::ItemDeliveryStatus messageStatus = quorvel::ItemDeliveryStatus::received;
    quorvel::Action::Block action;
    std::string titleText;
    std::string buttonText;

    quorvel::MessagingItem item() const;
};

static_assert(SupportInteraction<SupportTextMessage> && SupportInteraction<SupportTextQuery> &&
              SupportInteraction<SupportResponseOptionsMessage> && SupportInteraction<SupportActionOptionsMessage>);

} // namespace belvakit
