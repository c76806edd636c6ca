#include "belvakit/Request/requestlist/request_list_reducer.hpp"

#include "belvakit/Request/requestlist/request_list_actions.hpp"

#include <algorithm>
#include <iterator>

namespace belvakit {

namespace {

using tivra::actionAs;

// The rows without those the predicate picks; the same rows when it picks none.
template <class Picked>
RequestListRows without(const RequestListRows& rows, const Picked& picked) {
    if (std::none_of(rows.begin(), rows.end(), picked)) return rows;
    RequestListRows::Rows kept;
    kept.reserve(rows.size());
    std::remove_copy_if(rows.begin(), rows.end(), std::back_inserter(kept), picked);
    return kept;
}

RequestListRows withoutTicket(const RequestListRows& rows, const std::string& requestId) {
    return without(rows, [&](const RequestListCellData& row) { return row.requestId == requestId; });
}

// A failed ticket's row carries the id of its text, which an attachment names as its parent, so
// the last message finds the row whatever its kind.
const std::string& requestIdOf(const Message& message) {
    const auto* parent = parentIdOf(message);
    return parent ? *parent : id(message);
}

// The slice with other rows. Every other field is carried over.
RequestListState withRows(const RequestListState& state, RequestListRows rows) {
    RequestListState next = state;
    next.requests = std::move(rows);
    return next;
}

// A ticket made or failed on this device goes to the top, replacing its earlier row.
RequestListState withLocalRowOnTop(const RequestListState& state, RequestListCellData row) {
    const auto rest = withoutTicket(state.requests, row.requestId);
    RequestListRows::Rows rows;
    rows.reserve(rest.size() + 1);
    rows.push_back(std::move(row));
    rows.insert(rows.end(), rest.begin(), rest.end());
    return withRows(state, std::move(rows));
}

// The rows with the first of one ticket marked read; the same rows when it is not there.
RequestListRows markedRead(const RequestListRows& rows, const std::string& requestId) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const RequestListCellData& row) { return row.requestId == requestId; });
    if (found == rows.end()) return rows;
    RequestListRows::Rows changed = rows;
    changed[static_cast<std::size_t>(found - rows.begin())].hasUnreadComments = false;
    return changed;
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
        if (!deletion->isDeletingWholeTicket || deletion->messages.empty()) return state;
        return withRows(state, withoutTicket(state.requests, requestIdOf(deletion->messages.back())));
    }
    if (const auto* deletion = actionAs<Actions::DeleteRequestFromList>(action)) {
        return withRows(state, withoutTicket(state.requests, deletion->ticketId));
    }
    if (const auto* fetched = actionAs<Actions::RequestsWithAvatarsFetched>(action)) {
        RequestListState next = withRows(state, fetched->requests);
        next.stateType = fetched->requestListStateType;
        return next;
    }
    if (const auto* read = actionAs<Actions::MarkRequestAsRead>(action)) {
        // Reported as a change even when nothing changes, as with deletions.
        return withRows(state, markedRead(state.requests, read->requestData.requestId));
    }
    return std::nullopt;
}

} // namespace belvakit
