#pragma once

#include "corvane/action_handler.hpp"
#include "corvane/identity.hpp"
#include "corvane/provider_module.hpp"
#include "corvane/store_module.hpp"

#include <memory>
#include <mutex>
#include <string>

namespace corvane {

struct AccountDetails {
    std::string accountUrl;
    std::string appId;
    std::string clientId;
};

// The host's core object: account, identity, storage, providers and the action handlers.
class Corvane {
public:
    struct Configuration {
        AccountDetails accountDetails;
        StoreModule storeModule;
        std::shared_ptr<ProviderModule> providerModule = std::make_shared<ProviderModule>();
    };

    // Makes the shared instance, replacing any earlier one.
    static std::shared_ptr<Corvane> initialize(Configuration configuration);
    // The shared instance, or null before `initialize`.
    static std::shared_ptr<Corvane> instance();
    // Drops the shared instance (a host logging out, tests).
    static void reset();

    explicit Corvane(Configuration configuration);

    std::shared_ptr<Identity> identity() const;
    void setIdentity(std::shared_ptr<Identity> identity);

    const AccountDetails& accountDetails() const { return configuration_.accountDetails; }
    // The account's base URL as text ("https://company.example.com").
    const std::string& corvaneUrl() const { return configuration_.accountDetails.accountUrl; }
    const StoreModule& storeModule() const { return configuration_.storeModule; }
    ProviderModule& providerModule() const { return *configuration_.providerModule; }
    ActionHandlerRegistry& actionHandlerRegistry() { return actionHandlerRegistry_; }

private:
    Configuration configuration_;
    ActionHandlerRegistry actionHandlerRegistry_;
    mutable std::mutex identityMutex_;
    std::shared_ptr<Identity> identity_;
};

} // namespace corvane
