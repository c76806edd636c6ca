#pragma once

#include "belvakit/Request/requestlist/agent_avatar_info.hpp"
#include "belvakit/Request/requestlist/request_status.hpp"
#include "belvakit/date.hpp"
#include "dastrel/request.hpp"
#include "dastrel/support_user.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

class RequestListDateTexts;

// One row of the ticket list, flat and ready to draw.
struct RequestListCellData {
    std::string displayTimestamp;
    std::optional<std::vector<dastrel::CRVSupportUser>> agents;
    std::string requestId;
    std::string requestTitle;
    std::optional<std::string> requestLastComment;
    std::string requestDescription;
    RequestStatus requestStatus = RequestStatus::new_;
    bool hasUnreadComments = false;
    std::optional<AgentAvatarInfo> agentAvatarInfo;
    std::int64_t commentCount = 0;
    // The list's sort key.
    Date updatedAtDate = 0;
    bool isErrored = false;

    bool operator==(const RequestListCellData&) const = default;

    // The row of a ticket the help desk knows. `commentingAgents` are those of the whole response;
    // the row keeps the ones that commented on this ticket.
    static RequestListCellData fromRequest(const dastrel::CRVRequest& request,
                                           const std::vector<dastrel::CRVSupportUser>& commentingAgents,
                                           bool hasUnreadComments);
    // The same for one of many rows, with the date texts of the whole list; the request's texts move
    // into the row.
    static RequestListCellData fromRequest(dastrel::CRVRequest&& request,
                                           const std::vector<dastrel::CRVSupportUser>& commentingAgents,
                                           bool hasUnreadComments, RequestListDateTexts& texts);
    // The row of a ticket known only on this device, or one whose sending failed.
    static RequestListCellData local(std::string requestId, const std::string& description, Date date, bool isErrored);
    static RequestListCellData local(std::string requestId, const std::string& description, Date date, bool isErrored,
                                     RequestListDateTexts& texts);
};

} // namespace belvakit
