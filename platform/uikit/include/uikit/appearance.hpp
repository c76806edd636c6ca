#pragma once

#include <any>
#include <optional>
#include <string>
#include <string_view>

namespace uikit {

// The appearance proxy: values a host sets for a class's property, optionally only inside a
// container class. Screens read them before their own defaults.
class Appearance {
public:
    static void set(std::string_view className, std::string_view property, std::any value,
                    std::string_view containerClassName = {});
    static std::optional<std::any> get(std::string_view className, std::string_view property,
                                       std::string_view containerClassName = {});
    template <class T>
    static std::optional<T> value(std::string_view className, std::string_view property,
                                  std::string_view containerClassName = {}) {
        const auto found = get(className, property, containerClassName);
        if (!found) return std::nullopt;
        const T* typed = std::any_cast<T>(&*found);
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }
    // Forgets every value, for tests.
    static void reset();
};

} // namespace uikit
