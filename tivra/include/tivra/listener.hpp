#pragma once

#include <any>
#include <functional>
#include <optional>
#include <string>

namespace tivra {

struct Listener {
    std::string id;
    // Absent: the listener watches the whole State.
    std::optional<std::string> stateKey;
    std::function<void(const std::any&)> notify;
    std::function<bool(const std::any&, const std::any&)> filterBlock;
};

} // namespace tivra
