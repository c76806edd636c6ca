#pragma once

#include "corvane/action_handler.hpp"

#include <optional>
#include <string>

namespace belvakit {

// Opens the new-request screen, presented in its own navigation stack, for one action name that
// the host chooses and registers.
struct CreateRequestActionHandler final : corvane::ActionHandler {
    explicit CreateRequestActionHandler(std::string name,
                                        std::optional<corvane::ActionDescription> described = std::nullopt)
        : actionName(std::move(name)), description(std::move(described)) {}

    std::string actionName;
    std::optional<corvane::ActionDescription> description;

    bool canHandle(const std::string& name) const override { return name == actionName; }
    // Takes "controller" (uikit::ViewController::Ptr) to present on and "configs"
    // (mirrowset::ConfigurationList); without both it logs an error and presents nothing.
    void handle(const std::map<std::string, std::any>& info) override;
    int priority() const override { return 0; }
    std::optional<corvane::ActionDescription> actionDescription() const override { return description; }
    bool isEqual(const corvane::ActionHandler& other) const override;
};

} // namespace belvakit
