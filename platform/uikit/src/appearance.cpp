#include "uikit/appearance.hpp"

#include <map>
#include <mutex>
#include <tuple>

namespace uikit {

namespace {
using Key = std::tuple<std::string, std::string, std::string>;
std::mutex mutex;
std::map<Key, std::any>& values() {
    static std::map<Key, std::any> table;
    return table;
}
} // namespace

void Appearance::set(std::string_view className, std::string_view property, std::any value,
                     std::string_view containerClassName) {
    std::lock_guard lock(mutex);
    Key key{std::string(className), std::string(property), std::string(containerClassName)};
    if (value.has_value())
        values()[std::move(key)] = std::move(value);
    else
        values().erase(key);
}

std::optional<std::any> Appearance::get(std::string_view className, std::string_view property,
                                        std::string_view containerClassName) {
    std::lock_guard lock(mutex);
    const auto found = values().find(Key{std::string(className), std::string(property), std::string(containerClassName)});
    if (found == values().end()) return std::nullopt;
    return found->second;
}

void Appearance::reset() {
    std::lock_guard lock(mutex);
    values().clear();
}

} // namespace uikit
