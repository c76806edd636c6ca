#include "dastrel/comment.hpp"
#include "dastrel/request.hpp"
#include "dastrel/request_storage.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

using namespace dastrel;

namespace {
CRVRequest fullRequest() {
    return {.requestId = "123", .requestDescription = "Printer on fire", .subject = "Help", .status = "pending",
            .createdAt = 1700000000.5, .updatedAt = 1700000100, .publicUpdatedAt = 1700000090, .commentCount = 3,
            .lastComment = "We are on it", .commentingAgentsIds = {501, 502}, .requesterId = 1};
}
} // namespace

TEST(DastrelRecords, RequestsUsersAndCommentsSurviveTheirJsonForm) {
    const CRVRequest request = fullRequest();
    EXPECT_EQ(CRVRequest::initWithDict(boost::json::parse(boost::json::serialize(request.toJson()))), request);

    const CRVRequest sparse{.requestId = "7", .requestDescription = "d"};
    EXPECT_EQ(CRVRequest::initWithDict(sparse.toJson()), sparse);

    const CRVSupportUser agent{501, "Ada", "https://x/a.png", true};
    EXPECT_EQ(CRVSupportUser::fromJson(agent.toJson()), agent);

    const CRVAttachment file{.attachmentId = 77, .filename = "a.png", .contentURLString = "https://x/a.png",
                             .contentType = "image/png", .size = 10, .width = 640, .height = 480};
    const CRVComment comment{.commentId = 9, .requestId = "123", .body = "Hello", .htmlBody = "<p>Hello</p>",
                             .authorId = 501, .createdAt = 1700000001, .attachments = {file}};
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
