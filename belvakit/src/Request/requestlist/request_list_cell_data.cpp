#include "belvakit/Request/requestlist/request_list_cell_data.hpp"

#include "belvakit/Request/requestlist/request_list_timestamp_calculator.hpp"

#include <algorithm>

namespace belvakit {

namespace {

RequestListCellData requestRow(dastrel::CRVRequest&& request,
                               const std::vector<dastrel::CRVSupportUser>& commentingAgents, bool hasUnreadComments,
                               std::string displayTimestamp) {
    RequestListCellData cell;
    cell.displayTimestamp = std::move(displayTimestamp);
    cell.updatedAtDate = request.publicUpdatedAt.value_or(request.createdAt);
    cell.requestId = request.requestId;
    cell.commentCount = request.commentCount;
    cell.requestDescription = request.requestDescription;
    cell.requestLastComment = std::move(request.lastComment);
    cell.requestTitle = std::move(request.requestDescription);
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

RequestListCellData localRow(std::string requestId, const std::string& description, Date date, bool isErrored,
                             std::string displayTimestamp) {
    RequestListCellData cell;
    cell.displayTimestamp = std::move(displayTimestamp);
    cell.updatedAtDate = date;
    cell.requestId = std::move(requestId);
    cell.requestTitle = description;
    cell.requestDescription = description;
    cell.requestStatus = RequestStatus::new_;
    cell.commentCount = 1;
    cell.isErrored = isErrored;
    return cell;
}

} // namespace

RequestListCellData RequestListCellData::fromRequest(const dastrel::CRVRequest& request,
                                                     const std::vector<dastrel::CRVSupportUser>& commentingAgents,
                                                     bool hasUnreadComments) {
    RequestListTimestampCalculator timestamps(request.createdAt, request.publicUpdatedAt);
    return requestRow(dastrel::CRVRequest(request), commentingAgents, hasUnreadComments,
                      std::move(timestamps.ticketUpdatedAt).value_or(std::move(timestamps.ticketCreatedAt)));
}

// In a list only the text the row shows is made: the update's, else the creation's.
RequestListCellData RequestListCellData::fromRequest(dastrel::CRVRequest&& request,
                                                     const std::vector<dastrel::CRVSupportUser>& commentingAgents,
                                                     bool hasUnreadComments, RequestListDateTexts& texts) {
    auto displayTimestamp = texts.text(request.publicUpdatedAt.value_or(request.createdAt));
    return requestRow(std::move(request), commentingAgents, hasUnreadComments, std::move(displayTimestamp));
}

RequestListCellData RequestListCellData::local(std::string requestId, const std::string& description, Date date,
                                               bool isErrored) {
    return localRow(std::move(requestId), description, date, isErrored,
                    RequestListTimestampCalculator(date, std::nullopt).ticketCreatedAt);
}

RequestListCellData RequestListCellData::local(std::string requestId, const std::string& description, Date date,
                                               bool isErrored, RequestListDateTexts& texts) {
    return localRow(std::move(requestId), description, date, isErrored, texts.text(date));
}

} // namespace belvakit
