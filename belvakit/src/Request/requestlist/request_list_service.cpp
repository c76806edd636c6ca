#include "belvakit/Request/requestlist/request_list_service.hpp"

#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "corvane/core_logger.hpp"
#include "platform/json.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/serialize.hpp>

#include <map>

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
        if (!error) return;
        if (error->code == 401) completion(std::nullopt, NetworkError::auth);
        completion(std::nullopt, NetworkError::generic);
    });
}

namespace {

// The avatars of one pass, by URL, gathered on the main queue where the fetcher answers.
struct AvatarPass {
    std::vector<RequestListCellData> requests;
    std::map<std::string, platform::ImagePtr> images;
    std::size_t waiting = 0;
    RequestListServiceProtocol::FetchAgentAvatarsCompletion completion;

    void finish() {
        for (auto& request : requests) {
            auto& info = request.agentAvatarInfo;
            if (!info || !info->avatarUrl) continue;
            const auto image = images.find(*info->avatarUrl);
            if (image != images.end() && image->second) info->avatarImage = image->second;
        }
        completion(std::move(requests));
    }
};

} // namespace

void RequestListService::fetchAgentAvatars(std::vector<RequestListCellData> requests, std::shared_ptr<Cache> cache,
                                           std::shared_ptr<AttachmentsProvider> attachmentsProvider,
                                           FetchAgentAvatarsCompletion completion) const {
    auto pass = std::make_shared<AvatarPass>();
    pass->completion = std::move(completion);
    std::vector<AgentAvatarInfo> toFetch;
    for (const auto& request : requests) {
        const auto& info = request.agentAvatarInfo;
        if (!info || !info->avatarUrl || info->avatarUrl->empty()) continue;
        if (pass->images.emplace(*info->avatarUrl, nullptr).second) toFetch.push_back(*info);
    }
    pass->requests = std::move(requests);
    pass->waiting = toFetch.size();
    if (toFetch.empty()) return pass->finish();

    const AvatarFetcher fetcher{std::move(attachmentsProvider), std::move(cache)};
    for (const auto& info : toFetch) {
        fetcher.fetch(info, [pass](AgentAvatarInfo fetched, bool fromNetwork) {
            if (fromNetwork) corvane::CoreLogger::debug("Agent avatar fetched success");
            pass->images[*fetched.avatarUrl] = std::move(fetched.avatarImage);
            if (--pass->waiting == 0) pass->finish();
        });
    }
}

} // namespace belvakit
