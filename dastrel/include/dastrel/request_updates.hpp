#pragma once

#include <map>
#include <string>

namespace dastrel {

// Which tickets hold comments the user has not read, with how many.
struct RequestUpdates {
    std::map<std::string, long> requestsWithUnreadComments;

    bool isRequestUnread(const std::string& requestId) const;
    long totalUpdates() const;
};

} // namespace dastrel
