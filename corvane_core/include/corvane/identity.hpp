#pragma once

#include <memory>
#include <optional>
#include <string>

namespace corvane {

// Who the end user is: anonymous (with an optional name and email) or a JWT.
class Identity {
public:
    virtual ~Identity() = default;

    static std::shared_ptr<Identity> createAnonymous(std::optional<std::string> name = std::nullopt,
                                                     std::optional<std::string> email = std::nullopt);
    static std::shared_ptr<Identity> createJwt(std::string token);
};

class Anonymous final : public Identity {
public:
    Anonymous(std::optional<std::string> name, std::optional<std::string> email)
        : name_(std::move(name)), email_(std::move(email)) {}
    const std::optional<std::string>& name() const { return name_; }
    const std::optional<std::string>& email() const { return email_; }

private:
    std::optional<std::string> name_;
    std::optional<std::string> email_;
};

class Jwt final : public Identity {
public:
    explicit Jwt(std::string token) : token_(std::move(token)) {}
    const std::string& token() const { return token_; }

private:
    std::string token_;
};

} // namespace corvane
