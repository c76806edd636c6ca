#include "corvane/corvane.hpp"

namespace corvane {

namespace {
std::mutex instanceMutex;
std::shared_ptr<Corvane>& sharedInstance() {
    static std::shared_ptr<Corvane> instance;
    return instance;
}
} // namespace

std::shared_ptr<Corvane> Corvane::initialize(Configuration configuration) {
    auto created = std::make_shared<Corvane>(std::move(configuration));
    std::lock_guard lock(instanceMutex);
    sharedInstance() = created;
    return created;
}

std::shared_ptr<Corvane> Corvane::instance() {
    std::lock_guard lock(instanceMutex);
    return sharedInstance();
}

void Corvane::reset() {
    std::lock_guard lock(instanceMutex);
    sharedInstance().reset();
}

Corvane::Corvane(Configuration configuration) : configuration_(std::move(configuration)) {
    if (!configuration_.providerModule) configuration_.providerModule = std::make_shared<ProviderModule>();
    if (!configuration_.storeModule.sessionStore) configuration_.storeModule.sessionStore = std::make_shared<SessionStore>();
}

std::shared_ptr<Identity> Corvane::identity() const {
    std::lock_guard lock(identityMutex_);
    return identity_;
}

void Corvane::setIdentity(std::shared_ptr<Identity> identity) {
    std::lock_guard lock(identityMutex_);
    identity_ = std::move(identity);
}

} // namespace corvane
