#pragma once

#include "dastrel/comment.hpp"
#include "dastrel/create_request.hpp"
#include "dastrel/provider_error.hpp"
#include "dastrel/request.hpp"
#include "dastrel/request_updates.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

template <class Result>
using CRVCallback = std::function<void(std::optional<Result> result, std::optional<ProviderError> error)>;

// The help desk's ticket calls. Each answers through its callback, possibly on another thread,
// with a result or an error; an HTTP failure carries its status as the error's code.
class CRVRequestProvider {
public:
    virtual ~CRVRequestProvider() = default;

    virtual void getAllRequests(CRVCallback<CRVRequestsWithCommentingAgents> callback) = 0;
    virtual void getRequestById(const std::string& requestId, CRVCallback<CRVRequest> callback) = 0;
    virtual void getCommentsWithRequestId(const std::string& requestId,
                                          CRVCallback<std::vector<CRVCommentWithUser>> callback) = 0;
    // Comments created after `sinceDate` (seconds since 1970), oldest first.
    virtual void getComments(const std::string& requestId, double sinceDate, bool onlyAgent,
                             CRVCallback<std::vector<CRVCommentWithUser>> callback) = 0;
    // The answer's data is the JSON object {"request": {...}, "last_comment": {...}}.
    virtual void createRequest(const CRVCreateRequest& request, CRVCallback<CRVDispatcherResponse> callback) = 0;
    virtual void addComment(const std::string& body, const std::string& requestId,
                            const std::vector<std::string>& attachments, CRVCallback<CRVComment> callback) = 0;
    virtual void markRequestAsRead(const std::string& requestId, long commentCount) = 0;
    virtual void getUpdatesForDevice(std::function<void(std::optional<RequestUpdates>)> callback) = 0;
};

} // namespace dastrel
