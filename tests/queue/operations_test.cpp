#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"
#include "belvakit/Request/queue/request_operations.hpp"
#include "host_fixture.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <any>
#include <boost/json.hpp>

using namespace belvakit;
using queue_testing::FixedClock;

namespace {

// Answers every call at once with what the test scripted, and keeps the arguments.
class ScriptedProvider final : public RequestProvider {
public:
    void getAllRequests(dastrel::CRVCallback<dastrel::CRVRequestsWithCommentingAgents> callback) override {
        callback(std::nullopt, std::nullopt);
    }
    void getRequestById(const std::string&, dastrel::CRVCallback<dastrel::CRVRequest> callback) override {
        callback(std::nullopt, std::nullopt);
    }
    void getCommentsWithRequestId(const std::string&,
                                  dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        callback(comments, error);
    }
    void getComments(const std::string& requestId, double sinceDate, bool onlyAgent,
                     dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        fetchedWith = {requestId, sinceDate, onlyAgent};
        callback(comments, error);
    }
    void createRequest(const dastrel::CRVCreateRequest& request,
                       dastrel::CRVCallback<dastrel::CRVDispatcherResponse> callback) override {
        created = request;
        callback(createResponse, error);
    }
    void addComment(const std::string& body, const std::string& requestId, const std::vector<std::string>& tokens,
                    dastrel::CRVCallback<dastrel::CRVComment> callback) override {
        commented = {body, requestId, tokens};
        callback(comment, error);
    }
    void markRequestAsRead(const std::string&, long) override {}
    void getUpdatesForDevice(std::function<void(std::optional<dastrel::RequestUpdates>)> callback) override {
        callback(std::nullopt);
    }

    std::optional<dastrel::CRVDispatcherResponse> createResponse;
    std::optional<dastrel::CRVComment> comment;
    std::optional<std::vector<dastrel::CRVCommentWithUser>> comments;
    std::optional<dastrel::ProviderError> error;

    std::optional<dastrel::CRVCreateRequest> created;
    std::optional<std::tuple<std::string, std::string, std::vector<std::string>>> commented;
    std::optional<std::tuple<std::string, double, bool>> fetchedWith;
};

class ScriptedUploader final : public AttachmentUploader {
public:
    explicit ScriptedUploader(UploadOutcome outcome) : outcome_(std::move(outcome)) {}
    void upload(std::vector<Upload::Attachment> attachments, UploadCompletion completion) override {
        sent = std::move(attachments);
        completion(outcome_);
    }
    std::vector<Upload::Attachment> sent;

private:
    UploadOutcome outcome_;
};

// Every result an operation reports, as copies of the concrete actions.
struct Results {
    std::vector<std::any> actions;
    RequestBlock block() {
        return [this](const tivra::Action& action) {
            if (auto* a = tivra::actionAs<Actions::TicketCreated>(action)) actions.emplace_back(*a);
            else if (auto* b = tivra::actionAs<Actions::CommentCreated>(action)) actions.emplace_back(*b);
            else if (auto* c = tivra::actionAs<Actions::TicketCreationError>(action)) actions.emplace_back(*c);
            else if (auto* d = tivra::actionAs<Actions::CommentCreationError>(action)) actions.emplace_back(*d);
            else if (auto* e = tivra::actionAs<Actions::AttachmentsUploadError>(action)) actions.emplace_back(*e);
            else if (auto* f = tivra::actionAs<Actions::NewCommentsFetched>(action)) actions.emplace_back(*f);
            else if (auto* g = tivra::actionAs<Actions::FetchCommentsError>(action)) actions.emplace_back(*g);
            else actions.emplace_back();
        };
    }
    template <class T>
    const T& only() const {
        EXPECT_EQ(actions.size(), 1u);
        const T* value = actions.empty() ? nullptr : std::any_cast<T>(&actions.front());
        if (!value) throw std::runtime_error("the operation reported another action");
        return *value;
    }
};

Upload::Attachment file(std::string id) { return {"bytes", std::move(id), FileType::png, std::nullopt}; }

dastrel::CRVUploadResponse uploaded(std::string token, std::optional<std::int64_t> attachmentId) {
    dastrel::CRVUploadResponse response{std::move(token), std::nullopt};
    if (attachmentId) response.attachment = dastrel::CRVAttachment{.attachmentId = *attachmentId};
    return response;
}

class OperationsTest : public testing::Test {
protected:
    FixedClock clock_;
    testing_support::CapturedLog log_;
    std::shared_ptr<ScriptedProvider> provider_ = std::make_shared<ScriptedProvider>();
    Results results_;
};

} // namespace

TEST_F(OperationsTest, WithoutATicketCommentAndFetchReportOnceAndLog) {
    auto comment = std::make_shared<CommentRequestOperation>("local", "Hi", std::vector<Upload::Attachment>{}, provider_,
                                                             std::make_shared<ScriptedUploader>(UploadResults{}));
    comment->setRequestBlock(results_.block());
    comment->execute(std::nullopt);
    const auto& failure = results_.only<Actions::CommentCreationError>();
    EXPECT_EQ(failure.id, "local");
    EXPECT_EQ(failure.requestRemoteId, "");
    EXPECT_FALSE(failure.error);
    EXPECT_FALSE(provider_->commented);

    Results fetchResults;
    auto fetch = std::make_shared<FetchNewCommentsOperation>("f", provider_);
    fetch->setRequestBlock(fetchResults.block());
    fetch->execute(std::nullopt);
    fetchResults.only<Actions::FetchCommentsError>();

    auto lines = log_.messages(platform::LogLevel::error);
    EXPECT_EQ(lines, (std::vector<std::string>{"No request ID found, unable to create comment",
                                               "No RequestID found, cannot fetch"}));
}

TEST_F(OperationsTest, ACommentSendsTokensInOrderAndReportsRemoteIds) {
    provider_->comment = dastrel::CRVComment{.commentId = 88, .createdAt = 1234};
    auto uploader = std::make_shared<ScriptedUploader>(
        UploadResults{{file("a"), uploaded("t-a", 5)}, {file("b"), uploaded("t-b", std::nullopt)}});
    auto comment = std::make_shared<CommentRequestOperation>("local", "Look", std::vector{file("a"), file("b")},
                                                             provider_, uploader);
    comment->setRequestBlock(results_.block());
    comment->execute(TicketInfo{"300", 1});

    EXPECT_EQ(uploader->sent.size(), 2u);
    EXPECT_EQ(*provider_->commented, std::make_tuple(std::string("Look"), std::string("300"),
                                                     std::vector<std::string>{"t-a", "t-b"}));
    const auto& created = results_.only<Actions::CommentCreated>();
    EXPECT_EQ(created.localId, "local");
    EXPECT_EQ(created.remoteCommentId, "88");
    EXPECT_EQ(created.remoteCreatedAt, 1234);
    ASSERT_EQ(created.attachments.size(), 2u);
    EXPECT_EQ(created.attachments[0].first, "5");
    EXPECT_EQ(created.attachments[0].second.id, "a");
    EXPECT_EQ(created.attachments[1].first, "0");
}

TEST_F(OperationsTest, ACommentWithoutADateTakesTheTimeOfTheAnswerAndErrorsCarryTheirCode) {
    provider_->comment = dastrel::CRVComment{.commentId = 9};
    auto comment = std::make_shared<CommentRequestOperation>("local", "x", std::vector<Upload::Attachment>{}, provider_,
                                                             std::make_shared<ScriptedUploader>(UploadResults{}));
    comment->setRequestBlock(results_.block());
    comment->execute(TicketInfo{"300", 1});
    EXPECT_EQ(results_.only<Actions::CommentCreated>().remoteCreatedAt, 1700000000);

    Results failed;
    provider_->comment.reset();
    provider_->error = dastrel::ProviderError{"HTTP", 422, "closed"};
    auto second = std::make_shared<CommentRequestOperation>("l2", "x", std::vector<Upload::Attachment>{}, provider_,
                                                            std::make_shared<ScriptedUploader>(UploadResults{}));
    second->setRequestBlock(failed.block());
    second->execute(TicketInfo{"300", 1});
    const auto& failure = failed.only<Actions::CommentCreationError>();
    EXPECT_EQ(failure.requestRemoteId, "300");
    EXPECT_EQ(failure.id, "l2");
    EXPECT_EQ(failure.error, 422);
}

TEST_F(OperationsTest, AFailedUploadStopsBeforeTheProvider) {
    auto comment = std::make_shared<CommentRequestOperation>(
        "local", "x", std::vector{file("a")}, provider_, std::make_shared<ScriptedUploader>(uploadError()));
    comment->setRequestBlock(results_.block());
    comment->execute(TicketInfo{"300", 1});
    EXPECT_EQ(results_.only<Actions::AttachmentsUploadError>().id, "local");
    EXPECT_FALSE(provider_->commented);

    Results ticketResults;
    auto ticket = std::make_shared<TicketRequestOperation>(
        "t", "x", std::vector{file("a")}, RequestUiConfiguration(), provider_,
        std::make_shared<ScriptedUploader>(uploadError()));
    ticket->setRequestBlock(ticketResults.block());
    ticket->execute(std::nullopt);
    EXPECT_EQ(ticketResults.only<Actions::AttachmentsUploadError>().id, "t");
    EXPECT_FALSE(provider_->created);
}

TEST_F(OperationsTest, ATicketIsMadeFromTheConfigurationAndItsAnswerIsRead) {
    RequestUiConfiguration config;
    config.subject = "Order";
    config.tags = {"mobile"};
    config.ticketFormID = 77;
    dastrel::CRVRequest request;
    request.requestId = "501";
    request.requestDescription = "Where is it?";
    request.createdAt = 1600;
    const boost::json::object body{{"request", request.toJson()},
                                   {"last_comment", dastrel::CRVComment{.commentId = 61, .body = "Where is it?",
                                                                        .createdAt = 1600}
                                                        .toJson()}};
    provider_->createResponse = dastrel::CRVDispatcherResponse{201, boost::json::serialize(body)};
    auto ticket = std::make_shared<TicketRequestOperation>(
        "local", "Where is it?", std::vector{file("a")}, config, provider_,
        std::make_shared<ScriptedUploader>(UploadResults{{file("a"), uploaded("t-a", 3)}}));
    ticket->setRequestBlock(results_.block());
    ticket->execute(TicketInfo{"ignored", 0});

    EXPECT_EQ(provider_->created->subject, "Order");
    EXPECT_EQ(provider_->created->tags, std::vector<std::string>{"mobile"});
    EXPECT_EQ(provider_->created->ticketFormId, 77);
    EXPECT_EQ(provider_->created->attachments, std::vector<std::string>{"t-a"});
    const auto& created = results_.only<Actions::TicketCreated>();
    EXPECT_EQ(created.localId, "local");
    EXPECT_EQ(created.remoteRequestId, "501");
    EXPECT_EQ(created.remoteCommentId, "61");
    EXPECT_EQ(created.remoteCreatedAt, 1600);
    EXPECT_EQ(created.subject, "Order");
    EXPECT_EQ(created.body, "Where is it?");
    ASSERT_EQ(created.attachments.size(), 1u);
    EXPECT_EQ(created.attachments[0].first, "3");
}

TEST_F(OperationsTest, ATicketAnswerWithMissingPartsFallsBackAndAnUnreadableOneFails) {
    provider_->createResponse = dastrel::CRVDispatcherResponse{201, R"({"request": {"id": 5}})"};
    auto ticket = std::make_shared<TicketRequestOperation>("local", "Help", std::vector<Upload::Attachment>{},
                                                           RequestUiConfiguration(), provider_,
                                                           std::make_shared<ScriptedUploader>(UploadResults{}));
    ticket->setRequestBlock(results_.block());
    ticket->execute(std::nullopt);
    const auto& created = results_.only<Actions::TicketCreated>();
    EXPECT_EQ(created.remoteRequestId, "no_id");
    EXPECT_EQ(created.remoteCommentId, "no_id");
    EXPECT_EQ(created.remoteCreatedAt, 1700000000);

    for (const auto* data : {"not json", "[1, 2]"}) {
        Results failed;
        provider_->createResponse = dastrel::CRVDispatcherResponse{201, data};
        auto again = std::make_shared<TicketRequestOperation>("l2", "Help", std::vector<Upload::Attachment>{},
                                                              RequestUiConfiguration(), provider_,
                                                              std::make_shared<ScriptedUploader>(UploadResults{}));
        again->setRequestBlock(failed.block());
        again->execute(std::nullopt);
        const auto& failure = failed.only<Actions::TicketCreationError>();
        EXPECT_EQ(failure.id, "l2");
        EXPECT_EQ(failure.requestDescription, "Help");
        EXPECT_EQ(failure.createdAtDate, 1700000000);
    }
}

TEST_F(OperationsTest, FetchAsksSinceTheTicketsDateAndConvertsEachComment) {
    dastrel::CRVAttachment image{.attachmentId = 4, .filename = "a.png", .contentURLString = "https://x/a.png",
                                 .contentType = "IMAGE/PNG", .size = 120, .width = 40, .height = 30,
                                 .thumbnailURLString = "https://x/t.png", .thumbnailWidth = 4, .thumbnailHeight = 3};
    dastrel::CRVAttachment other{.attachmentId = 5, .filename = "b.bin", .contentType = "application/x-odd"};
    dastrel::CRVComment comment{.commentId = 70, .body = "See", .htmlBody = "<p>See</p>", .authorId = 500,
                                .createdAt = 99, .attachments = {image, other}};
    provider_->comments = std::vector<dastrel::CRVCommentWithUser>{{comment, {500, "Agent", "https://x/av", true}}};
    auto fetch = std::make_shared<FetchNewCommentsOperation>("f", provider_);
    fetch->setRequestBlock(results_.block());
    fetch->execute(TicketInfo{"300", 42.5});

    EXPECT_EQ(*provider_->fetchedWith, std::make_tuple(std::string("300"), 42.5, false));
    const auto& fetched = results_.only<Actions::NewCommentsFetched>();
    ASSERT_EQ(fetched.comments.size(), 1u);
    const auto& converted = fetched.comments[0];
    EXPECT_EQ(converted.id, 70);
    EXPECT_EQ(converted.htmlBody, "<p>See</p>");
    EXPECT_TRUE(converted.isAgent);
    EXPECT_EQ(converted.userID, 500);
    EXPECT_EQ(converted.name, "Agent");
    EXPECT_EQ(converted.avatarURL, "https://x/av");
    ASSERT_EQ(converted.attachments.size(), 2u);
    const auto& first = converted.attachments[0];
    EXPECT_EQ(first.fileType, FileType::png);
    EXPECT_EQ(first.commentId, 70);
    EXPECT_EQ(first.fileUrl, "https://x/a.png");
    EXPECT_EQ(first.thumbUrl, "https://x/t.png");
    EXPECT_EQ(first.imageSize, (platform::Size{40, 30}));
    EXPECT_EQ(first.thumbSize, (platform::Size{4, 3}));
    EXPECT_EQ(first.fileSize, 120);
    EXPECT_EQ(first.createdAt, 99);
    EXPECT_EQ(converted.attachments[1].fileType, FileType::unknown);

    Results failed;
    provider_->comments.reset();
    fetch->setRequestBlock(failed.block());
    fetch->execute(TicketInfo{"300", 0});
    failed.only<Actions::FetchCommentsError>();
}
