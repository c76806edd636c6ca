#pragma once

#include "belvakit/Request/requestlist/request_list_rows.hpp"
#include "belvakit/attachments/cache.hpp"
#include "dastrel/support_user.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

enum class NetworkError { auth, generic };

enum class RequestListStateType {
    LoadedFromNetwork,
    Refreshing,
    Loading,
    LoadedFromCache,
    NotLoaded,
    ErroredFromNetwork,
    ConversationsDisabledError,
};

// The slice behind the list of the user's tickets.
struct RequestListState {
    // In display order.
    RequestListRows requests;
    std::vector<dastrel::CRVSupportUser> agents;
    std::optional<NetworkError> error;
    RequestListStateType stateType = RequestListStateType::NotLoaded;
    std::optional<std::string> referrerUrl;
    bool showReferrerLogo = false;
    bool showClosedRequests = false;
    std::shared_ptr<Cache> cache;

    bool operator==(const RequestListState&) const = default;
};

} // namespace belvakit
