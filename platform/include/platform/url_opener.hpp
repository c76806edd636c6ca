#pragma once

#include "platform/url.hpp"

#include <memory>
#include <mutex>
#include <vector>

namespace platform {

// Hands a URL to whatever the platform opens links with (a browser, another app).
class URLOpener {
public:
    virtual ~URLOpener() = default;
    // Fire and forget: no options and no completion, as the system uses it.
    virtual void open(const URL& url) = 0;

    // The process's opener; a HeadlessURLOpener until something else is installed.
    static std::shared_ptr<URLOpener> shared();
    // Installs `opener` (null puts back a headless one) and returns the previous one. Thread-safe.
    static std::shared_ptr<URLOpener> setShared(std::shared_ptr<URLOpener> opener);
};

// Opens nothing; records every request, in order, for tests and headless hosts.
class HeadlessURLOpener final : public URLOpener {
public:
    void open(const URL& url) override;
    std::vector<URL> openedURLs() const;

private:
    mutable std::mutex mutex_;
    std::vector<URL> opened_;
};

} // namespace platform
