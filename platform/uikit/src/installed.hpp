#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace uikit {

// A process-wide service that a host replaces (text or page measuring). Views read it on every
// measure, so reading takes no lock; each one installed stays alive, so a reference once read
// stays good.
template <class Service, class Default>
class Installed {
public:
    Installed() : current_(keep(std::make_shared<Default>())) {}

    const Service& get() const { return *current_.load(std::memory_order_acquire); }

    // Null puts back the default. Returns the one replaced.
    std::shared_ptr<const Service> set(std::shared_ptr<const Service> service) {
        std::lock_guard lock(mutex_);
        if (!service) service = std::make_shared<Default>();
        const auto previous = kept_.back();
        current_.store(keep(std::move(service)), std::memory_order_release);
        return previous;
    }

private:
    const Service* keep(std::shared_ptr<const Service> service) {
        kept_.push_back(std::move(service));
        return kept_.back().get();
    }

    std::mutex mutex_;
    std::vector<std::shared_ptr<const Service>> kept_;
    std::atomic<const Service*> current_;
};

} // namespace uikit
