#pragma once

#include "corvane/session_store.hpp"

#include <filesystem>
#include <memory>

namespace corvane {

// Where the core offers storage: a directory for caches and the session store.
struct StoreModule {
    std::filesystem::path cacheDirectory;
    std::shared_ptr<SessionStore> sessionStore;
};

} // namespace corvane
