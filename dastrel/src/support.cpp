#include "dastrel/support.hpp"

namespace dastrel {

namespace {
std::mutex instanceMutex;
std::shared_ptr<Support>& sharedInstance() {
    static std::shared_ptr<Support> instance;
    return instance;
}
// The action a conversation on screen registers for its ticket.
const std::string refreshActionPrefix = "Request_Controller_Refresh_id_";
} // namespace

void Support::initialize(std::shared_ptr<corvane::Corvane> withCorvane) {
    auto created = std::make_shared<Support>(std::move(withCorvane));
    std::lock_guard lock(instanceMutex);
    sharedInstance() = std::move(created);
}

std::shared_ptr<Support> Support::instance() {
    std::lock_guard lock(instanceMutex);
    return sharedInstance();
}

void Support::reset() {
    std::lock_guard lock(instanceMutex);
    sharedInstance().reset();
}

bool Support::refreshRequest(const std::string& requestId) {
    if (!corvane_) return false;
    auto handler = corvane_->actionHandlerRegistry().handler(refreshActionPrefix + requestId);
    if (!handler) return false;
    handler->handle({});
    return true;
}

std::optional<std::string> Support::helpCenterLocaleOverride() const {
    std::lock_guard lock(mutex_);
    return helpCenterLocaleOverride_;
}

void Support::setHelpCenterLocaleOverride(std::optional<std::string> locale) {
    std::lock_guard lock(mutex_);
    helpCenterLocaleOverride_ = std::move(locale);
}

} // namespace dastrel
