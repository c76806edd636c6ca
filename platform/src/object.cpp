#include "platform/object.hpp"

namespace platform {

Object::~Object() {
    // Release one by one so that a value's destructor still sees the others.
    while (!associated_.empty()) {
        auto node = associated_.extract(std::prev(associated_.end()));
        node.mapped().reset();
    }
}

std::shared_ptr<void> Object::associatedObject(const std::string& key) const {
    auto found = associated_.find(key);
    return found == associated_.end() ? nullptr : found->second;
}

void Object::setAssociatedObject(const std::string& key, std::shared_ptr<void> value) {
    if (value)
        associated_[key] = std::move(value);
    else
        associated_.erase(key);
}

} // namespace platform
