#include "platform/notification_center.hpp"

#include <algorithm>
#include <atomic>

namespace platform {

struct NotificationCenter::Entry {
    std::string name;
    const Object* object;
    Block block;
    // Cleared on removal, so a post that already copied the list skips it.
    std::atomic<bool> active{true};
};

ObservationToken& ObservationToken::operator=(ObservationToken&& other) noexcept {
    if (this != &other) {
        reset();
        remove_ = std::move(other.remove_);
        other.remove_ = nullptr;
    }
    return *this;
}

ObservationToken::~ObservationToken() { reset(); }

void ObservationToken::reset() {
    if (!remove_) return;
    auto remove = std::move(remove_);
    remove_ = nullptr;
    remove();
}

std::shared_ptr<NotificationCenter> NotificationCenter::make() {
    return std::shared_ptr<NotificationCenter>(new NotificationCenter());
}

NotificationCenter& NotificationCenter::defaultCenter() {
    static const std::shared_ptr<NotificationCenter> center = make();
    return *center;
}

ObservationToken NotificationCenter::addObserver(std::string name, const Object* object, Block block) {
    auto entry = std::make_shared<Entry>();
    entry->name = std::move(name);
    entry->object = object;
    entry->block = std::move(block);
    {
        std::lock_guard lock(mutex_);
        entries_.push_back(entry);
    }
    // The token holds the centre weakly: a token may outlive a centre made for a test.
    return ObservationToken([weakCenter = weak_from_this(), entry] {
        entry->active = false;
        if (auto center = weakCenter.lock()) center->remove(entry);
    });
}

void NotificationCenter::remove(const std::shared_ptr<Entry>& entry) {
    std::lock_guard lock(mutex_);
    std::erase(entries_, entry);
}

void NotificationCenter::post(const Notification& notification) const {
    std::vector<std::shared_ptr<Entry>> snapshot;
    {
        std::lock_guard lock(mutex_);
        snapshot = entries_;
    }
    for (const auto& entry : snapshot) {
        if (!entry->active || entry->name != notification.name) continue;
        if (entry->object && entry->object != notification.object) continue;
        entry->block(notification);
    }
}

void NotificationCenter::post(std::string name, Object* object) const {
    post(Notification{std::move(name), object, {}});
}

std::size_t NotificationCenter::observerCount() const {
    std::lock_guard lock(mutex_);
    return entries_.size();
}

} // namespace platform
