#pragma once

#include <any>
#include <map>
#include <string>

namespace belvakit {

// The value under `key` of an action's information dictionary, or null when it is missing or of
// another type.
template <class T>
const T* actionInfoValue(const std::map<std::string, std::any>& info, const std::string& key) {
    const auto found = info.find(key);
    return found == info.end() ? nullptr : std::any_cast<T>(&found->second);
}

} // namespace belvakit
