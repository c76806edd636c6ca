#pragma once

#include <any>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

struct ActionDescription {
    std::string localizedLabel;
    std::string imageName;
};

// Something that can handle a named action (a link, a notification), given an info dictionary.
class ActionHandler {
public:
    virtual ~ActionHandler() = default;
    virtual bool canHandle(const std::string& actionName) const = 0;
    virtual void handle(const std::map<std::string, std::any>& info) = 0;
    virtual void update(const std::string& data) { (void)data; }
    virtual int priority() const = 0;
    virtual std::optional<ActionDescription> actionDescription() const { return std::nullopt; }
    // Registration and removal go by this equality.
    virtual bool isEqual(const ActionHandler& other) const = 0;
};

class ActionHandlerRegistry {
public:
    // An equal handler already registered is replaced.
    void add(std::shared_ptr<ActionHandler> actionHandler);
    void remove(const ActionHandler& actionHandler);
    // Of the handlers that can handle the action, the one of highest priority (the latest added
    // on a tie).
    std::shared_ptr<ActionHandler> handler(const std::string& forAction) const;
    std::size_t count() const;

private:
    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<ActionHandler>> handlers_;
};

} // namespace corvane
