#pragma once

#include "dastrel/request.hpp"
#include "dastrel/request_updates.hpp"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

// The device's memory of the user's tickets: the latest known records and how many comments of
// each the user has read. Thread-safe.
class RequestStorage {
public:
    void saveRequests(const std::vector<CRVRequest>& requests);
    std::vector<CRVRequest> requests() const;

    void markRequestAsRead(const std::string& requestId, long commentCount);
    std::optional<long> readCommentCount(const std::string& requestId) const;

    // A ticket is unread when it has more comments than the user has read; a ticket never
    // opened on this device counts as read, since the user wrote it here or elsewhere.
    RequestUpdates calculateRequestUpdates(const std::vector<CRVRequest>& requests) const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, CRVRequest> requests_;
    std::map<std::string, long> readCounts_;
};

} // namespace dastrel
