#include "belvakit/entry/support_ui.hpp"

#include "corvane/core_logger.hpp"
#include "dastrel/support.hpp"

#include <mutex>

namespace belvakit {

namespace {
std::mutex instanceMutex;
std::shared_ptr<SupportUI>& sharedInstance() {
    static std::shared_ptr<SupportUI> instance;
    return instance;
}
} // namespace

void SupportUI::initialize(std::shared_ptr<corvane::Corvane> withCorvane) {
    if (!withCorvane) {
        corvane::CoreLogger::error(
            "The Corvane instance passed into initialize(withCorvane:) was nil.\n"
            "Failed to initialize SupportUI, have you initialized the Core SDK?");
        return;
    }
    dastrel::Support::initialize(withCorvane);
    std::shared_ptr<SupportUI> created(new SupportUI(std::move(withCorvane)));
    {
        std::lock_guard lock(instanceMutex);
        sharedInstance() = std::move(created);
    }
    corvane::CoreLogger::info("Initializing Belva Kit.");
}

std::shared_ptr<SupportUI> SupportUI::instance() {
    std::shared_ptr<SupportUI> current;
    {
        std::lock_guard lock(instanceMutex);
        current = sharedInstance();
    }
    if (!current) corvane::CoreLogger::warn("Instance of SupportUI is nil, have you initialized SupportUI?");
    return current;
}

bool SupportUI::refreshRequest(const std::string& requestId) const {
    auto support = dastrel::Support::instance();
    if (!support) {
        corvane::CoreLogger::warn("Instance of Support is nil, have you initialized SupportUI?");
        return false;
    }
    return support->refreshRequest(requestId);
}

std::optional<std::string> SupportUI::helpCenterLocaleOverride() const {
    auto support = dastrel::Support::instance();
    return support ? support->helpCenterLocaleOverride() : std::nullopt;
}

void SupportUI::setHelpCenterLocaleOverride(std::optional<std::string> locale) {
    if (auto support = dastrel::Support::instance()) support->setHelpCenterLocaleOverride(std::move(locale));
}

} // namespace belvakit
