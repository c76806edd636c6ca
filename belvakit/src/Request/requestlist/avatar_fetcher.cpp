#include "belvakit/Request/requestlist/avatar_fetcher.hpp"

#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"

#include <algorithm>

namespace belvakit {

namespace {

AgentAvatarInfo withImage(AgentAvatarInfo info, platform::ImagePtr image) {
    info.avatarImage = std::move(image);
    return info;
}

void download(const std::shared_ptr<AttachmentsProvider>& provider, const std::shared_ptr<Cache>& cache,
              const AgentAvatarInfo& info, const AvatarFetcher::Completion& completion) {
    if (!provider) {
        completion(info, false);
        return;
    }
    provider->getAttachment(*info.avatarUrl, [cache, info, completion](std::optional<std::string> data,
                                                                       std::optional<dastrel::ProviderError>) {
        platform::ImagePtr image = data ? platform::decodeImage(*data) : nullptr;
        // Only bytes that make an image are worth keeping.
        if (image && cache) cache->store(avatarCacheKey(*info.avatarUrl), *data);
        platform::MainQueue::shared().async(
            [info, completion, image = std::move(image)] { completion(withImage(info, image), image != nullptr); });
    });
}

} // namespace

std::string avatarCacheKey(const std::string& avatarUrl) {
    std::string key = avatarUrl;
    key.erase(std::remove(key.begin(), key.end(), '/'), key.end());
    return key;
}

void AvatarFetcher::fetch(const AgentAvatarInfo& info, Completion completion) const {
    if (!info.avatarUrl || info.avatarUrl->empty()) {
        platform::MainQueue::shared().async([info, completion] { completion(info, false); });
        return;
    }
    if (!cache) {
        download(attachmentsProvider, cache, info, completion);
        return;
    }
    cache->fetch(avatarCacheKey(*info.avatarUrl),
                 [provider = attachmentsProvider, cache = cache, info, completion](std::optional<std::string> bytes) {
                     if (auto image = bytes ? platform::decodeImage(*bytes) : nullptr) {
                         completion(withImage(info, std::move(image)), false);
                         return;
                     }
                     download(provider, cache, info, completion);
                 });
}

} // namespace belvakit
