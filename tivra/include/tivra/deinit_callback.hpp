#pragma once

#include <functional>
#include <vector>

namespace platform {
class Object;
}

namespace tivra {

// Runs its callbacks, in order of adding, when destroyed.
class DeinitCallback {
public:
    DeinitCallback() = default;
    DeinitCallback(const DeinitCallback&) = delete;
    DeinitCallback& operator=(const DeinitCallback&) = delete;
    ~DeinitCallback();

    std::vector<std::function<void()>> callbacks;
};

// The object's DeinitCallback, attached under "DEINITCALLBACK_TIVRA" on first use.
DeinitCallback& deinitCallbackOf(platform::Object& object);

} // namespace tivra
