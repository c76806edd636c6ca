#pragma once

#include "mirrowset/configuration.hpp"

#include <memory>
#include <vector>

namespace mirrowset {

using ConfigurationList = std::vector<std::shared_ptr<Configuration>>;

// A host's list of configurations, looked up by type.
class Configurations {
public:
    Configurations() = default;
    explicit Configurations(ConfigurationList list) : list_(std::move(list)) {}

    const ConfigurationList& list() const { return list_; }

    // The first object of the type, or null.
    template <class T>
    std::shared_ptr<T> configuration() const {
        for (const auto& entry : list_)
            if (auto typed = std::dynamic_pointer_cast<T>(entry)) return typed;
        return nullptr;
    }

    // Appends a default object of the type when the list has none.
    template <class T>
    void addDefaultConfigIfNeeded() {
        if (!configuration<T>()) list_.push_back(std::make_shared<T>());
    }

    // The first object of the type, after adding a default where there was none.
    template <class T>
    std::shared_ptr<T> configurationAddingDefault() {
        addDefaultConfigIfNeeded<T>();
        return configuration<T>();
    }

    // Element by element, with each object's own equality.
    bool operator==(const Configurations& other) const;

private:
    ConfigurationList list_;
};

} // namespace mirrowset
