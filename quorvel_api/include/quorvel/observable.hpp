#pragma once

#include "quorvel/update.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace quorvel {

// Handle of one observation. `cancel` stops it; dropping the handle does not.
class ObservationToken {
public:
    ObservationToken() = default;
    explicit ObservationToken(std::function<void()> cancellation) : cancellation_(std::move(cancellation)) {}
    void cancel();

private:
    std::function<void()> cancellation_;
};

// Something that sends updates to the observers it was given.
class Observable {
public:
    using Observer = std::function<void(const Update&)>;

    virtual ~Observable() = default;

    virtual ObservationToken observeUpdates(Observer observer) = 0;

    // An observer that goes quiet once its owner is gone.
    ObservationToken addObserver(std::weak_ptr<void> owner, Observer observer);
    // Calls every observer with the update; an observer may cancel itself meanwhile.
    void notifyObservers(const Update& update) const;

protected:
    // The observers as they are now.
    virtual std::vector<Observer> currentObservers() const = 0;
};

} // namespace quorvel
