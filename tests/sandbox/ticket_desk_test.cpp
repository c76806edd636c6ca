#include "dastrel/support.hpp"
#include "platform/clock.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

using namespace sandbox;
using testing_support::VirtualTime;

namespace {

class TicketDeskTest : public testing::Test {
protected:
    void SetUp() override {
        previousClock_ = platform::setWallClock(clock_);
        helpDesk_ = HelpDesk::make({.storageDirectory = dir_.path()});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
        dastrel::Support::initialize(core_);
        provider_ = core_->providerModule().provider<dastrel::CRVRequestProvider>();
    }
    void TearDown() override {
        dastrel::Support::reset();
        corvane::Corvane::reset();
        platform::setWallClock(previousClock_);
    }

    // Creates a ticket and waits for the answer; gives its id.
    std::string createTicket(const std::string& description) {
        std::optional<std::string> id;
        dastrel::CRVCreateRequest request;
        request.requestDescription = description;
        provider_->createRequest(request, [&](auto response, auto error) {
            ASSERT_FALSE(error);
            const auto body = boost::json::parse(response->data).as_object();
            id = std::string(body.at("request").at("id").as_string());
        });
        platform::MainQueue::shared().runPending();
        return id.value_or("");
    }

    testing_support::TemporaryDirectory dir_;
    std::shared_ptr<platform::FixedWallClock> clock_ = std::make_shared<platform::FixedWallClock>(1700000000);
    std::shared_ptr<platform::WallClock> previousClock_;
    std::shared_ptr<HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
    std::shared_ptr<dastrel::CRVRequestProvider> provider_;
};

} // namespace

TEST_F(TicketDeskTest, CreateAnswersWithTheRequestAndItsFirstCommentOnTheMainQueue) {
    bool answered = false;
    dastrel::CRVCreateRequest request;
    request.requestDescription = "My order never came";
    request.subject = "Order";
    provider_->createRequest(request, [&](auto response, auto error) {
        answered = true;
        EXPECT_TRUE(platform::MainQueue::shared().isMainThread());
        ASSERT_TRUE(response);
        EXPECT_FALSE(error);
        const auto body = boost::json::parse(response->data);
        const auto created = dastrel::CRVRequest::initWithDict(body.at("request"));
        const auto comment = dastrel::CRVComment::initWithDictionary(body.at("last_comment"));
        ASSERT_TRUE(created && comment);
        EXPECT_EQ(created->requestDescription, "My order never came");
        EXPECT_EQ(created->status, "new");
        EXPECT_EQ(comment->body, "My order never came");
        EXPECT_EQ(comment->authorId, helpDesk_->tickets()->endUser().userId);
    });
    EXPECT_FALSE(answered);  // never inline
    platform::MainQueue::shared().runPending();
    EXPECT_TRUE(answered);
    EXPECT_EQ(helpDesk_->tickets()->endUser().name, "Ann");
}

TEST_F(TicketDeskTest, CommentsSinceADateAndTheAgentWhoRepliesOnItsOwn) {
    VirtualTime time;
    const auto desk = helpDesk_->tickets();
    const auto agent = desk->addAgent("Ada", "https://belva.example.com/avatars/ada.png");
    desk->setAutoReply(agent.userId, [](const dastrel::CRVRequest&, const dastrel::CRVComment& comment) {
        return std::optional<TicketDesk::Reply>({"Re: " + comment.body, "<p>Re</p>", platform::seconds(30)});
    });
    const std::string id = createTicket("First");
    clock_->advance(10);
    provider_->addComment("Second", id, {}, [](auto comment, auto error) { EXPECT_TRUE(comment && !error); });
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(desk->comments(id).size(), 2u);

    time.advance(platform::seconds(30));
    ASSERT_EQ(desk->comments(id).size(), 4u);  // one reply to each user comment
    EXPECT_EQ(desk->comments(id).back().body, "Re: Second");

    std::vector<std::string> seen;
    provider_->getComments(id, desk->comments(id)[0].createdAt, true, [&](auto comments, auto) {
        for (const auto& entry : *comments) seen.push_back(entry.comment.body + "/" + entry.user.name);
    });
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(seen, (std::vector<std::string>{"Re: First/Ada", "Re: Second/Ada"}));

    std::optional<dastrel::CRVRequestsWithCommentingAgents> all;
    provider_->getAllRequests([&](auto response, auto) { all = response; });
    platform::MainQueue::shared().runPending();
    ASSERT_TRUE(all);
    ASSERT_EQ(all->requests.size(), 1u);
    EXPECT_EQ(all->requests[0].status, "open");
    EXPECT_EQ(all->requests[0].commentingAgentsIds, std::vector<std::int64_t>{agent.userId});
    EXPECT_EQ(all->commentingAgents, std::vector<dastrel::CRVSupportUser>{agent});

    // An empty reply function silences the agent instead of failing the next comment.
    desk->setAutoReply(agent.userId, nullptr);
    provider_->addComment("Third", id, {}, [](auto comment, auto error) { EXPECT_TRUE(comment && !error); });
    platform::MainQueue::shared().runPending();
    time.advance(platform::seconds(60));
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(desk->comments(id).back().body, "Third");
}

TEST_F(TicketDeskTest, SwitchesGiveOfflineUnauthorizedAndServerErrors) {
    const auto desk = helpDesk_->tickets();
    std::vector<long> codes;
    const auto record = [&](auto, std::optional<dastrel::ProviderError> error) { codes.push_back(error ? error->code : 0); };
    desk->setOffline(true);
    provider_->getAllRequests(record);
    desk->setOffline(false);
    desk->setUnauthorized(true);
    provider_->getAllRequests(record);
    desk->setUnauthorized(false);
    desk->failNext(1);
    provider_->getAllRequests(record);
    provider_->getAllRequests(record);
    provider_->addComment("x", "no-such-ticket", {}, record);
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(codes, (std::vector<long>{-1009, 401, 500, 0, 404}));
    EXPECT_EQ(desk->callCount(), 5u);
}

TEST_F(TicketDeskTest, LatencyRunsInVirtualTimeAndARangeReordersAnswers) {
    VirtualTime time;
    const auto desk = helpDesk_->tickets();
    desk->setLatencyRange(platform::milliseconds(10), platform::milliseconds(500), 7);
    std::vector<int> order;
    for (int i = 0; i < 8; ++i) provider_->getAllRequests([&order, i](auto, auto) { order.push_back(i); });
    platform::MainQueue::shared().runPending();
    EXPECT_TRUE(order.empty());
    time.advance(platform::milliseconds(500));
    ASSERT_EQ(order.size(), 8u);
    EXPECT_FALSE(std::is_sorted(order.begin(), order.end())) << "seed 7 is known to reorder";
}

TEST_F(TicketDeskTest, UpdatesForTheDeviceCountCommentsTheUserHasNotRead) {
    VirtualTime time;
    const auto desk = helpDesk_->tickets();
    const auto agent = desk->addAgent("Ada");
    const std::string id = createTicket("Hello");
    clock_->advance(5);
    desk->addAgentComment(id, agent.userId, "Hi there");

    std::optional<dastrel::RequestUpdates> updates;
    provider_->getUpdatesForDevice([&](auto answer) { updates = answer; });
    platform::MainQueue::shared().runPending();
    ASSERT_TRUE(updates);
    EXPECT_TRUE(updates->isRequestUnread(id));

    provider_->markRequestAsRead(id, 2);
    provider_->getUpdatesForDevice([&](auto answer) { updates = answer; });
    platform::MainQueue::shared().runPending();
    EXPECT_FALSE(updates->isRequestUnread(id));
}
