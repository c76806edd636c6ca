#pragma once

#include "belvakit/attachments/cache.hpp"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace bench {

// The 10,000-message conversation that `conversation_load` reads, saved under `key` in the
// "Tickets" cache `cache`.
struct SavedConversation {
    std::shared_ptr<belvakit::ConcreteCache> cache;
    std::string key;
    std::filesystem::path file;
    std::size_t fileSize = 0;
};

const SavedConversation& savedConversation();
// One iteration of `conversation_load`: the file read and decoded. The number of messages.
std::size_t loadSavedConversation();

} // namespace bench
