#include "dastrel/request_storage.hpp"

namespace dastrel {

void RequestStorage::saveRequests(const std::vector<CRVRequest>& requests) {
    std::lock_guard lock(mutex_);
    for (const auto& request : requests) requests_[request.requestId] = request;
}

std::vector<CRVRequest> RequestStorage::requests() const {
    std::lock_guard lock(mutex_);
    std::vector<CRVRequest> out;
    for (const auto& entry : requests_) out.push_back(entry.second);
    return out;
}

void RequestStorage::markRequestAsRead(const std::string& requestId, long commentCount) {
    std::lock_guard lock(mutex_);
    readCounts_[requestId] = commentCount;
}

std::optional<long> RequestStorage::readCommentCount(const std::string& requestId) const {
    std::lock_guard lock(mutex_);
    auto found = readCounts_.find(requestId);
    if (found == readCounts_.end()) return std::nullopt;
    return found->second;
}

RequestUpdates RequestStorage::calculateRequestUpdates(const std::vector<CRVRequest>& requests) const {
    std::lock_guard lock(mutex_);
    RequestUpdates updates;
    for (const auto& request : requests) {
        auto read = readCounts_.find(request.requestId);
        if (read == readCounts_.end()) continue;
        if (request.commentCount > read->second)
            updates.requestsWithUnreadComments[request.requestId] = request.commentCount - read->second;
    }
    return updates;
}

} // namespace dastrel
