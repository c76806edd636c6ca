#include "belvakit/Request/requestlist/request_list_service.hpp"

#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "corvane/core_logger.hpp"
#include "platform/json.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/serialize.hpp>

#include <unordered_map>

namespace belvakit {

std::string encodeRequestListOfflineCache(const dastrel::CRVRequestsWithCommentingAgents& response) {
    return boost::json::serialize(dastrel::CRVRequestsResponse::toJson(response));
}

std::optional<dastrel::CRVRequestsWithCommentingAgents> decodeRequestListOfflineCache(std::string_view bytes) {
    // The document is dropped once read: an arena makes both cheaper.
    boost::json::monotonic_resource arena;
    const auto json = platform::parseJson(bytes, boost::json::storage_ptr(&arena));
    if (!json || !json->is_object()) return std::nullopt;
    return dastrel::CRVRequestsWithCommentingAgents{dastrel::CRVRequestsResponse::parseRequestListWithDictionary(*json),
                                                    dastrel::CRVRequestsResponse::parseRequestListAgentsWithDictionary(*json)};
}

std::shared_ptr<const RequestListServiceProtocol> RequestListService::shared() {
    static const auto service = std::make_shared<const RequestListService>();
    return service;
}

void RequestListService::fetchRequests(std::shared_ptr<Cache> cache, FetchRequestsCompletion completion) const {
    auto provider = makeRequestProvider();
    // The callback keeps the provider for the length of its one call.
    provider->getAllRequests([provider, cache = std::move(cache), completion = std::move(completion)](
                                 std::optional<dastrel::CRVRequestsWithCommentingAgents> response,
                                 std::optional<dastrel::ProviderError> error) {
        if (response) {
            if (cache) cache->store(requestListOfflineCacheKey, encodeRequestListOfflineCache(*response));
            completion(std::move(response), std::nullopt);
            return;
        }
        // An answer with neither is a failure too: the list must not wait for ever.
        if (error && error->code == 401) completion(std::nullopt, NetworkError::auth);
        completion(std::nullopt, NetworkError::generic);
    });
}

namespace {

constexpr std::size_t noAvatar = static_cast<std::size_t>(-1);

// The avatars of one pass, one slot per URL, gathered on the main queue where the fetcher answers.
struct AvatarPass {
    RequestListRows requests;
    // Each row's slot, or `noAvatar`.
    std::vector<std::size_t> slotOfRow;
    std::vector<platform::ImagePtr> images;
    std::size_t waiting = 0;
    RequestListServiceProtocol::FetchAgentAvatarsCompletion completion;

    void finish() {
        auto rows = std::move(requests).take();
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto slot = slotOfRow[row];
            if (slot != noAvatar && images[slot]) rows[row].agentAvatarInfo->avatarImage = images[slot];
        }
        completion(std::move(rows));
    }
};

} // namespace

void RequestListService::fetchAgentAvatars(RequestListRows requests, std::shared_ptr<Cache> cache,
                                           std::shared_ptr<AttachmentsProvider> attachmentsProvider,
                                           FetchAgentAvatarsCompletion completion) const {
    auto pass = std::make_shared<AvatarPass>();
    pass->completion = std::move(completion);
    std::unordered_map<std::string, std::size_t> slots;
    std::vector<AgentAvatarInfo> toFetch;
    pass->slotOfRow.reserve(requests.size());
    for (const auto& request : requests) {
        const auto& info = request.agentAvatarInfo;
        if (!info || !info->avatarUrl || info->avatarUrl->empty()) {
            pass->slotOfRow.push_back(noAvatar);
            continue;
        }
        const auto [slot, added] = slots.try_emplace(*info->avatarUrl, toFetch.size());
        if (added) toFetch.push_back(*info);
        pass->slotOfRow.push_back(slot->second);
    }
    pass->requests = std::move(requests);
    pass->images.resize(toFetch.size());
    pass->waiting = toFetch.size();
    if (toFetch.empty()) return pass->finish();

    const AvatarFetcher fetcher{std::move(attachmentsProvider), std::move(cache)};
    fetcher.fetch(std::move(toFetch), [pass](std::size_t slot, AgentAvatarInfo fetched, bool fromNetwork) {
        if (fromNetwork) corvane::CoreLogger::debug("Agent avatar fetched success");
        pass->images[slot] = std::move(fetched.avatarImage);
        if (--pass->waiting == 0) pass->finish();
    });
}

} // namespace belvakit
