#include "platform/type_name.hpp"

#include <cxxabi.h>
#include <cstdlib>
#include <memory>

namespace platform {

std::string demangledName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                 std::free);
    return status == 0 && name ? std::string(name.get()) : std::string(type.name());
}

std::string unqualifiedName(const std::type_info& type) {
    const std::string full = demangledName(type);
    // The last "::" outside template brackets starts the unqualified name.
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < full.size(); ++i) {
        const char c = full[i];
        if (c == '<' || c == '(') ++depth;
        else if (c == '>' || c == ')') --depth;
        else if (depth == 0 && c == ':' && i + 1 < full.size() && full[i + 1] == ':') start = i + 2;
    }
    return full.substr(start);
}

} // namespace platform
