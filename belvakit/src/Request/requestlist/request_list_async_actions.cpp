#include "belvakit/Request/requestlist/request_list_async_actions.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/support.hpp"
#include "platform/json.hpp"
#include "platform/main_queue.hpp"

#include <boost/json/monotonic_resource.hpp>

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

namespace belvakit {

std::vector<RequestListCellData> requestListCells(dastrel::CRVRequestsWithCommentingAgents response,
                                                  const dastrel::RequestUpdates& updates) {
    RequestListDateTexts texts;
    std::vector<RequestListCellData> cells;
    cells.reserve(response.requests.size());
    for (auto& request : response.requests) {
        const bool unread = updates.isRequestUnread(request.requestId);
        cells.push_back(RequestListCellData::fromRequest(std::move(request), response.commentingAgents, unread, texts));
    }
    return cells;
}

std::optional<std::vector<RequestListCellData>> offlineCacheCells(std::string_view bytes,
                                                                  const dastrel::RequestUpdates& updates) {
    // The document is dropped once read: an arena makes both cheaper.
    boost::json::monotonic_resource arena;
    const auto json = platform::parseJson(bytes, boost::json::storage_ptr(&arena));
    if (!json || !json->is_object()) return std::nullopt;
    const auto agents = dastrel::CRVRequestsResponse::parseRequestListAgentsWithDictionary(*json);
    const auto entries = dastrel::CRVRequestsResponse::requestEntries(*json);
    RequestListDateTexts texts;
    std::vector<RequestListCellData> cells;
    cells.reserve(entries.size());
    for (const auto& entry : entries) {
        auto request = dastrel::CRVRequest::initWithDict(entry);
        if (!request) continue;
        const bool unread = updates.isRequestUnread(request->requestId);
        cells.push_back(RequestListCellData::fromRequest(std::move(*request), agents, unread, texts));
    }
    return cells;
}

void markRequestsWithFailedMessages(std::vector<RequestListCellData>& requests,
                                    const RequestsWithFailedMessagesIdStore& failedStore) {
    const auto ids = failedStore.ids();
    if (ids.empty()) return;
    const std::set<std::string> failed(ids.begin(), ids.end());
    for (auto& request : requests)
        if (failed.contains(request.requestId)) request.isErrored = true;
}

namespace {

// Newest first over the rows of both lists, in the order of their concatenation where dates tie,
// closed ones left out unless shown. Rows are large: their places are sorted by date and each row
// then moves once. A date that is not a number would break the order for all rows; it sorts as
// the oldest.
std::vector<RequestListCellData> mergedSortedAndFiltered(std::vector<RequestListCellData>& first,
                                                         std::vector<RequestListCellData>& second,
                                                         bool showClosedRequests) {
    const auto row = [&](std::size_t place) -> RequestListCellData& {
        return place < first.size() ? first[place] : second[place - first.size()];
    };
    std::vector<std::pair<Date, std::size_t>> order;
    order.reserve(first.size() + second.size());
    for (std::size_t place = 0; place < first.size() + second.size(); ++place)
        order.emplace_back(row(place).updatedAtDate, place);
    // Newest first; a date that is no number sorts after every other, even an infinitely old one.
    std::stable_sort(order.begin(), order.end(), [](const auto& left, const auto& right) {
        return !std::isnan(left.first) && (std::isnan(right.first) || left.first > right.first);
    });
    std::vector<RequestListCellData> sorted;
    sorted.reserve(order.size());
    for (const auto& entry : order) {
        auto& next = row(entry.second);
        if (showClosedRequests || next.requestStatus != RequestStatus::closed) sorted.push_back(std::move(next));
    }
    return sorted;
}

} // namespace

std::vector<RequestListCellData> sortedAndFilteredRequests(std::vector<RequestListCellData> requests,
                                                           bool showClosedRequests) {
    std::vector<RequestListCellData> none;
    return mergedSortedAndFiltered(requests, none, showClosedRequests);
}

namespace {

std::vector<RequestListCellData> marked(std::vector<RequestListCellData> cells) {
    markRequestsWithFailedMessages(cells);
    return cells;
}

// The row of a conversation only this device has, shaped like a failed ticket's; nothing when its
// first message carries no text.
std::optional<RequestListCellData> localOnlyRow(const std::string& localId, const std::vector<Message>& messages,
                                                RequestListDateTexts& texts) {
    if (messages.empty()) return std::nullopt;
    const std::string* description = bodyOf(messages.front());
    if (!description) return std::nullopt;
    return RequestListCellData::local(localId, *description, createdAt(messages.front()), true, texts);
}

// Reads the conversations one after the other on the cache's own queue, after its pending
// writes, and answers once on the main queue rather than once per conversation.
void loadLocalOnlyRows(const std::shared_ptr<Cache>& cache, std::vector<std::string> ids,
                       std::function<void(std::vector<RequestListCellData>)> completion) {
    cache->run([cache, ids = std::move(ids), completion = std::move(completion)]() mutable {
        const auto entries = cache->readEntries(ids);
        RequestListDateTexts texts;
        std::vector<RequestListCellData> rows;
        for (std::size_t index = 0; index < ids.size(); ++index) {
            if (!entries[index]) continue;
            const auto addRow = [&](std::vector<Message> messages, auto&&...) {
                if (auto row = localOnlyRow(ids[index], messages, texts)) rows.push_back(std::move(*row));
            };
            loadConversation(*entries[index], MessageList::currentVersion, addRow);
        }
        platform::MainQueue::shared().async([rows = std::move(rows), completion = std::move(completion)]() mutable {
            completion(std::move(rows));
        });
    });
}

// In list order, each id once.
std::vector<std::string> localOnlyIds(const LocalIDStore& store) {
    std::set<std::string_view> skipped;
    for (const auto& entry : store.remoteToLocal) skipped.insert(entry.second);
    std::vector<std::string> ids;
    for (const auto& id : store.localIdList)
        if (skipped.insert(id).second) ids.push_back(id);
    return ids;
}

} // namespace

namespace Actions {

void FetchCachedRequests::execute(const tivra::GetState&, const tivra::DispatchFunction& dispatch) const {
    if (!corvane::Corvane::instance()) {
        dispatch(RequestsFetchedFailed{});
        return;
    }
    const auto support = dastrel::Support::instance();
    const auto updates = support ? support->requestStorage().calculateRequestUpdates(support->requestStorage().requests())
                                 : dastrel::RequestUpdates{};
    auto finish = [dispatch, updates](std::optional<std::string> bytes) {
        auto cells = bytes ? offlineCacheCells(*bytes, updates) : std::nullopt;
        if (!cells) {
            corvane::CoreLogger::debug("No requests stored in cache.");
            cells.emplace();
        }
        RequestsFetched fetched;
        fetched.requests = marked(std::move(*cells));
        fetched.isFromCache = true;
        dispatch(fetched);
    };
    if (!cache) return finish(std::nullopt);
    cache->fetch(requestListOfflineCacheKey, std::move(finish));
}

void FetchRequests::execute(const tivra::GetState&, const tivra::DispatchFunction& dispatch) const {
    if (isRefreshing) {
        RefreshRequests refresh;
        refresh.refreshing = true;
        dispatch(refresh);
    }
    if (!service) return dispatch(RequestsFetchedFailed{});
    service->fetchRequests(cache, [dispatch, requestProvider = provider](
                                      std::optional<dastrel::CRVRequestsWithCommentingAgents> response,
                                      std::optional<NetworkError> error) {
        if (error == NetworkError::generic) return dispatch(RequestsFetchedFailed{});
        if (error == NetworkError::auth) return dispatch(RequestsFetchedFailedWIthAuthError{});
        if (!response || !requestProvider) return dispatch(RequestsFetchedFailed{});
        requestProvider->getUpdatesForDevice([dispatch, response = std::move(*response)](
                                          std::optional<dastrel::RequestUpdates> updates) {
            if (!updates) return dispatch(RequestsFetchedFailed{});
            RequestsFetched fetched;
            fetched.requests = marked(requestListCells(response, *updates));
            fetched.isFromCache = false;
            dispatch(fetched);
        });
    });
}

void FetchLocalOnlyRequests::execute(const tivra::GetState&, const tivra::DispatchFunction& dispatch) const {
    auto finish = [dispatch, shared = requestDataFetchedFromNetwork, fromCache = remoteRequestsFromCache,
                   showClosed = showClosedRequests](std::vector<RequestListCellData> localRows) mutable {
        // By the time the local rows are read this action is usually gone, and its rows move.
        auto remoteRows = std::move(shared).take();
        LocalRequestsFetched fetched;
        fetched.mergedLocalAndRemoteRequestDatums = mergedSortedAndFiltered(remoteRows, localRows, showClosed);
        fetched.remoteRequestsFromCache = fromCache;
        dispatch(fetched);
    };
    auto ids = localOnlyIds(LocalIDStore());
    if (ids.empty() || !cache) return finish({});
    loadLocalOnlyRows(cache, std::move(ids), std::move(finish));
}

void FetchAgentAvatars::execute(const tivra::GetState&, const tivra::DispatchFunction& dispatch) const {
    if (!service) return dispatch(RequestsFetchedFailed{});
    service->fetchAgentAvatars(requestDatums, cache, makeAttachmentsProvider(),
                               [dispatch, fromCache = requestsFromCache](std::vector<RequestListCellData> rows) {
                                   RequestsWithAvatarsFetched fetched;
                                   fetched.requests = std::move(rows);
                                   fetched.requestListStateType = fromCache ? RequestListStateType::LoadedFromCache
                                                                            : RequestListStateType::LoadedFromNetwork;
                                   dispatch(fetched);
                               });
}

} // namespace Actions

} // namespace belvakit
