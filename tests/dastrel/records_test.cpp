#include "dastrel/comment.hpp"
#include "dastrel/request.hpp"
#include "dastrel/request_storage.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

using namespace dastrel;

namespace {
CRVRequest fullRequest() {
    CRVRequest request;
    request.requestId = "123";
    request.requestDescription = "Printer on fire";
    request.subject = "Help";
    request.status = "pending";
    request.createdAt = 1700000000.5;
    request.updatedAt = 1700000100;
    request.publicUpdatedAt = 1700000090;
    request.commentCount = 3;
    request.lastComment = "We are on it";
    request.commentingAgentsIds = {501, 502};
    request.requesterId = 1;
    return request;
}
} // namespace

TEST(DastrelRecords, RequestsUsersAndCommentsSurviveTheirJsonForm) {
    const CRVRequest request = fullRequest();
    EXPECT_EQ(CRVRequest::initWithDict(boost::json::parse(boost::json::serialize(request.toJson()))), request);

    CRVRequest sparse;
    sparse.requestId = "7";
    sparse.requestDescription = "d";
    EXPECT_EQ(CRVRequest::initWithDict(sparse.toJson()), sparse);

    const CRVSupportUser agent{501, "Ada", "https://x/a.png", true};
    EXPECT_EQ(CRVSupportUser::fromJson(agent.toJson()), agent);

    CRVComment comment;
    comment.commentId = 9;
    comment.requestId = "123";
    comment.body = "Hello";
    comment.htmlBody = "<p>Hello</p>";
    comment.authorId = 501;
    comment.createdAt = 1700000001;
    CRVAttachment file;
    file.attachmentId = 77;
    file.filename = "a.png";
    file.contentURLString = "https://x/a.png";
    file.contentType = "image/png";
    file.size = 10;
    file.width = 640;
    file.height = 480;
    comment.attachments = {file};
    EXPECT_EQ(CRVComment::initWithDictionary(comment.toJson()), comment);
}

TEST(DastrelRecords, UnreadableRecordsAreLeftOutOfAListAndWrongTypesNeverThrow) {
    const auto json = boost::json::parse(R"({
        "requests": [
            {"id": "1", "description": "ok", "status": "open", "created_at": 1},
            {"id": 2, "description": "id of the wrong type", "status": "open", "created_at": 1},
            {"id": "3", "description": "optional fields of the wrong type", "status": "new", "created_at": 2,
             "comment_count": "many", "subject": 5, "commenting_agent_ids": [1, "x", 3]},
            "not an object"
        ],
        "last_commenting_agents": [{"id": 5, "name": "Bo"}, {"name": "no id"}, null]
    })");
    const auto requests = CRVRequestsResponse::parseRequestListWithDictionary(json);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].requestId, "1");
    EXPECT_EQ(requests[1].commentCount, 0);
    EXPECT_EQ(requests[1].subject, std::nullopt);
    EXPECT_EQ(requests[1].commentingAgentsIds, (std::vector<std::int64_t>{1, 3}));
    const auto agents = CRVRequestsResponse::parseRequestListAgentsWithDictionary(json);
    ASSERT_EQ(agents.size(), 1u);
    EXPECT_EQ(agents[0].name, "Bo");

    EXPECT_TRUE(CRVRequestsResponse::parseRequestListWithDictionary(boost::json::parse("[1,2]")).empty());
    EXPECT_TRUE(CRVRequestsResponse::parseRequestListWithDictionary(boost::json::parse(R"({"requests": {}})")).empty());
}

TEST(RequestStorage, UnreadMeansMoreCommentsThanTheUserRead) {
    RequestStorage storage;
    CRVRequest seen = fullRequest();
    CRVRequest neverOpened = fullRequest();
    neverOpened.requestId = "456";
    storage.markRequestAsRead("123", 2);

    auto updates = storage.calculateRequestUpdates({seen, neverOpened});
    EXPECT_TRUE(updates.isRequestUnread("123"));
    EXPECT_FALSE(updates.isRequestUnread("456"));
    EXPECT_EQ(updates.totalUpdates(), 1);

    storage.markRequestAsRead("123", 3);
    EXPECT_FALSE(storage.calculateRequestUpdates({seen}).isRequestUnread("123"));
}
