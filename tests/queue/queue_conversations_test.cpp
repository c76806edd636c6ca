// The send queue across conversations: a screen that moves from one ticket to another while work
// is still queued or in flight.
#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/conversation_recorder.hpp"
#include "belvakit/Request/conversation/local_messages.hpp"
#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "host_fixture.hpp"
#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"
#include "tivra/state_key.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using namespace belvakit;
using queue_testing::settle;

namespace {

// What a screen does as it leaves what it showed: the queue moves on, the conversation slices empty.
void leaveTheShownConversation() {
    sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
    sharedStore()->dispatch(Actions::InitializeRequestControllerState{});
}

// What the conversation screen does with the shared store: opens a conversation, sends, and keeps
// the device's copy of the shown conversation after every change once the saved one is loaded.
class Screen {
public:
    Screen()
        : cache_(ConcreteCache::named(ConcreteCache::ticketsDirectory)),
          tableSubscription_(sharedStore()->addListener<RequestTableState>(
              tivra::stateKeyOf<RequestTableState>(), nullptr,
              [this](const RequestTableState& state) {
                  if (!loaded_) return;  // a write now would replace the saved conversation
                  LocalIDStore ids;
                  recordConversation(state, ids, RequestsWithFailedMessagesIdStore{}, cache_,
                                     [](const tivra::Action& action) { sharedStore()->dispatch(action); });
              })),
          actionSubscription_(sharedStore()->addActionListener([this](const tivra::Action& action) {
              if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) idle = true;
              if (tivra::actionAs<RequestQueueActions::DispatchDetails>(action)) idle = false;
          })) {}
    ~Screen() {
        tableSubscription_.removeListener();
        actionSubscription_.removeListener();
    }

    // Leaves what is shown for the conversation kept under `localId`, on ticket `remoteId`.
    void open(const std::string& localId, const std::string& remoteId) {
        auto store = sharedStore();
        loaded_ = false;
        leaveTheShownConversation();
        // The key and the ticket are known before the disk answers.
        Actions::MessagesLoadedFromDisk key;
        key.localId = localId;
        store->dispatch(key);
        Actions::SetRemoteId remote;
        remote.remoteRequestID = remoteId;
        store->dispatch(remote);
        RequestQueueActions::SetRequestId known;
        known.id = remoteId;
        store->dispatch(known);
        const auto saved = this->saved(localId);
        Actions::MessagesLoadedFromDisk loaded;
        loaded.localId = localId;
        loaded.messages = saved.messages;
        loaded.mapLocalToRemote = saved.mapLocalToRemote;
        loaded_ = true;
        store->dispatch(loaded);
    }

    // A text, with a file when asked, as the input field sends it; its id.
    std::string send(const std::string& body, bool withFile = false,
                     std::optional<std::string> conversation = std::nullopt) {
        const UserMessage text = makeUserMessage(body);
        Actions::NewMessages messages;
        messages.messages.emplace_back(text);
        RequestQueueActions::DispatchDetails details;
        details.id = text.id;
        details.body = body;
        details.conversation = std::move(conversation);
        if (withFile) {
            UserFile file;
            file.id = platform::uuidString();
            file.parentId = text.id;
            file.filename = "note.txt";
            file.fileType = FileType::txt;
            file.createdAt = text.createdAt;
            file.downloaded = true;
            messages.messages.emplace_back(file);
            details.attachments.push_back({"bytes", file.id, FileType::txt, "note.txt"});
        }
        sharedStore()->dispatch(messages);
        sharedStore()->dispatch(details);
        return text.id;
    }

    // What the device keeps under `localId`, read after every write already given to the cache.
    MessageList saved(const std::string& localId) const {
        MessageList list;
        bool read = false;
        cache_->fetch(localId, [&](std::optional<std::string> bytes) {
            if (bytes) list = decodeMessageList(*bytes).value_or(MessageList{});
            read = true;
        });
        platform::MainQueue::shared().runUntil([&] { return read; });
        return list;
    }

    // Asks the queue to go on, which reports its end only when nothing waits and nothing is in
    // flight for any conversation; whether it has.
    bool quiet() {
        sharedStore()->dispatch(RequestQueueActions::DispatchOperations{});
        return idle;
    }

    static RequestTableState shown() {
        return *sharedStore()->state().value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    }

    // The queue has run dry since the latest send.
    bool idle = true;

private:
    std::shared_ptr<Cache> cache_;
    bool loaded_ = true;
    tivra::Subscription<RequestTableState> tableSubscription_;
    tivra::ActionSubscription actionSubscription_;
};

const Message* find(const std::vector<Message>& messages, const std::string& messageId) {
    auto found = std::ranges::find_if(messages, [&](const Message& message) { return id(message) == messageId; });
    return found == messages.end() ? nullptr : &*found;
}

long occurrences(const std::vector<Message>& messages, const std::string& messageId) {
    return std::ranges::count_if(messages, [&](const Message& message) { return id(message) == messageId; });
}

bool delivered(const Message& message) {
    const auto state = status(message);
    return state == DeliveryStatus::delivered || state == DeliveryStatus::lastDelivered;
}

std::vector<std::string> userBodies(sandbox::TicketDesk& desk, const std::string& requestId) {
    std::vector<std::string> bodies;
    const auto endUser = desk.endUser().userId;
    for (const auto& comment : desk.comments(requestId))
        if (comment.authorId == endUser) bodies.push_back(comment.body);
    return bodies;
}

// A ticket opened at the help desk; its id.
std::string openTicket(sandbox::TicketDesk& desk, testing_support::VirtualTime& time, const std::string& body) {
    std::string requestId;
    dastrel::CRVCreateRequest request;
    request.requestDescription = body;
    desk.createRequest(request, [&](std::optional<dastrel::CRVDispatcherResponse> response, auto) {
        auto id = std::string(boost::json::parse(response.value().data).at("request").at("id").as_string());
        platform::MainQueue::shared().async([&requestId, id] { requestId = id; });
    });
    settle(time, [&] { return !requestId.empty(); });
    return requestId;
}

class QueueConversationsTest : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        host_.helpDesk->setAnswersOnWorkerThreads(GetParam());
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
        agent_ = host_.tickets().addAgent("Sam").userId;
    }
    void TearDown() override { sharedStore()->dispatch(RequestQueueActions::ResetQueue{}); }

    std::string ticket(const std::string& body) { return openTicket(host_.tickets(), time_, body); }

    // Starts a new conversation and opens `other` before the help desk answers; then the new one
    // shows again, and if `byKey`, as a screen does for a ticket of its own: by its key, no ticket id.
    std::string leaveANewTicketDuringItsCreation(Screen& screen, const std::string& other, bool byKey = true) {
        sharedStore()->dispatch(Actions::InitializeRequestControllerState{});
        host_.tickets().setLatency(platform::milliseconds(300));
        const auto first = screen.send("Opening words");
        screen.open("L2", other);
        leaveTheShownConversation();
        if (byKey) {
            Actions::MessagesLoadedFromDisk key;
            key.localId = first;
            sharedStore()->dispatch(key);
        }
        return first;
    }

    testing_support::VirtualTime time_;
    queue_testing::FixedClock clock_;
    testing_support::TemporaryDirectory directory_;
    queue_testing::Host host_{directory_.path()};
    std::int64_t agent_ = 0;
};

} // namespace

// The user writes on T1 while a fetch for T1 is in flight, then opens T2: the comment still goes to
// T1, T1's news stays out of T2's table, and T1's saved conversation takes both.
TEST_P(QueueConversationsTest, WorkQueuedForALeftTicketGoesToItAndIsKeptWithIt) {
    auto& desk = host_.tickets();
    const auto t1 = ticket("First ticket"), t2 = ticket("Second ticket");
    Screen screen;
    screen.open("L1", t1);
    desk.addAgentComment(t1, agent_, "Agent on T1");
    desk.setLatency(platform::milliseconds(200));
    const auto m1 = screen.send("For T1", true);
    screen.open("L2", t2);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

    EXPECT_EQ(userBodies(desk, t1), (std::vector<std::string>{"First ticket", "For T1"}));
    EXPECT_EQ(userBodies(desk, t2), (std::vector<std::string>{"Second ticket"}));
    const auto shown = Screen::shown();
    EXPECT_EQ(shown.localId, "L2");
    EXPECT_EQ(find(shown.tableData, m1), nullptr);
    for (const auto& message : shown.tableData) EXPECT_NE(bodyOf(message) ? *bodyOf(message) : "", "Agent on T1");

    const auto kept = screen.saved("L1");
    ASSERT_EQ(occurrences(kept.messages, m1), 1);
    EXPECT_TRUE(delivered(*find(kept.messages, m1)));
    EXPECT_EQ(std::ranges::count_if(kept.messages, [](const Message& message) { return status(message) == DeliveryStatus::lastDelivered; }), 1);
    EXPECT_TRUE(std::ranges::any_of(kept.messages, [](const Message& message) {
        return bodyOf(message) && *bodyOf(message) == "Agent on T1";
    }));
    EXPECT_TRUE(kept.mapLocalToRemote.contains(m1));
}

// A ticket left with a send in flight is shown again, where the user deletes a failed message, and
// left again before the send's answer: that answer changes only its own message in the saved
// conversation, which keeps the later visit's deletion.
TEST_P(QueueConversationsTest, ALateOutcomeForALeftTicketKeepsWhatALaterVisitSaved) {
    auto& desk = host_.tickets();
    const auto t1 = ticket("First ticket"), t2 = ticket("Second ticket");
    Screen screen;
    screen.open("L1", t1);
    desk.setOffline(true);
    const auto failed = screen.send("Failed while offline");
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    desk.setOffline(false);
    desk.setLatency(platform::milliseconds(400));
    const auto late = screen.send("Answered late");
    screen.open("L2", t2);

    screen.open("L1", t1);
    Actions::DeleteMessages deletion;
    deletion.messages.push_back(*find(Screen::shown().tableData, failed));
    sharedStore()->dispatch(deletion);
    ASSERT_EQ(find(screen.saved("L1").messages, failed), nullptr);
    screen.open("L2", t2);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

    const auto kept = screen.saved("L1");
    EXPECT_EQ(find(kept.messages, failed), nullptr) << "the deleted message came back";
    EXPECT_EQ(std::ranges::count(RequestsWithFailedMessagesIdStore{}.ids(), t1), 0) << "the ticket is listed as failed again";
    ASSERT_EQ(occurrences(kept.messages, late), 1);
    EXPECT_TRUE(delivered(*find(kept.messages, late)));
}

// The end of a left ticket's work is not the end of what the screen shown now sends: a form opened
// meanwhile is not told its message went out.
TEST_P(QueueConversationsTest, ALeftTicketsEndIsNoEndForTheScreenShownNow) {
    auto& desk = host_.tickets();
    const auto t1 = ticket("First ticket");
    Screen screen;
    screen.open("L1", t1);
    desk.setLatency(platform::milliseconds(200));
    screen.send("For T1");
    int completions = 0;
    auto listener = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) ++completions;
    });
    leaveTheShownConversation();
    ASSERT_TRUE(settle(time_, [&] { return userBodies(desk, t1).size() == 2; }));
    queue_testing::pass(time_, platform::seconds(2));
    EXPECT_EQ(completions, 0);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    EXPECT_GE(completions, 1) << "asked once more, the queue reports that it has run dry";
    listener.removeListener();
}

// A comment of a left ticket that fails is kept as failed with that ticket, where the user can
// retry it; one whose ticket opens again meanwhile lands in the open table.
TEST_P(QueueConversationsTest, OutcomesOfALeftTicketReachItWhereverItIs) {
    auto& desk = host_.tickets();
    const auto t1 = ticket("First ticket"), t2 = ticket("Second ticket");
    Screen screen;
    screen.open("L1", t1);
    desk.setLatency(platform::milliseconds(200));
    desk.failNext(2);  // the fetch and the comment
    const auto failed = screen.send("Fails on T1");
    screen.open("L2", t2);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    EXPECT_EQ(userBodies(desk, t1), (std::vector<std::string>{"First ticket"}));
    EXPECT_EQ(RequestsWithFailedMessagesIdStore{}.ids(), (std::vector<std::string>{t1}));
    screen.open("L1", t1);
    const auto reopened = Screen::shown();
    const auto* retryable = find(reopened.tableData, failed);
    ASSERT_NE(retryable, nullptr) << "the failed comment is back with its ticket";
    EXPECT_EQ(status(*retryable), DeliveryStatus::failed);

    // Leave and come back before the answer: the open table takes the outcome and its message.
    const auto sent = screen.send("Sent while away", true);
    screen.open("L2", t2);
    screen.open("L1", t1);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    const auto shown = Screen::shown();
    ASSERT_EQ(occurrences(shown.tableData, sent), 1);
    EXPECT_TRUE(delivered(*find(shown.tableData, sent)));
    EXPECT_EQ(occurrences(screen.saved("L1").messages, sent), 1);
    EXPECT_EQ(userBodies(desk, t1), (std::vector<std::string>{"First ticket", "Sent while away"}));
}

// A new conversation left while its ticket is being created: the message behind the creation still
// becomes a comment on that ticket, and the conversation is kept under its own id.
TEST_P(QueueConversationsTest, ANewTicketLeftDuringItsCreationKeepsItsWaitingComment) {
    auto& desk = host_.tickets();
    const auto t2 = ticket("Other ticket");
    Screen screen;
    sharedStore()->dispatch(Actions::InitializeRequestControllerState{});
    desk.setLatency(platform::milliseconds(200));
    const auto first = screen.send("Opening words");
    const auto second = screen.send("And one more thing");
    screen.open("L2", t2);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

    const auto requests = desk.requests();
    ASSERT_EQ(requests.size(), 2u);
    const auto created = requests[0].requestId == t2 ? requests[1].requestId : requests[0].requestId;
    EXPECT_EQ(userBodies(desk, created), (std::vector<std::string>{"Opening words", "And one more thing"}));
    EXPECT_EQ(userBodies(desk, t2), (std::vector<std::string>{"Other ticket"}));
    const auto kept = screen.saved(first);
    EXPECT_EQ(kept.remoteRequestId, created);
    ASSERT_EQ(kept.messages.size(), 2u);
    EXPECT_TRUE(delivered(kept.messages[0]) && delivered(kept.messages[1]));
    EXPECT_EQ(id(kept.messages[1]), second);
    EXPECT_EQ(LocalIDStore{}.remoteToLocal.at(created), first);
}

// A new conversation's ticket waits behind another ticket's work: the messages typed meanwhile
// still follow it as comments, rather than each opening a ticket of its own.
TEST_P(QueueConversationsTest, MessagesOfANewTicketQueuedBehindAnotherTicketsWorkJoinIt) {
    auto& desk = host_.tickets();
    const auto t1 = ticket("First ticket");
    Screen screen;
    screen.open("L1", t1);
    desk.setLatency(platform::milliseconds(200));
    screen.send("For T1");
    leaveTheShownConversation();
    screen.send("Opening words");
    screen.send("And one more thing");
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

    const auto requests = desk.requests();
    ASSERT_EQ(requests.size(), 2u) << "one new ticket";
    EXPECT_EQ(userBodies(desk, t1), (std::vector<std::string>{"First ticket", "For T1"}));
    EXPECT_EQ(userBodies(desk, requests[1].requestId), (std::vector<std::string>{"Opening words", "And one more thing"}));
}

// A new conversation left while its ticket is created and shown again (by its first message's id)
// before the help desk answers: once the answer is in, its next message is a comment on that ticket.
TEST_P(QueueConversationsTest, ANewTicketShownAgainDuringItsCreationKeepsTheTicketForItsNextMessage) {
    auto& desk = host_.tickets();
    Screen screen;
    leaveANewTicketDuringItsCreation(screen, ticket("Other ticket"));
    ASSERT_TRUE(settle(time_, [&] { return Screen::shown().remoteId.has_value(); })) << "the answer reaches the table shown";
    screen.send("And one more thing");
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    const auto requests = desk.requests();
    ASSERT_EQ(requests.size(), 2u) << "no ticket of its own for the second message";
    EXPECT_EQ(userBodies(desk, requests.back().requestId), (std::vector<std::string>{"Opening words", "And one more thing"}));
}

// A new conversation left while its ticket is still to be created, shown again by its first
// message's id, written in, and left again before any answer: when every send fails, the device
// keeps each failed message once under that id, whichever outcome is written last.
TEST_P(QueueConversationsTest, ANewTicketLeftTwiceBeforeItsAnswersKeepsEveryFailedMessage) {
    auto& desk = host_.tickets();
    const auto t2 = ticket("Other ticket");
    Screen screen;
    desk.setOffline(true);
    const auto first = leaveANewTicketDuringItsCreation(screen, t2);
    const auto later = screen.send("Written while the first waited");
    screen.open("L2", t2);
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

    const auto kept = screen.saved(first);
    for (const auto& sent : {first, later}) {
        ASSERT_EQ(occurrences(kept.messages, sent), 1) << (sent == first ? "the first" : "the later") << " message is lost";
        EXPECT_EQ(status(*find(kept.messages, sent)), DeliveryStatus::failed);
    }
    const LocalIDStore ids;
    EXPECT_EQ(std::ranges::count(ids.localIdList, first), 1) << "the failed ticket is listed";
}

// The same, with the next message sent before the answer: it waits behind the creation and becomes
// its first comment. The screen may know its conversation by the table's id, or, while its saved
// copy is still being read, only by naming it in the send.
TEST_P(QueueConversationsTest, ANewTicketShownAgainDuringItsCreationTakesAMessageSentBeforeTheAnswer) {
    auto& desk = host_.tickets();
    for (const bool namedByTable : {true, false}) {
        SCOPED_TRACE(namedByTable ? "named by the table" : "named by the send");
        const auto other = ticket("Other ticket");
        const auto ticketsBefore = desk.requests().size();
        Screen screen;
        const auto first = leaveANewTicketDuringItsCreation(screen, other, namedByTable);
        const auto next = screen.send("Before the answer", false, namedByTable ? std::nullopt : std::optional(first));
        ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

        const auto requests = desk.requests();
        ASSERT_EQ(requests.size(), ticketsBefore + 1) << "one ticket for the new conversation";
        EXPECT_EQ(userBodies(desk, requests.back().requestId), (std::vector<std::string>{"Opening words", "Before the answer"}));
        const auto shown = Screen::shown();
        const auto* sent = find(shown.tableData, next);
        ASSERT_NE(sent, nullptr);
        EXPECT_TRUE(delivered(*sent));
        desk.setLatency(platform::Duration::zero());
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
    }
}

// A send announced while one conversation shows, whose details come only after another was opened
// (its files took a while): it makes its own ticket rather than joining the one now shown, and its
// outcome, kept away from the shown table, is told to whoever waits on it.
TEST_P(QueueConversationsTest, ASendPreparedWhileAnotherConversationOpensStaysWithItsOwn) {
    auto& desk = host_.tickets();
    const auto other = ticket("Other ticket");
    std::vector<RequestQueueActions::SendOutcomeKept> told;
    int createdInStore = 0;
    auto listener = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (const auto* kept = tivra::actionAs<RequestQueueActions::SendOutcomeKept>(action)) told.push_back(*kept);
        if (tivra::actionAs<Actions::TicketCreated>(action)) ++createdInStore;
    });
    Screen screen;
    sharedStore()->dispatch(Actions::InitializeRequestControllerState{});
    RequestQueueActions::SendComing coming;
    coming.id = "prepared";
    sharedStore()->dispatch(coming);
    screen.open("L2", other);
    RequestQueueActions::DispatchDetails details;
    details.id = "prepared";
    details.body = "Prepared late";
    sharedStore()->dispatch(details);
    ASSERT_TRUE(settle(time_, [&] { return told.size() == 1; }));
    screen.send("On the other ticket");
    ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));
    listener.removeListener();

    const auto requests = desk.requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(userBodies(desk, requests.back().requestId), std::vector<std::string>{"Prepared late"});
    EXPECT_EQ(userBodies(desk, other), (std::vector<std::string>{"Other ticket", "On the other ticket"}));
    EXPECT_EQ(told[0].id, "prepared");
    EXPECT_TRUE(told[0].delivered);
    EXPECT_EQ(createdInStore, 0) << "the shown table never hears of the other ticket";
    EXPECT_EQ(Screen::shown().remoteId, other);
}

// Random sends and moves between three tickets, under failures, latencies that let answers
// overtake each other, and agents who reply. Every message ends delivered or failed exactly once,
// in its own conversation only; each ticket holds exactly its delivered messages, in send order.
TEST_P(QueueConversationsTest, SoakAcrossConversationsLosesAndMisplacesNothing) {
    constexpr unsigned seeds = 60;
    constexpr int stepsPerSeed = 30;
    int deliveredInAll = 0, failedInAll = 0, movesInAll = 0;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        testing_support::TemporaryDirectory directory;
        queue_testing::Host host(directory.path());
        host.helpDesk->setAnswersOnWorkerThreads(GetParam());
        auto& desk = host.tickets();
        const auto agent = desk.addAgent("Sam").userId;
        std::vector<std::string> tickets;
        for (int i = 0; i < 3; ++i) tickets.push_back(openTicket(desk, time_, "Ticket " + std::to_string(i)));
        desk.setAutoReply(agent, [](const dastrel::CRVRequest&, const dastrel::CRVComment& comment) {
            return std::optional<sandbox::TicketDesk::Reply>({"re: " + comment.body, std::nullopt, platform::milliseconds(150)});
        });
        desk.setLatencyRange(platform::milliseconds(0), platform::milliseconds(400), seed);
        desk.setFailureRate(0.2, seed);

        Screen screen;
        std::mt19937 random(seed);
        std::vector<std::vector<std::pair<std::string, std::string>>> sent(3);  // (id, body) per conversation
        std::size_t shown = 0;
        screen.open("L0", tickets[0]);
        for (int step = 0; step < stepsPerSeed; ++step) {
            if (random() % 4 == 0) {
                shown = random() % 3;
                screen.open("L" + std::to_string(shown), tickets[shown]);
                ++movesInAll;
            } else {
                const auto body = "m" + std::to_string(step);
                sent[shown].emplace_back(screen.send(body, random() % 4 == 0), body);
            }
            queue_testing::pass(time_, platform::milliseconds(static_cast<long long>(random() % 300)));
        }
        ASSERT_TRUE(settle(time_, [&] { return screen.quiet(); }));

        std::vector<MessageList> kept;
        for (std::size_t c = 0; c < 3; ++c) kept.push_back(screen.saved("L" + std::to_string(c)));
        for (std::size_t c = 0; c < 3; ++c) {
            std::vector<std::string> expected{"Ticket " + std::to_string(c)};
            for (const auto& [messageId, body] : sent[c]) {
                ASSERT_EQ(occurrences(kept[c].messages, messageId), 1) << body << " in conversation " << c;
                const auto& message = *find(kept[c].messages, messageId);
                if (delivered(message)) {
                    expected.push_back(body);
                    ++deliveredInAll;
                } else {
                    EXPECT_EQ(status(message), DeliveryStatus::failed) << body;
                    ++failedInAll;
                }
                for (std::size_t other = 0; other < 3; ++other) {
                    if (other == c) continue;
                    EXPECT_EQ(occurrences(kept[other].messages, messageId), 0) << body;
                }
            }
            EXPECT_EQ(userBodies(desk, tickets[c]), expected) << "conversation " << c;
        }
        sharedStore()->dispatch(RequestQueueActions::ResetQueue{});
    }
    EXPECT_GT(deliveredInAll, seeds * 10);
    EXPECT_GT(failedInAll, seeds);
    EXPECT_GT(movesInAll, seeds * 4);
}

INSTANTIATE_TEST_SUITE_P(Answers, QueueConversationsTest, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& answers) {
                             return answers.param ? "OnWorkerThreads" : "OnTheMainQueue";
                         });
