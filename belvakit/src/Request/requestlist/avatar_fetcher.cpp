#include "belvakit/Request/requestlist/avatar_fetcher.hpp"

#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"

#include <algorithm>

namespace belvakit {

namespace {

bool hasUrl(const AgentAvatarInfo& info) { return info.avatarUrl && !info.avatarUrl->empty(); }

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

void AvatarFetcher::fetch(std::vector<AgentAvatarInfo> infos, ManyCompletion completion) const {
    const auto answering = [completion](std::size_t index) {
        return [completion, index](AgentAvatarInfo info, bool fromNetwork) {
            completion(index, std::move(info), fromNetwork);
        };
    };
    if (!cache) {
        for (std::size_t index = 0; index < infos.size(); ++index) fetch(infos[index], answering(index));
        return;
    }
    std::vector<std::string> keys;
    keys.reserve(infos.size());
    for (const auto& info : infos) keys.push_back(hasUrl(info) ? avatarCacheKey(*info.avatarUrl) : std::string());
    cache->run([provider = attachmentsProvider, cache = cache, infos = std::move(infos), keys = std::move(keys),
                completion = std::move(completion), answering]() mutable {
        // Decoded here, off the main queue.
        std::vector<platform::ImagePtr> images;
        images.reserve(keys.size());
        for (auto& bytes : cache->readEntries(keys)) images.push_back(bytes ? platform::decodeImage(*bytes) : nullptr);
        platform::MainQueue::shared().async([provider = std::move(provider), cache = std::move(cache),
                                             infos = std::move(infos), images = std::move(images),
                                             completion = std::move(completion), answering] {
            for (std::size_t index = 0; index < infos.size(); ++index) {
                const auto& info = infos[index];
                if (hasUrl(info) && !images[index])
                    download(provider, cache, info, answering(index));
                else
                    completion(index, images[index] ? withImage(info, images[index]) : info, false);
            }
        });
    });
}

void AvatarFetcher::fetch(const AgentAvatarInfo& info, Completion completion) const {
    if (!hasUrl(info)) {
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
