#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <typeindex>

namespace corvane {

// The providers a host's core offers, one per interface type. Libraries above the core look
// theirs up by interface; an absent provider is null.
class ProviderModule {
public:
    template <class Interface>
    void setProvider(std::shared_ptr<Interface> provider) {
        std::lock_guard lock(mutex_);
        providers_[typeid(Interface)] = std::move(provider);
    }

    template <class Interface>
    std::shared_ptr<Interface> provider() const {
        std::lock_guard lock(mutex_);
        auto found = providers_.find(typeid(Interface));
        return found == providers_.end() ? nullptr : std::static_pointer_cast<Interface>(found->second);
    }

private:
    mutable std::mutex mutex_;
    std::map<std::type_index, std::shared_ptr<void>> providers_;
};

} // namespace corvane
