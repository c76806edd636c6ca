#pragma once

#include "belvakit/Request/requestlist/agent_avatar_info.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

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
    // The same for many: the cache is read for all of them in one block on its queue, and the
    // completion runs once per info, given the info's place in `infos`. What the cache holds is
    // answered in one turn of the main queue.
    using ManyCompletion = std::function<void(std::size_t index, AgentAvatarInfo info, bool fromNetwork)>;
    void fetch(std::vector<AgentAvatarInfo> infos, ManyCompletion completion) const;
};

} // namespace belvakit
