#include "platform/url_opener.hpp"

namespace platform {

namespace {
std::mutex sharedMutex;
std::shared_ptr<URLOpener>& sharedOpener() {
    static std::shared_ptr<URLOpener> opener = std::make_shared<HeadlessURLOpener>();
    return opener;
}
} // namespace

std::shared_ptr<URLOpener> URLOpener::shared() {
    std::lock_guard lock(sharedMutex);
    return sharedOpener();
}

std::shared_ptr<URLOpener> URLOpener::setShared(std::shared_ptr<URLOpener> opener) {
    if (!opener) opener = std::make_shared<HeadlessURLOpener>();
    std::lock_guard lock(sharedMutex);
    std::swap(sharedOpener(), opener);
    return opener;
}

void HeadlessURLOpener::open(const URL& url) {
    std::lock_guard lock(mutex_);
    opened_.push_back(url);
}

std::vector<URL> HeadlessURLOpener::openedURLs() const {
    std::lock_guard lock(mutex_);
    return opened_;
}

} // namespace platform
