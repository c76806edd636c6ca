#include "belvakit/Request/requestlist/request_list_reducer.hpp"

#include "belvakit/Request/requestlist/request_list_actions.hpp"

#include <algorithm>

namespace belvakit {

namespace {

using tivra::actionAs;

void removeRows(std::vector<RequestListCellData>& rows, const std::string& requestId) {
    std::erase_if(rows, [&](const RequestListCellData& row) { return row.requestId == requestId; });
}

// The slice with other rows, without copying the rows it drops. Every other field is carried over.
RequestListState withRows(const RequestListState& state, std::vector<RequestListCellData> rows) {
    return RequestListState{.requests = std::move(rows),
                            .agents = state.agents,
                            .error = state.error,
                            .stateType = state.stateType,
                            .referrerUrl = state.referrerUrl,
                            .showReferrerLogo = state.showReferrerLogo,
                            .showClosedRequests = state.showClosedRequests,
                            .cache = state.cache};
}

// A ticket made or failed on this device goes to the top, replacing its earlier row.
RequestListState withLocalRowOnTop(RequestListState state, RequestListCellData row) {
    removeRows(state.requests, row.requestId);
    state.requests.insert(state.requests.begin(), std::move(row));
    return state;
}

} // namespace

std::optional<RequestListState> RequestListReducer::reduce(const RequestListState& state,
                                                           const tivra::Action& action) const {
    if (const auto* settings = actionAs<Actions::FetchRequestListSettingsSuccess>(action)) {
        RequestListState next = withRows(state, {});
        next.referrerUrl = settings->referrerUrl;
        next.showReferrerLogo = settings->showReferrerLogo;
        next.showClosedRequests = settings->showClosedRequests;
        next.stateType = settings->conversationsEnabled ? RequestListStateType::Loading
                                                        : RequestListStateType::ConversationsDisabledError;
        return next;
    }
    const bool authFailure = actionAs<Actions::RequestsFetchedFailedWIthAuthError>(action) != nullptr;
    if (authFailure || actionAs<Actions::RequestsFetchedFailed>(action)) {
        // The rows stay, so a failed refresh still shows what the cache gave.
        RequestListState next = state;
        next.stateType = RequestListStateType::ErroredFromNetwork;
        next.error = authFailure ? NetworkError::auth : NetworkError::generic;
        return next;
    }
    if (actionAs<Actions::RefreshRequests>(action)) {
        RequestListState next = state;
        next.stateType = RequestListStateType::Refreshing;
        return next;
    }
    if (actionAs<Actions::ClearRequestList>(action)) {
        RequestListState next = withRows(state, {});
        next.stateType = RequestListStateType::NotLoaded;
        return next;
    }
    if (const auto* created = actionAs<Actions::TicketCreated>(action)) {
        return withLocalRowOnTop(
            state, RequestListCellData::local(created->remoteRequestId, created->body, created->remoteCreatedAt, false));
    }
    if (const auto* failed = actionAs<Actions::RequestCreationOrUpdateError>(action)) {
        return withLocalRowOnTop(
            state, RequestListCellData::local(failed->id, failed->requestDescription, failed->createdAtDate, true));
    }
    if (const auto* deletion = actionAs<Actions::DeleteMessages>(action)) {
        // Reported as a change even when nothing goes, so listeners still get to look.
        RequestListState next = state;
        if (deletion->isDeletingWholeTicket && !deletion->messages.empty())
            removeRows(next.requests, id(deletion->messages.back()));
        return next;
    }
    if (const auto* deletion = actionAs<Actions::DeleteRequestFromList>(action)) {
        RequestListState next = state;
        removeRows(next.requests, deletion->ticketId);
        return next;
    }
    if (const auto* fetched = actionAs<Actions::RequestsWithAvatarsFetched>(action)) {
        RequestListState next = withRows(state, fetched->requests);
        next.stateType = fetched->requestListStateType;
        return next;
    }
    if (const auto* read = actionAs<Actions::MarkRequestAsRead>(action)) {
        // Reported as a change even when nothing changes, as with deletions.
        RequestListState next = state;
        const auto row = std::find_if(next.requests.begin(), next.requests.end(), [&](const RequestListCellData& cell) {
            return cell.requestId == read->requestData.requestId;
        });
        if (row != next.requests.end()) row->hasUnreadComments = false;
        return next;
    }
    return std::nullopt;
}

} // namespace belvakit
