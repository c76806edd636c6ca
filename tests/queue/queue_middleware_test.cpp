#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/Request/queue/request_operations.hpp"
#include "belvakit/Request/queue/request_queue_middleware.hpp"
#include "tivra/async.hpp"
#include "tivra/store.hpp"

#include <gtest/gtest.h>

#include <deque>
#include <ostream>

using namespace belvakit;
using State = RequestQueueState;

namespace belvakit {
// Failures name the state rather than dumping its bytes.
void PrintTo(const RequestQueueState& state, std::ostream* out) { *out << state.description(); }
} // namespace belvakit

namespace {

Actions::TicketCreated ticketCreated(std::string remoteId, Date at) {
    Actions::TicketCreated action;
    action.remoteRequestId = std::move(remoteId);
    action.remoteCreatedAt = at;
    return action;
}

Actions::CommentCreated commentCreated(Date at) {
    Actions::CommentCreated action;
    action.remoteCreatedAt = at;
    return action;
}

} // namespace

TEST(RequestQueueState, TransitionsFollowTheTable) {
    const auto ticket = State::ticketCreated("7", 10);
    EXPECT_EQ(started(State::initial()), State::requesting(State::initial()));
    EXPECT_EQ(started(ticket), State::requesting(ticket));
    EXPECT_EQ(started(State::dirty()), State::requesting(State::dirty()));
    EXPECT_EQ(started(State::requesting(ticket)), State::requesting(ticket));

    EXPECT_EQ(reset(State::requesting(ticket)), State::dirty());
    EXPECT_EQ(reset(ticket), State::initial());
    EXPECT_EQ(reset(State::dirty()), State::initial());

    EXPECT_EQ(reduce(State::dirty(), ticketCreated("9", 20)), State::dirty());
    EXPECT_EQ(reduce(State::requesting(State::initial()), ticketCreated("9", 20)), State::ticketCreated("9", 20));
    EXPECT_EQ(reduce(State::requesting(ticket), commentCreated(30)), State::ticketCreated("7", 30));
    EXPECT_EQ(reduce(State::requesting(State::initial()), commentCreated(30)), State::initial());
    EXPECT_EQ(reduce(State::requesting(ticket), Actions::FetchCommentsError{}), ticket);
    EXPECT_EQ(reduce(State::requesting(State::initial()), Actions::TicketCreationError{}), State::initial());
}

TEST(RequestQueueState, TicketInfoLooksThroughAnOperationInFlight) {
    EXPECT_EQ(ticketInfo(State::requesting(State::ticketCreated("7", 10))), (TicketInfo{"7", 10}));
    EXPECT_FALSE(ticketInfo(State::requesting(State::initial())));
    EXPECT_FALSE(ticketInfo(State::dirty()));
    EXPECT_EQ(State::requesting(State::ticketCreated("7", 10)).description(), "requesting(ticketCreated(7, 10))");
}

namespace {

// An operation that the test finishes by hand.
class ScriptedOperation final : public RequestOperation {
public:
    ScriptedOperation(std::string id, std::vector<std::string>& journal) : id_(std::move(id)), journal_(journal) {}
    const std::string& id() const override { return id_; }
    void execute(std::optional<TicketInfo> ticket) override {
        journal_.push_back(id_ + (ticket ? "@" + ticket->first : "@none"));
        running = true;
    }
    void finishWith(const tivra::Action& result) {
        running = false;
        finish(result);
    }
    bool running = false;

private:
    std::string id_;
    std::vector<std::string>& journal_;
};

class QueueMiddlewareTest : public testing::Test {
protected:
    void SetUp() override {
        middleware_ = RequestQueueMiddleWare::make({}, State::initial(), RequestUiConfiguration());
        store_ = tivra::Store::make(
            tivra::State(), [](const std::any&, const tivra::Action&) { return std::optional<std::any>(); }, middleware_);
        store_->addActionListener([this](const tivra::Action& action) {
            if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) ++completed_;
            if (tivra::actionAs<Actions::TicketCreated>(action)) seen_.push_back("TicketCreated");
        });
    }

    std::shared_ptr<ScriptedOperation> operation(std::string id) {
        return std::make_shared<ScriptedOperation>(std::move(id), journal_);
    }
    void knownTicket(std::optional<std::string> id) {
        RequestQueueActions::SetRequestId action;
        action.id = std::move(id);
        store_->dispatch(action);
    }
    void run(std::vector<std::shared_ptr<ScriptedOperation>> operations) {
        RequestQueueActions::DispatchOperations action;
        action.operations.assign(operations.begin(), operations.end());
        store_->dispatch(action);
    }

    std::shared_ptr<RequestQueueMiddleWare> middleware_;
    std::shared_ptr<tivra::Store> store_;
    std::vector<std::string> journal_;
    std::vector<std::string> seen_;
    int completed_ = 0;
};

} // namespace

TEST_F(QueueMiddlewareTest, RunsOneOperationAtATimeAndHandsOnTheCreatedTicket) {
    auto first = operation("a"), second = operation("b");
    run({first, second});
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@none"}));
    EXPECT_EQ(middleware_->queueState(), State::requesting(State::initial()));

    first->finishWith(ticketCreated("42", 5));
    EXPECT_EQ(seen_, (std::vector<std::string>{"TicketCreated"}));
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@none", "b@42"}));
    EXPECT_EQ(completed_, 0);

    second->finishWith(commentCreated(6));
    EXPECT_EQ(middleware_->queueState(), State::ticketCreated("42", 6));
    EXPECT_EQ(completed_, 1);
}

TEST_F(QueueMiddlewareTest, SetRequestIdWithoutIdChangesNothingAndResetWhileIdleForgetsTheTicket) {
    knownTicket(std::nullopt);
    EXPECT_EQ(middleware_->queueState(), State::initial());

    knownTicket("17");
    EXPECT_EQ(ticketInfo(middleware_->queueState()).value().first, "17");
    knownTicket(std::nullopt);
    EXPECT_EQ(ticketInfo(middleware_->queueState()).value().first, "17");

    store_->dispatch(RequestQueueActions::ResetQueue{});
    EXPECT_EQ(middleware_->queueState(), State::initial());
}

TEST_F(QueueMiddlewareTest, AfterAResetWaitingWorkKeepsItsTicketAndNothingStartsBesideIt) {
    knownTicket("17");
    auto first = operation("a"), second = operation("b");
    run({first, second});
    store_->dispatch(RequestQueueActions::ResetQueue{});
    EXPECT_EQ(middleware_->queueState(), State::dirty());

    // The next conversation's work waits for the old one's, which still goes to ticket 17.
    knownTicket("30");
    auto third = operation("c");
    run({third});
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@17"}));
    first->finishWith(commentCreated(9));
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@17", "b@17"}));
    second->finishWith(ticketCreated("20", 10));
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@17", "b@17", "c@30"}));
    // A late outcome of the left conversation never becomes the shown one's ticket, nor reaches its store.
    EXPECT_EQ(ticketInfo(middleware_->queueState()).value().first, "30");
    EXPECT_TRUE(seen_.empty());
    EXPECT_EQ(completed_, 0);
    third->finishWith(commentCreated(11));
    EXPECT_EQ(completed_, 1);
}

TEST_F(QueueMiddlewareTest, AResetForgetsAShownTicketThatSendsNothingWhileAnotherConversationsWorkRuns) {
    knownTicket("17");
    auto first = operation("a");
    run({first});
    knownTicket("30");
    store_->dispatch(RequestQueueActions::ResetQueue{});
    EXPECT_EQ(middleware_->queueState(), State::initial()) << "only a reset in the shown conversation's own flight leaves it dirty";
    first->finishWith(commentCreated(9));
    EXPECT_EQ(middleware_->queueState(), State::initial());
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@17"}));
}

TEST_F(QueueMiddlewareTest, ASendFromAListenerOfAResultKeepsTheQueueOpenUntilItEnds) {
    auto first = operation("a"), nested = operation("nested");
    auto subscription = store_->addActionListener([&](const tivra::Action& action) {
        if (tivra::actionAs<Actions::TicketCreated>(action)) run({nested});
    });
    run({first});
    first->finishWith(ticketCreated("42", 5));
    EXPECT_EQ(journal_, (std::vector<std::string>{"a@none", "nested@42"}));
    EXPECT_TRUE(nested->running);
    EXPECT_EQ(completed_, 0) << "completed while an operation was in flight";
    nested->finishWith(commentCreated(6));
    EXPECT_EQ(completed_, 1);

    // A second report of a finished operation changes nothing.
    first->finishWith(ticketCreated("99", 7));
    EXPECT_EQ(middleware_->queueState(), State::ticketCreated("42", 6));
    EXPECT_EQ(completed_, 1);
    subscription.removeListener();
}

TEST_F(QueueMiddlewareTest, DetailsOnAKnownTicketFetchBeforeTheCommentAndConfigReachesNewTickets) {
    RequestUiConfiguration config;
    config.subject = "Order";
    RequestQueueActions::SetConfig setConfig;
    setConfig.config = config;
    store_->dispatch(setConfig);
    EXPECT_EQ(middleware_->config().subject, "Order");

    // Holds the ticket as in flight so that nothing reaches a provider.
    auto blocker = operation("blocker");
    knownTicket("17");
    run({blocker});

    RequestQueueActions::DispatchDetails details;
    details.id = "local-1";
    details.body = "Hello";
    store_->dispatch(details);
    ASSERT_EQ(middleware_->requestOperations().size(), 2u);
    const auto& fetch = *middleware_->requestOperations()[0];
    EXPECT_NE(dynamic_cast<const FetchNewCommentsOperation*>(&fetch), nullptr);
    EXPECT_EQ(fetch.id().size(), 36u) << "a UUID string";
    const auto* comment = dynamic_cast<const CommentRequestOperation*>(middleware_->requestOperations()[1].get());
    ASSERT_NE(comment, nullptr);
    EXPECT_EQ(comment->id(), "local-1");
    EXPECT_EQ(comment->body, "Hello");
}
