#pragma once

#include <string>
#include <typeinfo>

namespace platform {

// "tivra::Store" for the type tivra::Store.
std::string demangledName(const std::type_info& type);

// The printed name without namespaces or enclosing types: "Store" for tivra::Store,
// "BlockReducer<int>" for tivra::BlockReducer<int>.
std::string unqualifiedName(const std::type_info& type);

} // namespace platform
