#pragma once

#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_rows.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"
#include "belvakit/attachments/cache.hpp"
#include "dastrel/request.hpp"
#include "dastrel/request_updates.hpp"
#include "tivra/action.hpp"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

// The stages of loading the ticket list. Each ends by dispatching the action that starts the next.
namespace belvakit::Actions {

// The list the help desk last sent, from the tickets cache.
struct FetchCachedRequests final : tivra::AsyncAction {
    std::shared_ptr<Cache> cache;

    void execute(const tivra::GetState& getState, const tivra::DispatchFunction& dispatch) const override;
};

// Without a service the list's loading ends as a failure.
struct FetchRequests final : tivra::AsyncAction {
    bool isRefreshing = false;
    std::shared_ptr<const RequestListServiceProtocol> service;
    std::shared_ptr<RequestProvider> provider;
    std::shared_ptr<Cache> cache;

    void execute(const tivra::GetState& getState, const tivra::DispatchFunction& dispatch) const override;
};

// Adds the tickets only this device knows, then sorts and filters the whole list.
struct FetchLocalOnlyRequests final : tivra::AsyncAction {
    std::shared_ptr<Cache> cache;
    RequestListRows requestDataFetchedFromNetwork;
    bool remoteRequestsFromCache = false;
    bool showClosedRequests = false;

    void execute(const tivra::GetState& getState, const tivra::DispatchFunction& dispatch) const override;
};

// Without a service the list's loading ends as a failure.
struct FetchAgentAvatars final : tivra::AsyncAction {
    RequestListRows requestDatums;
    std::shared_ptr<Cache> cache;
    std::shared_ptr<const RequestListServiceProtocol> service;
    bool requestsFromCache = false;

    void execute(const tivra::GetState& getState, const tivra::DispatchFunction& dispatch) const override;
};

} // namespace belvakit::Actions

namespace belvakit {

// One row per request, in order, with the response's agents and the device's unread marks.
std::vector<RequestListCellData> requestListCells(dastrel::CRVRequestsWithCommentingAgents response,
                                                  const dastrel::RequestUpdates& updates);
// The rows of the decoded offline cache entry (see `decodeRequestListOfflineCache`), each made as
// its request is read instead of after all of them. Nothing when the bytes are not a JSON object.
std::optional<std::vector<RequestListCellData>> offlineCacheCells(std::string_view bytes,
                                                                  const dastrel::RequestUpdates& updates);
// Marks the rows of tickets that still hold failed messages.
void markRequestsWithFailedMessages(std::vector<RequestListCellData>& requests,
                                    const RequestsWithFailedMessagesIdStore& failedStore = {});
// Newest first; closed tickets left out unless they are to be shown.
std::vector<RequestListCellData> sortedAndFilteredRequests(std::vector<RequestListCellData> requests,
                                                           bool showClosedRequests);

} // namespace belvakit
