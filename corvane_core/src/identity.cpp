#include "corvane/identity.hpp"

namespace corvane {

std::shared_ptr<Identity> Identity::createAnonymous(std::optional<std::string> name, std::optional<std::string> email) {
    return std::make_shared<Anonymous>(std::move(name), std::move(email));
}

std::shared_ptr<Identity> Identity::createJwt(std::string token) { return std::make_shared<Jwt>(std::move(token)); }

} // namespace corvane
