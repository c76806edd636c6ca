#pragma once

#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_rows.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"
#include "dastrel/request.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace belvakit {

// The tickets cache entry that keeps the last list the help desk sent, for going offline.
inline constexpr const char* requestListOfflineCacheKey = "request-list-offline-cache";

std::string encodeRequestListOfflineCache(const dastrel::CRVRequestsWithCommentingAgents& response);
// Nothing when the bytes are not a JSON object; unreadable records inside one are left out.
std::optional<dastrel::CRVRequestsWithCommentingAgents> decodeRequestListOfflineCache(std::string_view bytes);

// Where the list's tickets and avatars come from. Implementations keep no state: the pipeline
// holds the type's one instance, not an object of its own.
class RequestListServiceProtocol {
public:
    using FetchRequestsCompletion = std::function<void(std::optional<dastrel::CRVRequestsWithCommentingAgents>,
                                                       std::optional<NetworkError>)>;
    using FetchAgentAvatarsCompletion = std::function<void(std::vector<RequestListCellData>)>;

    virtual ~RequestListServiceProtocol() = default;
    virtual void fetchRequests(std::shared_ptr<Cache> cache, FetchRequestsCompletion completion) const = 0;
    // The completion gets the rows in their order, each agent's image filled in where one could be had.
    virtual void fetchAgentAvatars(RequestListRows requests, std::shared_ptr<Cache> cache,
                                   std::shared_ptr<AttachmentsProvider> attachmentsProvider,
                                   FetchAgentAvatarsCompletion completion) const = 0;
};

class RequestListService final : public RequestListServiceProtocol {
public:
    static std::shared_ptr<const RequestListServiceProtocol> shared();

    // A fresh answer is written to `cache` before the completion runs. A 401 completes twice:
    // `auth`, then `generic`, so those who act on `auth` run before the list shows its error.
    void fetchRequests(std::shared_ptr<Cache> cache, FetchRequestsCompletion completion) const override;
    // Each avatar URL is fetched once, however many rows show it.
    void fetchAgentAvatars(RequestListRows requests, std::shared_ptr<Cache> cache,
                           std::shared_ptr<AttachmentsProvider> attachmentsProvider,
                           FetchAgentAvatarsCompletion completion) const override;
};

} // namespace belvakit
