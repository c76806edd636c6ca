#include "../queue/host_fixture.hpp"
#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/local_messages.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_middleware.hpp"
#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "platform/uuid.hpp"
#include "tivra/state_key.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace belvakit;
using queue_testing::settle;

namespace {

std::shared_ptr<InputAttachmentViewState> file(std::string title, std::string data) {
    const auto size = static_cast<std::int64_t>(data.size());
    return std::make_shared<InputFileViewModel>(std::move(title), size, nullptr, std::move(data),
                                                "file-" + std::to_string(size), FileType::txt, "txt");
}

CreateRequestActions::SendPressed send(std::string name, std::string email, std::string description,
                                       std::vector<std::shared_ptr<InputAttachmentViewState>> attachments = {}) {
    CreateRequestActions::SendPressed action;
    action.name = std::move(name);
    action.email = std::move(email);
    action.description = std::move(description);
    action.attachments = std::move(attachments);
    action.id = platform::uuidString();
    return action;
}

// The shared store with a fresh form that asks for what the case says, on the embedded help desk.
class CreateRequestMiddlewareTest : public testing::Test {
protected:
    void SetUp() override {
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
        actions_ = sharedStore()->addActionListener([this](const tivra::Action& action) {
            if (const auto* details = tivra::actionAs<RequestQueueActions::DispatchDetails>(action))
                dispatched.push_back(*details);
            if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) ++completed;
        });
    }
    void TearDown() override {
        actions_.removeListener();
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
    }
    void openForm(bool requiresName, bool requiresEmail) {
        CreateRequestActions::InitializeCreateRequest initialize;
        initialize.requiresName = requiresName;
        initialize.requiresEmail = requiresEmail;
        sharedStore()->dispatch(initialize);
    }
    std::shared_ptr<corvane::Anonymous> anonymous() const {
        return std::dynamic_pointer_cast<corvane::Anonymous>(host_.core->identity());
    }
    CreateRequestState::Sending sending() const {
        return sharedStore()->state().value<CreateRequestState>(tivra::stateKeyOf<CreateRequestState>())->sending;
    }

    testing_support::VirtualTime time_;
    testing_support::TemporaryDirectory directory_;
    queue_testing::Host host_{directory_.path()};
    testing_support::CapturedLog log_;
    std::vector<RequestQueueActions::DispatchDetails> dispatched;
    int completed = 0;

private:
    tivra::ActionSubscription actions_;
};

} // namespace

TEST_F(CreateRequestMiddlewareTest, ASendBecomesOneTicketWithItsFilesAndTheFormMovesToSent) {
    openForm(false, false);
    sharedStore()->dispatch(send("", "", "The app logs me out", {file("log", "line 1\nline 2"), file("notes", "n")}));
    EXPECT_EQ(sending(), CreateRequestState::Sending::sending);  // the reducer saw the action after the middleware
    ASSERT_TRUE(settle(time_, [&] { return completed > 0; }));

    ASSERT_EQ(dispatched.size(), 1u);
    EXPECT_EQ(dispatched[0].body, "The app logs me out");
    ASSERT_EQ(dispatched[0].attachments.size(), 2u);
    EXPECT_EQ(dispatched[0].attachments[0].filename, "log.txt");
    EXPECT_EQ(dispatched[0].attachments[0].data, "line 1\nline 2");
    EXPECT_EQ(sending(), CreateRequestState::Sending::sent);

    const auto requests = host_.tickets().requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].requestDescription, "The app logs me out");
    const auto comments = host_.tickets().comments(requests[0].requestId);
    ASSERT_EQ(comments.size(), 1u);
    ASSERT_EQ(comments[0].attachments.size(), 2u);
    EXPECT_EQ(comments[0].attachments[1].filename, "notes.txt");
}

TEST_F(CreateRequestMiddlewareTest, TheIdentityTakesOnlyWhatTheFormAskedForTrimmedAndKeepsTheRest) {
    // Asked for the name only: the email typed is not taken, the existing one stays.
    openForm(true, false);
    sharedStore()->dispatch(send("  Bea Tester \n", "other@example.com", "Hello"));
    EXPECT_EQ(anonymous()->name(), "Bea Tester");
    EXPECT_EQ(anonymous()->email(), "ann@example.com");
    EXPECT_TRUE(log_.contains(platform::LogLevel::debug, "Found email: ann@example.com in existing identity."));

    // A blank name counts as none: the identity is not touched.
    host_.core->setIdentity(corvane::Identity::createAnonymous(std::nullopt, std::nullopt));
    const auto before = host_.core->identity();
    openForm(true, true);
    sharedStore()->dispatch(send(" \t ", "", "Again"));
    EXPECT_EQ(host_.core->identity(), before);

    sharedStore()->dispatch(send("", " cy@example.org ", "Once more"));
    EXPECT_EQ(anonymous()->name(), std::nullopt);
    EXPECT_EQ(anonymous()->email(), "cy@example.org");

    // A JWT identity is never replaced.
    host_.core->setIdentity(corvane::Identity::createJwt("token"));
    sharedStore()->dispatch(send("Dee", "dee@example.org", "Signed in"));
    EXPECT_TRUE(std::dynamic_pointer_cast<corvane::Jwt>(host_.core->identity()));
    EXPECT_EQ(log_.messages(platform::LogLevel::debug).back(), "JWT is set, not updating");
    ASSERT_TRUE(settle(time_, [&] { return completed > 0 && dispatched.size() == 4; }));
}

TEST_F(CreateRequestMiddlewareTest, OtherActionsAndAStoreWithoutTheFormPassUntouched) {
    CreateRequestMiddleware middleware;
    std::vector<std::string> passed;
    const tivra::DispatchFunction next = [&](const tivra::Action& action) { passed.push_back(action.description()); };
    const tivra::DispatchFunction dispatch = [&](const tivra::Action&) { ADD_FAILURE() << "nothing is dispatched"; };
    const tivra::GetState noForm = [] { return tivra::State(); };

    middleware.onAction(CreateRequestActions::Edited{}, noForm, dispatch, next);
    const auto identity = host_.core->identity();
    middleware.onAction(send("Eve", "eve@example.org", "text"), noForm, dispatch, next);
    EXPECT_EQ(passed.size(), 2u);
    EXPECT_EQ(host_.core->identity(), identity);
    queue_testing::pass(time_, platform::seconds(1));
    EXPECT_TRUE(dispatched.empty());
}

TEST(PrepareDispatchDetails, AnEmptyListOrOneWithoutATextDispatchesNothing) {
    testing_support::VirtualTime time;
    int calls = 0;
    prepareDispatchDetails({}, {}, [&](const RequestQueueActions::DispatchDetails&) { ++calls; });
    AgentMessage agent;
    agent.id = "a";
    prepareDispatchDetails({agent}, {}, [&](const RequestQueueActions::DispatchDetails&) { ++calls; });
    queue_testing::pass(time, platform::milliseconds(200));
    EXPECT_EQ(calls, 0);
}

TEST(PrepareDispatchDetails, EverySendIsPreparedOffTheMainThreadInTheOrderOfTheCalls) {
    testing_support::VirtualTime time;
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::string> order;
    bool onMain = false;
    constexpr int sends = 60;
    for (int i = 0; i < sends; ++i) {
        const UserMessage text = makeUserMessage("send " + std::to_string(i));
        // Files on every third send: they take longer to prepare than a text alone.
        std::vector<InputAttachmentViewStatePtr> files;
        if (i % 3 == 0) files.push_back(file("big", std::string(200000, 'x')));
        prepareDispatchDetails(makeLocalMessages(text, files), files, [&](const RequestQueueActions::DispatchDetails& details) {
            std::lock_guard lock(mutex);
            onMain = onMain || platform::MainQueue::shared().isMainThread();
            order.push_back(details.body);
            arrived.notify_all();
        });
    }
    std::unique_lock lock(mutex);
    ASSERT_TRUE(arrived.wait_for(lock, std::chrono::seconds(10), [&] { return order.size() == sends; }));
    EXPECT_FALSE(onMain);
    for (int i = 0; i < sends; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], "send " + std::to_string(i)) << i;
}
