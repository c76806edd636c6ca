#include "belvakit/Request/requestlist/request_list_cell_data.hpp"

#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include <algorithm>

namespace belvakit {

RequestListCellData RequestListCellData::fromRequest(const dastrel::CRVRequest& request,
                                                     const std::vector<dastrel::CRVSupportUser>& commentingAgents,
                                                     bool hasUnreadComments) {
    const RequestListTimestampCalculator timestamps(request.createdAt, request.publicUpdatedAt);
    RequestListCellData cell;
    cell.displayTimestamp = timestamps.ticketUpdatedAt.value_or(timestamps.ticketCreatedAt);
    cell.updatedAtDate = request.publicUpdatedAt.value_or(request.createdAt);
    cell.requestId = request.requestId;
    cell.commentCount = request.commentCount;
    cell.requestDescription = request.requestDescription;
    cell.requestLastComment = request.lastComment;
    cell.requestTitle = request.requestDescription;
    cell.requestStatus = requestStatusFromRawValue(request.status).value_or(RequestStatus::open);
    cell.hasUnreadComments = hasUnreadComments;
    cell.isErrored = false;

    std::vector<dastrel::CRVSupportUser> agents;
    const auto& ids = request.commentingAgentsIds;
    std::copy_if(commentingAgents.begin(), commentingAgents.end(), std::back_inserter(agents),
                 [&](const dastrel::CRVSupportUser& agent) {
                     return std::find(ids.begin(), ids.end(), agent.userId) != ids.end();
                 });
    if (!agents.empty()) {
        const auto& first = agents.front();
        cell.agentAvatarInfo = AgentAvatarInfo{first.avatarURL, nullptr, request.requestId, first.name, first.userId};
    }
    cell.agents = std::move(agents);
    return cell;
}

RequestListCellData RequestListCellData::local(std::string requestId, const std::string& description, Date date,
                                               bool isErrored) {
    const RequestListTimestampCalculator timestamps(date, std::nullopt);
    RequestListCellData cell;
    cell.displayTimestamp = timestamps.ticketCreatedAt;
    cell.updatedAtDate = date;
    cell.requestId = std::move(requestId);
    cell.requestTitle = description;
    cell.requestDescription = description;
    cell.requestStatus = RequestStatus::new_;
    cell.commentCount = 1;
    cell.isErrored = isErrored;
    return cell;
}

} // namespace belvakit
