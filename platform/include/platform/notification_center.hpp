#pragma once

#include "platform/object.hpp"

#include <any>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace platform {

struct Notification {
    std::string name;
    // The sender; only valid during delivery.
    Object* object = nullptr;
    std::any userInfo;
};

class NotificationCenter;

// Keeps an observation alive; destroying or resetting it removes the observer.
class ObservationToken {
public:
    ObservationToken() = default;
    ObservationToken(ObservationToken&& other) noexcept = default;
    ObservationToken& operator=(ObservationToken&& other) noexcept;
    ObservationToken(const ObservationToken&) = delete;
    ObservationToken& operator=(const ObservationToken&) = delete;
    ~ObservationToken();

    void reset();
    explicit operator bool() const { return static_cast<bool>(remove_); }

private:
    friend class NotificationCenter;
    explicit ObservationToken(std::function<void()> remove) : remove_(std::move(remove)) {}
    std::function<void()> remove_;
};

// Synchronous broadcast by name: observers run on the posting thread, in order of adding.
class NotificationCenter : public std::enable_shared_from_this<NotificationCenter> {
public:
    using Block = std::function<void(const Notification&)>;

    static std::shared_ptr<NotificationCenter> make();
    // The process's default centre.
    static NotificationCenter& defaultCenter();

    // `object` narrows delivery to one sender; null takes every sender.
    [[nodiscard]] ObservationToken addObserver(std::string name, const Object* object, Block block);
    void post(const Notification& notification) const;
    void post(std::string name, Object* object) const;

    std::size_t observerCount() const;

private:
    struct Entry;
    NotificationCenter() = default;
    void remove(const std::shared_ptr<Entry>& entry);

    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<Entry>> entries_;
};

} // namespace platform
