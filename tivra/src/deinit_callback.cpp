#include "tivra/deinit_callback.hpp"

#include "platform/object.hpp"

namespace tivra {

namespace {
const std::string associationKey = "DEINITCALLBACK_TIVRA";
}

DeinitCallback::~DeinitCallback() {
    for (auto& callback : callbacks) callback();
}

DeinitCallback& deinitCallbackOf(platform::Object& object) {
    auto attached = std::static_pointer_cast<DeinitCallback>(object.associatedObject(associationKey));
    if (!attached) {
        attached = std::make_shared<DeinitCallback>();
        object.setAssociatedObject(associationKey, attached);
    }
    return *attached;
}

} // namespace tivra
