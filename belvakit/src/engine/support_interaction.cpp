#include "belvakit/engine/support_interaction.hpp"

namespace belvakit {

quorvel::MessagingItem SupportTextMessage::item(const std::string& botName) const {
    return quorvel::TextResponse{id, message, botName, true, timestamp, messageStatus};
}

quorvel::MessagingItem SupportTextQuery::item() const {
    return quorvel::TextQuery{id, message, timestamp, messageStatus};
}

quorvel::MessagingItem SupportResponseOptionsMessage::item() const {
    std::vector<quorvel::Option> options;
    for (const auto& response : responses) options.push_back({response.id, response.text});
    return quorvel::OptionsResponse{id, std::move(options), timestamp, messageStatus};
}

quorvel::MessagingItem SupportActionOptionsMessage::item() const {
    return quorvel::ActionResponse{id, titleText, {quorvel::Action{id, buttonText, action}}, timestamp, messageStatus};
}

} // namespace belvakit
