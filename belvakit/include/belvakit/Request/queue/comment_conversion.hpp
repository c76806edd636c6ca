#pragma once

#include "belvakit/Request/queue/request_records.hpp"
#include "dastrel/comment.hpp"

namespace belvakit::Request {

// The provider's comment and author as one record; attachment kinds come from their mime types.
Comment commentFrom(const dastrel::CRVCommentWithUser& comment);

} // namespace belvakit::Request
