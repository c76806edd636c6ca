#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"
#include "belvakit/Request/queue/request_operations.hpp"
#include "host_fixture.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <any>
#include <thread>
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
    std::shared_ptr<std::vector<std::any>> actions = std::make_shared<std::vector<std::any>>();
    RequestBlock block() const {
        return [into = actions](const tivra::Action& action) {
            keep<Actions::TicketCreated, Actions::CommentCreated, Actions::TicketCreationError,
                 Actions::CommentCreationError, Actions::AttachmentsUploadError, Actions::NewCommentsFetched,
                 Actions::FetchCommentsError>(*into, action);
        };
    }
    template <class... Known>
    static void keep(std::vector<std::any>& into, const tivra::Action& action) {
        const auto copy = [&](const auto* known) { return known && (into.emplace_back(*known), true); };
        if (!(copy(tivra::actionAs<Known>(action)) || ...)) into.emplace_back();
    }
    template <class T>
    const T& only() const {
        EXPECT_EQ(actions->size(), 1u);
        const T* value = actions->empty() ? nullptr : std::any_cast<T>(&actions->front());
        if (!value) throw std::runtime_error("the operation reported another action");
        return *value;
    }
};

// Runs an operation once and gives what it reported (the scripted collaborators answer at once).
template <class Operation>
Results run(const std::shared_ptr<Operation>& operation, std::optional<TicketInfo> ticket) {
    Results results;
    operation->setRequestBlock(results.block());
    operation->execute(std::move(ticket));
    return results;
}

Upload::Attachment file(std::string id) { return {"bytes", std::move(id), FileType::png, std::nullopt}; }

dastrel::CRVUploadResponse uploaded(std::string token, std::optional<std::int64_t> attachmentId) {
    dastrel::CRVUploadResponse response{std::move(token), std::nullopt};
    if (attachmentId) response.attachment = dastrel::CRVAttachment{.attachmentId = *attachmentId};
    return response;
}

class OperationsTest : public testing::Test {
protected:
    std::shared_ptr<CommentRequestOperation> comment(std::string id, std::vector<Upload::Attachment> files = {},
                                                     std::shared_ptr<ScriptedUploader> uploader = nullptr) {
        if (!uploader) uploader = std::make_shared<ScriptedUploader>(UploadResults{});
        return std::make_shared<CommentRequestOperation>(std::move(id), "x", std::move(files), provider_, uploader);
    }
    std::shared_ptr<TicketRequestOperation> ticket(std::string id, std::vector<Upload::Attachment> files = {},
                                                   UploadOutcome uploaded = UploadResults{},
                                                   RequestUiConfiguration config = {}) {
        return std::make_shared<TicketRequestOperation>(std::move(id), "Help", std::move(files), std::move(config),
                                                        provider_, std::make_shared<ScriptedUploader>(uploaded));
    }

    FixedClock clock_;
    testing_support::CapturedLog log_;
    std::shared_ptr<ScriptedProvider> provider_ = std::make_shared<ScriptedProvider>();
};

} // namespace

TEST_F(OperationsTest, WithoutATicketCommentAndFetchReportOnceAndLog) {
    const auto failure = run(comment("local"), std::nullopt).only<Actions::CommentCreationError>();
    EXPECT_EQ(failure.id, "local");
    EXPECT_EQ(failure.requestRemoteId, "");
    EXPECT_FALSE(failure.error);
    EXPECT_FALSE(provider_->commented);
    run(std::make_shared<FetchNewCommentsOperation>("f", provider_), std::nullopt).only<Actions::FetchCommentsError>();
    EXPECT_EQ(log_.messages(platform::LogLevel::error),
              (std::vector<std::string>{"No request ID found, unable to create comment", "No RequestID found, cannot fetch"}));
}

TEST_F(OperationsTest, ACommentSendsTokensInOrderAndReportsRemoteIds) {
    provider_->comment = dastrel::CRVComment{.commentId = 88, .createdAt = 1234};
    auto uploader = std::make_shared<ScriptedUploader>(
        UploadResults{{file("a"), uploaded("t-a", 5)}, {file("b"), uploaded("t-b", std::nullopt)}});
    const auto results = run(comment("local", {file("a"), file("b")}, uploader), TicketInfo{"300", 1});

    EXPECT_EQ(uploader->sent.size(), 2u);
    EXPECT_EQ(*provider_->commented,
              std::make_tuple(std::string("x"), std::string("300"), std::vector<std::string>{"t-a", "t-b"}));
    const auto& created = results.only<Actions::CommentCreated>();
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
    EXPECT_EQ(run(comment("local"), TicketInfo{"300", 1}).only<Actions::CommentCreated>().remoteCreatedAt, 1700000000);

    provider_->comment.reset();
    provider_->error = dastrel::ProviderError{"HTTP", 422, "closed"};
    const auto failure = run(comment("l2"), TicketInfo{"300", 1}).only<Actions::CommentCreationError>();
    EXPECT_EQ(failure.requestRemoteId, "300");
    EXPECT_EQ(failure.id, "l2");
    EXPECT_EQ(failure.error, 422);
}

TEST_F(OperationsTest, AFailedUploadStopsBeforeTheProvider) {
    const auto failing = std::make_shared<ScriptedUploader>(uploadError());
    EXPECT_EQ(run(comment("local", {file("a")}, failing), TicketInfo{"300", 1}).only<Actions::AttachmentsUploadError>().id,
              "local");
    EXPECT_FALSE(provider_->commented);
    EXPECT_EQ(run(ticket("t", {file("a")}, uploadError()), std::nullopt).only<Actions::AttachmentsUploadError>().id, "t");
    EXPECT_FALSE(provider_->created);
}

TEST_F(OperationsTest, ATicketIsMadeFromTheConfigurationAndItsAnswerIsRead) {
    RequestUiConfiguration config;
    config.subject = "Order";
    const boost::json::object body{
        {"request", dastrel::CRVRequest{.requestId = "501", .requestDescription = "Help", .createdAt = 1600}.toJson()},
        {"last_comment", dastrel::CRVComment{.commentId = 61, .body = "Help", .createdAt = 1600}.toJson()}};
    provider_->createResponse = dastrel::CRVDispatcherResponse{201, boost::json::serialize(body)};
    const auto results =
        run(ticket("local", {file("a")}, UploadResults{{file("a"), uploaded("t-a", 3)}}, config), TicketInfo{"ignored", 0});

    EXPECT_EQ(provider_->created->subject, "Order");
    EXPECT_EQ(provider_->created->attachments, std::vector<std::string>{"t-a"});
    const auto& created = results.only<Actions::TicketCreated>();
    EXPECT_EQ(created.localId, "local");
    EXPECT_EQ(created.remoteRequestId, "501");
    EXPECT_EQ(created.remoteCommentId, "61");
    EXPECT_EQ(created.remoteCreatedAt, 1600);
    EXPECT_EQ(created.subject, "Order");
    EXPECT_EQ(created.body, "Help");
    ASSERT_EQ(created.attachments.size(), 1u);
    EXPECT_EQ(created.attachments[0].first, "3");
}

TEST_F(OperationsTest, ATicketAnswerWithMissingPartsFallsBackAndAnUnreadableOneFails) {
    provider_->createResponse = dastrel::CRVDispatcherResponse{201, R"({"request": {"id": 5}})"};
    const auto created = run(ticket("local"), std::nullopt).only<Actions::TicketCreated>();
    EXPECT_EQ(created.remoteRequestId, "no_id");
    EXPECT_EQ(created.remoteCommentId, "no_id");
    EXPECT_EQ(created.remoteCreatedAt, 1700000000);

    for (const auto* data : {"not json", "[1, 2]"}) {
        provider_->createResponse = dastrel::CRVDispatcherResponse{201, data};
        const auto failure = run(ticket("l2"), std::nullopt).only<Actions::TicketCreationError>();
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
    const auto results = run(fetch, TicketInfo{"300", 42.5});

    EXPECT_EQ(*provider_->fetchedWith, std::make_tuple(std::string("300"), 42.5, false));
    const auto& fetched = results.only<Actions::NewCommentsFetched>();
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

    provider_->comments.reset();
    run(fetch, TicketInfo{"300", 0}).only<Actions::FetchCommentsError>();
}

// The queue reads an operation's id on the main thread while a provider's answer may read it on
// its own: the id exists from the start, so neither writes it.
TEST(OperationIds, AFetchHasItsIdFromTheStartForEveryThread) {
    const auto fetch = std::make_shared<FetchNewCommentsOperation>();
    std::string seenElsewhere;
    std::thread reader([&] { seenElsewhere = fetch->id(); });
    const std::string seenHere = fetch->id();
    reader.join();
    EXPECT_EQ(seenHere, seenElsewhere);
    EXPECT_EQ(seenHere.size(), 36u);
    EXPECT_NE(FetchNewCommentsOperation().id(), seenHere);
}
