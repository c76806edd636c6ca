#pragma once

#include "quorvel/messaging_item.hpp"

#include <any>
#include <string>
#include <variant>

namespace quorvel {

// What the user or the messaging screen did, as an engine hears it.
struct Event {
    struct MessageSubmitted {
        std::string text;
    };
    struct ResponseOptionClicked {
        std::string id;
        std::string text;
    };
    struct ActionOptionClicked {
        std::string id;
        Action action;
        // The screen's navigation controller, whatever the host's UI kit makes of it.
        std::any navigationController;
    };
    struct FileSelected {
        std::string path;
    };
    struct MessageDeleted {
        std::string id;
    };
    struct MessageResent {
        std::string id;
    };
    struct ArticleSuggestionClicked {
        std::string articleId;
    };
    struct OnMenuTap {
        std::string item;
    };
    struct TransferOptionClicked {
        std::string engineId;
    };
    struct ApplicationEventRaised {
        std::string name;
    };
    struct TypingStarted {};
    struct TypingStopped {};
    struct ReconnectButtonClicked {};

    using Value = std::variant<MessageSubmitted, ResponseOptionClicked, ActionOptionClicked, FileSelected,
                               MessageDeleted, MessageResent, ArticleSuggestionClicked, OnMenuTap,
                               TransferOptionClicked, ApplicationEventRaised, TypingStarted, TypingStopped,
                               ReconnectButtonClicked>;
    Value value;
};

} // namespace quorvel
