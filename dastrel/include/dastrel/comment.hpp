#pragma once

#include "dastrel/support_user.hpp"
#include "dastrel/upload_provider.hpp"

#include <boost/json/value.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

// A public comment on a ticket. Dates are seconds since 1970.
struct CRVComment {
    std::int64_t commentId = 0;
    std::string requestId;
    std::string body;
    std::optional<std::string> htmlBody;
    std::int64_t authorId = 0;
    double createdAt = 0;
    std::vector<CRVAttachment> attachments;

    boost::json::value toJson() const;
    // Nothing when "id", "body", "author_id" or "created_at" is missing or of the wrong type.
    static std::optional<CRVComment> initWithDictionary(const boost::json::value& json);

    bool operator==(const CRVComment&) const = default;
};

// A comment with its author.
struct CRVCommentWithUser {
    CRVComment comment;
    CRVSupportUser user;

    bool operator==(const CRVCommentWithUser&) const = default;
};

} // namespace dastrel
