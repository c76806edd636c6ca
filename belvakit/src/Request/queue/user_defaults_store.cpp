#include "belvakit/Request/queue/user_defaults_store.hpp"

#include "corvane/corvane.hpp"

namespace belvakit {

std::shared_ptr<UserDefaultsStore> sessionUserDefaultsStore() {
    const auto core = corvane::Corvane::instance();
    if (!core || !core->storeModule().sessionStore) return nullptr;
    return std::make_shared<SessionUserDefaultsStore>(core->storeModule().sessionStore);
}

} // namespace belvakit
