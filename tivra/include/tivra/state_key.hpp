#pragma once

#include "platform/type_name.hpp"

#include <string>

namespace tivra {

// The key of a slice: the unqualified printed name of its type ("RequestListState").
template <class T>
const std::string& stateKeyOf() {
    static const std::string key = platform::unqualifiedName(typeid(T));
    return key;
}

} // namespace tivra
