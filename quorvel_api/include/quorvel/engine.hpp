#pragma once

#include "quorvel/agent_details.hpp"
#include "quorvel/event.hpp"
#include "mirrowset/configurations.hpp"

#include <memory>
#include <string>

namespace quorvel {

// How the messaging screen offers an engine to hand the conversation over to.
struct TransferOptionDescription {
    std::string engineId;
    std::string displayName;

    bool operator==(const TransferOptionDescription&) const = default;
};

// The text of what was said before an engine took over.
class ConversationLog {
public:
    ConversationLog() = default;
    explicit ConversationLog(std::string log) : log_(std::move(log)) {}
    const std::string& getLog() const { return log_; }

private:
    std::string log_;
};

// What the messaging screen gives an engine when it starts it.
class QuorvelAPI {
public:
    QuorvelAPI(ConversationLog conversationLog, AgentDetails botAgentDetails, mirrowset::ConfigurationList configurations)
        : conversationLog_(std::move(conversationLog)), botAgentDetails_(std::move(botAgentDetails)),
          configurations_(std::move(configurations)) {}

    const ConversationLog& getConversationLog() const { return conversationLog_; }
    const AgentDetails& getBotAgentDetails() const { return botAgentDetails_; }
    const mirrowset::ConfigurationList& getConfigurations() const { return configurations_; }

private:
    ConversationLog conversationLog_;
    AgentDetails botAgentDetails_;
    mirrowset::ConfigurationList configurations_;
};

// A conversation partner that the messaging screen drives by events; it answers with updates.
class Engine {
public:
    virtual ~Engine() = default;

    virtual const std::string& id() const = 0;
    virtual const TransferOptionDescription& transferOptionDescription() const = 0;

    virtual void start(const QuorvelAPI& quorvelAPI) = 0;
    virtual void stop() = 0;
    // Whether leaving the screen should be confirmed first.
    virtual bool isConversationOngoing() const = 0;
    virtual void onEvent(const Event& event) = 0;
};

} // namespace quorvel
