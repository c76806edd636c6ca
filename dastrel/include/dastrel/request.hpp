#pragma once

#include "dastrel/support_user.hpp"

#include <boost/json/value.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace dastrel {

// A ticket as the help desk describes it. Dates are seconds since 1970.
struct CRVRequest {
    std::string requestId;
    std::string requestDescription;
    std::optional<std::string> subject;
    std::string status = "new";
    double createdAt = 0;
    std::optional<double> updatedAt;
    // The last change that the end user can see (a public comment).
    std::optional<double> publicUpdatedAt;
    std::int64_t commentCount = 0;
    // The body of the latest public comment.
    std::optional<std::string> lastComment;
    std::vector<std::int64_t> commentingAgentsIds;
    std::optional<std::int64_t> requesterId;

    boost::json::value toJson() const;
    // Nothing when a required field ("id", "description", "status", "created_at") is missing or of
    // the wrong type; optional fields of the wrong type count as absent.
    static std::optional<CRVRequest> initWithDict(const boost::json::value& json);

    bool operator==(const CRVRequest&) const = default;
};

struct CRVRequestsWithCommentingAgents {
    std::vector<CRVRequest> requests;
    std::vector<CRVSupportUser> commentingAgents;

    bool operator==(const CRVRequestsWithCommentingAgents&) const = default;
};

// The list endpoint's JSON: {"requests": [...], "last_commenting_agents": [...]}.
namespace CRVRequestsResponse {
// The entries of "requests", readable or not, for a reader that turns each into something else;
// none when there is no such array.
std::span<const boost::json::value> requestEntries(const boost::json::value& json);
// The readable records of "requests"; unreadable ones are left out.
std::vector<CRVRequest> parseRequestListWithDictionary(const boost::json::value& json);
// The readable records of "last_commenting_agents"; unreadable ones are left out.
std::vector<CRVSupportUser> parseRequestListAgentsWithDictionary(const boost::json::value& json);
boost::json::value toJson(const CRVRequestsWithCommentingAgents& response);
} // namespace CRVRequestsResponse

} // namespace dastrel
