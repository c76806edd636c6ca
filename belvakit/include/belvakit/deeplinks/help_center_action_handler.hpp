#pragma once

#include "corvane/action_handler.hpp"
#include "mirrowset/configurations.hpp"
#include "uikit/view_controller.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace belvakit {

// Opens the article of a Help Center link tapped in a conversation.
class HelpCenterActionHandler final : public corvane::ActionHandler {
public:
    using Starter = std::function<void(std::int64_t articleId, const uikit::ViewController::Ptr& controller,
                                       const mirrowset::ConfigurationList& configs)>;

    explicit HelpCenterActionHandler(std::string account) : accountUrl(std::move(account)) {}
    // From the account of the core instance; null without one.
    static std::shared_ptr<HelpCenterActionHandler> forCurrentAccount();

    std::string accountUrl;
    // Replaces the default opening of the article.
    Starter helpCenterStarter;

    bool canHandle(const std::string& actionName) const override;
    // Takes "url" (platform::URL), "controller" (uikit::ViewController::Ptr) and "configs"
    // (mirrowset::ConfigurationList); anything missing or of another type returns quietly.
    void handle(const std::map<std::string, std::any>& info) override;
    int priority() const override { return 10; }
    bool isEqual(const corvane::ActionHandler& other) const override;
};

} // namespace belvakit
