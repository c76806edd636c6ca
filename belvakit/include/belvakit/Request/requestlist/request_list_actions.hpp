#pragma once

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_rows.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "belvakit/date.hpp"
#include "tivra/action.hpp"

#include <optional>
#include <string>
#include <vector>

// What happens to the list of the user's tickets. `TicketCreated` and `DeleteMessages` come from
// the conversation and are read here too.
namespace belvakit::Actions {

struct FetchRequestListSettingsSuccess final : tivra::Action {
    std::optional<std::string> referrerUrl;
    bool conversationsEnabled = false;
    bool showReferrerLogo = false;
    bool showClosedRequests = false;
};

struct RequestsFetchedFailed final : tivra::Action {};

struct RequestsFetchedFailedWIthAuthError final : tivra::Action {};

struct RefreshRequests final : tivra::Action {
    bool refreshing = false;
};

struct ClearRequestList final : tivra::Action {};

struct RequestCreationOrUpdateError final : tivra::Action {
    std::string id;
    std::string requestDescription;
    Date createdAtDate = 0;
};

struct DeleteRequestFromList final : tivra::Action {
    std::string ticketId;
};

// The state takes these rows as they are, without copying them.
struct RequestsWithAvatarsFetched final : tivra::Action {
    RequestListRows requests;
    RequestListStateType requestListStateType = RequestListStateType::NotLoaded;
};

struct MarkRequestAsRead final : tivra::Action {
    RequestListCellData requestData;
};

// The stages of loading the list; each one's end starts the next, which shares their rows.
struct RequestsFetched final : tivra::Action {
    RequestListRows requests;
    bool isFromCache = false;
};

struct LocalRequestsFetched final : tivra::Action {
    RequestListRows mergedLocalAndRemoteRequestDatums;
    bool remoteRequestsFromCache = false;
};

} // namespace belvakit::Actions
