#include "corvane/action_handler.hpp"

#include <algorithm>

namespace corvane {

void ActionHandlerRegistry::add(std::shared_ptr<ActionHandler> actionHandler) {
    if (!actionHandler) return;
    std::lock_guard lock(mutex_);
    std::erase_if(handlers_, [&](const auto& existing) { return existing->isEqual(*actionHandler); });
    handlers_.push_back(std::move(actionHandler));
}

void ActionHandlerRegistry::remove(const ActionHandler& actionHandler) {
    std::lock_guard lock(mutex_);
    std::erase_if(handlers_, [&](const auto& existing) { return existing->isEqual(actionHandler); });
}

std::shared_ptr<ActionHandler> ActionHandlerRegistry::handler(const std::string& forAction) const {
    std::lock_guard lock(mutex_);
    std::shared_ptr<ActionHandler> best;
    for (const auto& candidate : handlers_)
        if (candidate->canHandle(forAction) && (!best || candidate->priority() >= best->priority())) best = candidate;
    return best;
}

std::size_t ActionHandlerRegistry::count() const {
    std::lock_guard lock(mutex_);
    return handlers_.size();
}

} // namespace corvane
