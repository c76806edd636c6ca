#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "host_fixture.hpp"
#include "platform/uuid.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace belvakit;
using queue_testing::settle;

namespace {

// What the shared store saw of the send queue, in order.
class QueueRecorder {
public:
    QueueRecorder()
        : subscription_(sharedStore()->addActionListener([this](const tivra::Action& action) { record(action); })) {}
    ~QueueRecorder() { subscription_.removeListener(); }

    std::vector<std::string> events;
    std::map<std::string, std::vector<std::string>> outcomes;  // message id -> "delivered" / "failed"
    std::vector<Actions::TicketCreated> ticketsCreated;
    int completed = 0;

private:
    void record(const tivra::Action& action) {
        if (const auto* ticket = tivra::actionAs<Actions::TicketCreated>(action)) {
            note("TicketCreated", ticket->localId, "delivered");
            ticketsCreated.push_back(*ticket);
        } else if (const auto* comment = tivra::actionAs<Actions::CommentCreated>(action)) {
            note("CommentCreated", comment->localId, "delivered");
        } else if (const auto* a = tivra::actionAs<Actions::TicketCreationError>(action)) {
            note("TicketCreationError", a->id, "failed");
        } else if (const auto* b = tivra::actionAs<Actions::CommentCreationError>(action)) {
            note("CommentCreationError", b->id, "failed");
        } else if (const auto* c = tivra::actionAs<Actions::AttachmentsUploadError>(action)) {
            note("AttachmentsUploadError", c->id, "failed");
        } else if (tivra::actionAs<Actions::NewCommentsFetched>(action)) {
            events.emplace_back("NewCommentsFetched");
        } else if (tivra::actionAs<Actions::FetchCommentsError>(action)) {
            events.emplace_back("FetchCommentsError");
        } else if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) {
            events.emplace_back("QueueCompleted");
            ++completed;
        }
    }
    void note(const std::string& name, const std::string& id, const std::string& outcome) {
        events.push_back(name + ":" + id);
        outcomes[id].push_back(outcome);
    }

    tivra::ActionSubscription subscription_;
};

RequestQueueActions::DispatchDetails details(std::string id, std::string body,
                                             std::vector<Upload::Attachment> attachments = {}) {
    RequestQueueActions::DispatchDetails action;
    action.id = std::move(id);
    action.body = std::move(body);
    action.attachments = std::move(attachments);
    return action;
}

std::vector<std::string> bodiesOf(const std::vector<dastrel::CRVComment>& comments) {
    std::vector<std::string> bodies;
    for (const auto& comment : comments) bodies.push_back(comment.body);
    return bodies;
}

class QueueEndToEndTest : public testing::Test {
protected:
    void SetUp() override { sharedStore()->dispatch(RequestQueueActions::ResetQueue{}); }
    void TearDown() override { sharedStore()->dispatch(RequestQueueActions::ResetQueue{}); }

    bool settled(const std::function<bool()>& done) { return settle(time_, done); }

    testing_support::VirtualTime time_;
    queue_testing::FixedClock clock_;
    testing_support::TemporaryDirectory directory_;
    queue_testing::Host host_{directory_.path()};
    QueueRecorder recorder_;
};

} // namespace

TEST_F(QueueEndToEndTest, TwoSendsWithoutATicketMakeOneTicketThenOneCommentOnIt) {
    host_.tickets().setLatency(platform::milliseconds(200));
    RequestQueueActions::SetConfig config;
    config.config.subject = "Lost parcel";
    config.config.tags = {"ios", "parcel"};
    config.config.customFields = {{360001, "1234"}};
    config.config.ticketFormID = 77;
    sharedStore()->dispatch(config);
    sharedStore()->dispatch(details("local-1", "My order never came"));
    sharedStore()->dispatch(details("local-2", "It was order 1234"));
    ASSERT_TRUE(settled([&] { return recorder_.completed > 0; }));

    EXPECT_EQ(recorder_.events, (std::vector<std::string>{"TicketCreated:local-1", "CommentCreated:local-2",
                                                          "QueueCompleted"}));
    const auto requests = host_.tickets().requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(recorder_.ticketsCreated.at(0).remoteRequestId, requests[0].requestId);
    const auto creation = host_.tickets().creation(requests[0].requestId).value();
    EXPECT_EQ(creation.subject, "Lost parcel");
    EXPECT_EQ(creation.tags, (std::vector<std::string>{"ios", "parcel"}));
    EXPECT_EQ(creation.customFields, config.config.customFields);
    EXPECT_EQ(creation.ticketFormId, 77);
    EXPECT_EQ(bodiesOf(host_.tickets().comments(requests[0].requestId)),
              (std::vector<std::string>{"My order never came", "It was order 1234"}));

    // A later send on the known ticket fetches first, then comments.
    recorder_.events.clear();
    sharedStore()->dispatch(details("local-3", "Any news?"));
    ASSERT_TRUE(settled([&] { return recorder_.completed > 1; }));
    EXPECT_EQ(recorder_.events,
              (std::vector<std::string>{"NewCommentsFetched", "CommentCreated:local-3", "QueueCompleted"}));
}

TEST_F(QueueEndToEndTest, AFailedCreationFailsItsMessagesAndTheNextSendCreatesATicketAgain) {
    host_.tickets().failNext(1);
    sharedStore()->dispatch(details("local-1", "First try"));
    sharedStore()->dispatch(details("local-2", "Waiting behind it"));
    ASSERT_TRUE(settled([&] { return recorder_.completed > 0; }));
    EXPECT_EQ(recorder_.events, (std::vector<std::string>{"TicketCreationError:local-1",
                                                          "CommentCreationError:local-2", "QueueCompleted"}));
    EXPECT_TRUE(host_.tickets().requests().empty());

    sharedStore()->dispatch(details("local-3", "Second try"));
    ASSERT_TRUE(settled([&] { return recorder_.completed > 1; }));
    EXPECT_EQ(recorder_.events.at(3), "TicketCreated:local-3");
    ASSERT_EQ(host_.tickets().requests().size(), 1u);
    EXPECT_EQ(host_.tickets().requests()[0].requestDescription, "Second try");
}

TEST_F(QueueEndToEndTest, AFailedUploadFailsTheMessageAndTheQueueGoesOn) {
    sharedStore()->dispatch(details("local-1", "Opening"));
    ASSERT_TRUE(settled([&] { return recorder_.completed > 0; }));
    host_.helpDesk->attachments()->setFailUploads(true);
    sharedStore()->dispatch(details("local-2", "With a file", {{"bytes", "f1", FileType::png, "a.png"}}));
    sharedStore()->dispatch(details("local-3", "Plain"));
    ASSERT_TRUE(settled([&] { return recorder_.outcomes.contains("local-3"); }));
    EXPECT_EQ(recorder_.outcomes.at("local-2"), std::vector<std::string>{"failed"});
    EXPECT_EQ(recorder_.outcomes.at("local-3"), std::vector<std::string>{"delivered"});
    EXPECT_EQ(bodiesOf(host_.tickets().comments(host_.tickets().requests().at(0).requestId)),
              (std::vector<std::string>{"Opening", "Plain"}));
}

// Failures, latencies and agent replies over many seeds. Every message ends delivered or failed
// exactly once, the help desk holds the delivered ones once each and in send order, and the
// queue always runs dry.
TEST_F(QueueEndToEndTest, SoakWithFailuresAndLatenciesKeepsOrderAndNeverSendsTwice) {
    constexpr int seeds = 200;
    constexpr int messagesPerSeed = 12;
    int deliveredInAll = 0, failedInAll = 0;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        testing_support::TemporaryDirectory directory;
        queue_testing::Host host(directory.path());
        QueueRecorder recorder;
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
        // Half the seeds get their answers on worker threads, as from a real provider.
        host.helpDesk->setAnswersOnWorkerThreads(seed % 2 == 1);
        auto& desk = host.tickets();
        const auto agent = desk.addAgent("Sam");
        desk.setAutoReply(agent.userId, [](const dastrel::CRVRequest&, const dastrel::CRVComment& comment) {
            return std::optional<sandbox::TicketDesk::Reply>(
                sandbox::TicketDesk::Reply{"re: " + comment.body, std::nullopt, platform::milliseconds(150)});
        });
        desk.setLatencyRange(platform::milliseconds(0), platform::milliseconds(400), seed);
        desk.setFailureRate(0.2, seed);

        std::mt19937 random(seed);
        std::vector<std::string> ids, bodies;
        for (int i = 0; i < messagesPerSeed; ++i) {
            ids.push_back(platform::uuidString());
            bodies.push_back("message " + std::to_string(i));
            std::vector<Upload::Attachment> files;
            if (random() % 4 == 0) files.push_back({"bytes", platform::uuidString(), FileType::txt, "note.txt"});
            sharedStore()->dispatch(details(ids.back(), bodies.back(), files));
            // Sometimes the next message comes at once, sometimes after answers have arrived.
            const auto pause = platform::milliseconds(static_cast<long long>(random() % 500));
            queue_testing::pass(time_, pause);
        }
        ASSERT_TRUE(settle(time_, [&] {
            return recorder.outcomes.size() == ids.size() && !recorder.events.empty() &&
                   recorder.events.back() == "QueueCompleted";
        }));

        std::vector<std::string> delivered;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const auto& outcome = recorder.outcomes.at(ids[i]);
            ASSERT_EQ(outcome.size(), 1u) << "message " << i << " reported twice";
            if (outcome[0] == "delivered") delivered.push_back(bodies[i]);
        }
        std::vector<std::string> onServer;
        for (const auto& request : desk.requests())
            for (const auto& comment : desk.comments(request.requestId))
                if (comment.authorId != agent.userId) onServer.push_back(comment.body);
        EXPECT_EQ(onServer, delivered) << "the help desk holds each delivered message once, in send order";
        deliveredInAll += static_cast<int>(delivered.size());
        failedInAll += messagesPerSeed - static_cast<int>(delivered.size());
    }
    // Both roads were taken, many times.
    EXPECT_GT(deliveredInAll, seeds * messagesPerSeed / 2);
    EXPECT_GT(failedInAll, seeds);
}
