#include "quorvel/observable.hpp"

#include <utility>

namespace quorvel {

void ObservationToken::cancel() {
    if (auto cancellation = std::exchange(cancellation_, nullptr)) cancellation();
}

ObservationToken Observable::addObserver(std::weak_ptr<void> owner, Observer observer) {
    return observeUpdates([owner = std::move(owner), observer = std::move(observer)](const Update& update) {
        if (!owner.expired()) observer(update);
    });
}

void Observable::notifyObservers(const Update& update) const {
    for (const auto& observer : currentObservers()) observer(update);
}

} // namespace quorvel
