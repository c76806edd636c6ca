#pragma once

#include "corvane/session_store.hpp"

#include <boost/json/value.hpp>

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// A small persistent key-value store of JSON values.
class UserDefaultsStore {
public:
    virtual ~UserDefaultsStore() = default;
    virtual std::optional<boost::json::value> value(const std::string& forKey) const = 0;
    virtual void set(boost::json::value value, const std::string& forKey) = 0;
};

// The core's session store seen through that interface.
class SessionUserDefaultsStore final : public UserDefaultsStore {
public:
    explicit SessionUserDefaultsStore(std::shared_ptr<corvane::SessionStore> sessionStore)
        : sessionStore_(std::move(sessionStore)) {}
    std::optional<boost::json::value> value(const std::string& forKey) const override {
        return sessionStore_->value(forKey);
    }
    void set(boost::json::value value, const std::string& forKey) override {
        sessionStore_->setValue(forKey, std::move(value));
    }

private:
    std::shared_ptr<corvane::SessionStore> sessionStore_;
};

// The current core object's session store; null when the core isn't set up or has none.
std::shared_ptr<UserDefaultsStore> sessionUserDefaultsStore();

} // namespace belvakit
