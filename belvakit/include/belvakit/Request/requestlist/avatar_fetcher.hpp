#pragma once

#include "belvakit/Request/requestlist/agent_avatar_info.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"

#include <functional>
#include <memory>
#include <string>

namespace belvakit {

// The "Avatars" cache key of an avatar URL; a key is a file name, so every "/" is left out.
std::string avatarCacheKey(const std::string& avatarUrl);

// Gets an agent's avatar from the "Avatars" cache, else downloads it and keeps the bytes there.
struct AvatarFetcher {
    // `fromNetwork` tells a download from a cache hit. The info has no image when none could be had.
    using Completion = std::function<void(AgentAvatarInfo info, bool fromNetwork)>;

    std::shared_ptr<AttachmentsProvider> attachmentsProvider;
    std::shared_ptr<Cache> cache;

    // The completion runs once, on the main queue. An info without a URL completes at once, unchanged.
    void fetch(const AgentAvatarInfo& info, Completion completion) const;
};

} // namespace belvakit
