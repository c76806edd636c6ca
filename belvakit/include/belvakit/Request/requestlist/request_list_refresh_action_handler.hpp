#pragma once

#include "corvane/action_handler.hpp"

#include <optional>
#include <string>

namespace belvakit {

// Refreshes the request list from outside, on a push or a deep link, while the list is on view.
class RequestListRefreshActionHandler final : public corvane::ActionHandler {
public:
    static constexpr const char* defaultActionName = "Request_List_Refresh";

    std::string actionName = defaultActionName;
    std::optional<corvane::ActionDescription> description;

    bool canHandle(const std::string& name) const override { return name == actionName; }
    // Fetches the list again when the core and its tickets cache are there; nothing otherwise.
    void handle(const std::map<std::string, std::any>& info) override;
    int priority() const override { return 0; }
    std::optional<corvane::ActionDescription> actionDescription() const override { return description; }
    bool isEqual(const corvane::ActionHandler& other) const override;
};

} // namespace belvakit
