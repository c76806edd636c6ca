#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/attachments/cache_keys.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "host_fixture.hpp"
#include "platform/clock.hpp"
#include "tivra/state_key.hpp"
#include "uikit/alert_controller.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>
#include <optional>

#include <atomic>
#include <thread>

using namespace belvakit;
using queue_testing::settle;

namespace {

// The wall clock moves with virtual time, so the help desk's dates follow the test's timeline.
class VirtualWallClock final : public platform::WallClock {
public:
    explicit VirtualWallClock(platform::ManualScheduler& scheduler) : scheduler_(scheduler) {}
    double now() const override {
        return 1700000000.0 + std::chrono::duration<double>(scheduler_.now().time_since_epoch()).count();
    }

private:
    platform::ManualScheduler& scheduler_;
};

std::shared_ptr<InputImageViewModel> photo() {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(8, 6));
    for (std::size_t i = 0; i < image->rgba.size(); i += 4) {
        image->rgba[i] = 200;
        image->rgba[i + 3] = 255;
    }
    return std::make_shared<InputImageViewModel>(image, "photo-1", std::nullopt, std::nullopt, FileType::png, "photo.png");
}

// Keeps the tickets cache's queue busy, as a slow disk does, until opened (or ten seconds pass).
class SlowDisk {
public:
    SlowDisk() {
        ConcreteCache::named(ConcreteCache::ticketsDirectory)->run([open = open_] {
            const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            while (!*open && std::chrono::steady_clock::now() < until) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
    }
    ~SlowDisk() { open(); }
    SlowDisk(const SlowDisk&) = delete;
    SlowDisk& operator=(const SlowDisk&) = delete;
    void open() { *open_ = true; }

private:
    std::shared_ptr<std::atomic<bool>> open_ = std::make_shared<std::atomic<bool>>(false);
};

class ConversationScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        previousClock_ = platform::setWallClock(std::make_shared<VirtualWallClock>(time.scheduler()));
        host = std::make_unique<queue_testing::Host>(directory.path());
        store->dispatch(RequestQueueActions::ResetQueue{});
        window->makeKeyAndVisible();
        listening_ = store->addActionListener([this](const tivra::Action& action) {
            if (tivra::actionAs<Actions::RequestCreationOrUpdateError>(action)) ++listErrors;
            if (const auto* gone = tivra::actionAs<Actions::DeleteRequestFromList>(action)) deletedFromList.push_back(gone->ticketId);
        });
    }

    void TearDown() override {
        listening_.removeListener();
        close();
        queue_testing::pass(time, platform::seconds(5));
        store->dispatch(RequestQueueActions::ResetQueue{});
        store->dispatch(Actions::InitializeRequestControllerState{});
        host.reset();
        platform::setWallClock(previousClock_);
    }

    static std::shared_ptr<RequestController> screenFor(std::optional<std::string> requestId, std::int64_t maxSize = 1 << 20) {
        return RequestController::make(RequestUiConfiguration{}, std::move(requestId), nullptr, nullptr, true, maxSize);
    }

    void open(std::optional<std::string> requestId, std::int64_t maxSize = 1 << 20) {
        screen = screenFor(std::move(requestId), maxSize);
        navigation = std::make_shared<uikit::NavigationController>(screen);
        window->setRootViewController(navigation);
        navigation->view()->setNeedsLayout();
        window->layoutTree();
    }

    uikit::View& root() { return *window; }
    uikit::TableView& table() { return *screen->requestTable()->tableView(); }
    const RequestTableState& state() const { return *store->state().valueOfType<RequestTableState>(); }

    // The first view on show with the identifier: cells keep hidden parts that share one.
    template <class T = uikit::View>
    T* find(std::string_view identifier) {
        window->layoutTree();
        const auto found = uikit::findAll(root(), [&](const uikit::View& view) {
            return view.accessibilityIdentifier() == identifier && uikit::isShown(view) && dynamic_cast<const T*>(&view);
        });
        return found.empty() ? nullptr : dynamic_cast<T*>(found.front());
    }

    // The connectivity toast may show beside the screen's own.
    bool toastShows(const std::string& text) {
        window->layoutTree();
        return !uikit::findAll(root(), [&](const uikit::View& view) {
                    const auto* label = dynamic_cast<const uikit::Label*>(&view);
                    return label && label->accessibilityIdentifier() == "CRVtoastRetryMessage" && label->text() == text &&
                           uikit::isShown(view);
                }).empty();
    }

    void typeAndSend(const std::string& text) {
        auto* field = find<uikit::TextInput>("CRVmessageBodyField");
        ASSERT_TRUE(field);
        uikit::typeText(*field, text);
        auto* send = find("CRVsendButton");
        ASSERT_TRUE(send);
        ASSERT_TRUE(uikit::tap(*send));
    }

    std::optional<DeliveryStatus> statusOf(const std::string& body) const {
        for (const auto& message : state().tableData)
            if (const auto* text = message.getIf<UserMessage>(); text && text->body == body) return text->status;
        return std::nullopt;
    }

    bool settled(const std::function<bool()>& done) { return settle(time, done); }

    // Taps the failed row's retry button; the choice named `key` on the sheet that comes up.
    uikit::View* retrySheetChoice(std::string_view key) {
        auto* retry = find("CRVretryButton");
        if (!retry || !uikit::tap(*retry)) return nullptr;
        auto sheet = std::dynamic_pointer_cast<uikit::AlertController>(screen->presentedViewController());
        return sheet ? uikit::findByIdentifier(*sheet->view(), localized(key)) : nullptr;
    }
    bool chooseOnRetrySheet(std::string_view key) {
        auto* choice = retrySheetChoice(key);
        return choice && uikit::tap(*choice);
    }

    void close() {
        window->setRootViewController(nullptr);
        screen.reset();
        navigation.reset();
    }

    enum class SavedCopy { readAtOnce, readAfterTheSend, readOnlyAfterReopening };

    // A send on a ticket whose comments never loaded fails, its screen closes and opens again,
    // and its failed row is deleted: through all of it the ticket stays the help desk's, however
    // late its saved copy comes back.
    void failASendOnATicketThatNeverLoaded(SavedCopy copy) {
        const auto id = ticketWithHistory(1);
        host->tickets().setOffline(true);
        std::optional<SlowDisk> disk;
        if (copy != SavedCopy::readAtOnce) disk.emplace();
        open(id);
        typeAndSend("Written before the disk answered");
        ASSERT_TRUE(settled([&] { return statusOf("Written before the disk answered") == DeliveryStatus::failed; }));
        if (copy == SavedCopy::readAfterTheSend) {
            disk->open();
            ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
        }
        close();
        open(id);
        if (disk) disk->open();
        ASSERT_TRUE(settled([&] {
            return state().finishedLoading && statusOf("Written before the disk answered") == DeliveryStatus::failed;
        })) << "the failed send was not kept";
        EXPECT_EQ(screen->requestId(), id);

        ASSERT_TRUE(chooseOnRetrySheet(LocalizedKey::requestsCreateRequestFailedDelete));
        queue_testing::pass(time, platform::seconds(1));
        EXPECT_TRUE(deletedFromList.empty()) << "the ticket was taken for one of the device's own";

        host->tickets().setOffline(false);
        typeAndSend("Once more");
        ASSERT_TRUE(settled([&] { return statusOf("Once more") == DeliveryStatus::lastDelivered; }));
        EXPECT_EQ(host->tickets().requests().size(), 1u) << "no new ticket";
        EXPECT_EQ(host->tickets().comments(id).back().body, "Once more");
    }

    // A new ticket's first words, slow to answer; then another ticket's screen starts over it
    // and takes the store's slices. That screen is returned.
    std::shared_ptr<RequestController> startANewTicketAndCoverIt() {
        const auto other = ticketWithHistory(1);
        open(std::nullopt);
        host->tickets().setLatency(platform::milliseconds(500));
        typeAndSend("The very first words");
        auto covering = screenFor(other);
        covering->loadViewIfNeeded();
        return covering;
    }

    // A ticket on the help desk with a long history, written before the screen opens.
    std::string ticketWithHistory(int agentComments) {
        auto& desk = host->tickets();
        agent = desk.addAgent("Grace").userId;
        desk.createRequest({std::nullopt, "My printer prints blank pages", {}, {}, std::nullopt, {}},
                           [](auto, auto) {});
        const auto id = desk.requests().back().requestId;
        for (int i = 0; i < agentComments; ++i) {
            time.advance(platform::seconds(60));
            desk.addAgentComment(id, agent, "Step " + std::to_string(i) + ": please try turning it off and on again.");
        }
        return id;
    }

    std::string secondTicket() {
        host->tickets().createRequest({.requestDescription = "Second ticket"}, [](auto, auto) {});
        EXPECT_TRUE(settled([&] { return host->tickets().requests().size() == 2; }));
        return host->tickets().requests().back().requestId;
    }

    testing_support::VirtualTime time;
    testing_support::TemporaryDirectory directory;
    std::unique_ptr<queue_testing::Host> host;
    std::shared_ptr<tivra::Store> store = sharedStore();
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::shared_ptr<RequestController> screen;
    std::shared_ptr<uikit::NavigationController> navigation;
    std::int64_t agent = 0;
    int listErrors = 0;
    std::vector<std::string> deletedFromList;

private:
    std::shared_ptr<platform::WallClock> previousClock_;
    tivra::ActionSubscription listening_;
};

TEST_F(ConversationScreenTest, AMessageWithAPhotoOnANewTicketIsDeliveredAndKeptOnTheDevice) {
    open(std::nullopt);
    auto* prompt = find<uikit::Label>("writeAMessage");
    ASSERT_TRUE(prompt && uikit::isShown(*prompt));
    EXPECT_EQ(prompt->text(), localized(LocalizedKey::requestsCreateRequestInputNew));
    EXPECT_FALSE(find<uikit::Button>("CRVsendButton")->isEnabled());

    Actions::AttachmentAdded added;
    added.viewModel = photo();
    store->dispatch(added);
    ASSERT_TRUE(find("CRVinputAttachment0"));
    typeAndSend("My printer prints blank pages");

    // At once: the rows are there, on their way, and the field is empty again.
    ASSERT_EQ(state().tableData.size(), 2u);
    EXPECT_EQ(find<uikit::TextInput>("CRVmessageBodyField")->text(), "");
    EXPECT_FALSE(find("CRVinputAttachment0"));
    EXPECT_TRUE(find("CRVsendingStatusView"));
    EXPECT_TRUE(find("CRVimageAttachment"));
    EXPECT_NE(screen->progressBar()->stateMachine()->state(), ProgressState::idle);

    ASSERT_TRUE(settled([&] { return statusOf("My printer prints blank pages") == DeliveryStatus::delivered; }));
    ASSERT_TRUE(settled([&] { return screen->progressBar()->stateMachine()->state() == ProgressState::idle; }));
    auto* delivered = find("deliveredLabel");
    ASSERT_TRUE(delivered && uikit::isShown(*delivered));
    EXPECT_EQ(find<uikit::Label>("writeAMessage")->text(), localized(LocalizedKey::requestsCreateRequestInputReply));

    const auto requests = host->tickets().requests();
    ASSERT_EQ(requests.size(), 1u);
    const auto comments = host->tickets().comments(requests[0].requestId);
    ASSERT_EQ(comments.size(), 1u);
    EXPECT_EQ(comments[0].body, "My printer prints blank pages");
    EXPECT_EQ(comments[0].attachments.size(), 1u);

    // The conversation is on disk under its local id, and the id stores know its ticket.
    const auto localId = state().localId.value();
    EXPECT_EQ(screen->idStore().remoteToLocal.at(requests[0].requestId), localId);
    ASSERT_TRUE(settled([&] { return screen->ticketsCache()->fileURL(localId).has_value(); }));
    std::optional<MessageList> saved;
    settled([&] {
        saved = decodeMessageList(screen->ticketsCache()->read(localId).value_or(""));
        return saved && saved->messages.size() == 2;
    });
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->remoteRequestId, requests[0].requestId);

    // The photo opens in the preview, from what the device kept of it.
    auto* image = find("CRVimageAttachment");
    ASSERT_TRUE(image && uikit::tap(*image));
    ASSERT_TRUE(screen->presentedViewController());
    EXPECT_EQ(screen->presentedViewController()->className(), "QLPreviewController");
    EXPECT_TRUE(screen->ticketsCache()->fileURL(fileCacheKey("photo-1", "photo.png")));
}

TEST_F(ConversationScreenTest, AnAgentsAnswerArrivesAsABatchInsertWhileTheUserReadsTheMiddle) {
    const auto id = ticketWithHistory(30);
    host->tickets().setAutoReply(agent, [](const dastrel::CRVRequest&, const dastrel::CRVComment& comment)
                                            -> std::optional<sandbox::TicketDesk::Reply> {
        if (comment.body != "Still blank") return std::nullopt;
        return sandbox::TicketDesk::Reply{"Sorry to hear. Is the <b>cartridge</b> new?",
                                          std::string("<p>Sorry to hear. Is the <b>cartridge</b> new?</p>"),
                                          platform::seconds(30)};
    });
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 31; }));
    window->layoutTree();
    ASSERT_GT(table().contentSize().height, table().frame().height() * 2) << "the history must scroll";

    typeAndSend("Still blank");
    ASSERT_TRUE(settled([&] { return statusOf("Still blank") == DeliveryStatus::lastDelivered; }));
    ASSERT_TRUE(settled([&] { return screen->progressBar()->stateMachine()->state() == ProgressState::idle; }));

    // The user scrolls back to read an earlier step, and the agent answers meanwhile.
    table().setContentOffset({0, table().contentSize().height / 3});
    window->layoutTree();
    const auto offset = table().contentOffset();
    queue_testing::pass(time, platform::seconds(31));
    ASSERT_EQ(host->tickets().comments(id).size(), 33u);

    // The host hears of the answer by a push and asks for a refresh of the ticket.
    ASSERT_TRUE(corvane::Corvane::instance()->actionHandlerRegistry().handler(RequestDetailRefreshActionHandler::actionName(id)));
    table().clearAppliedUpdates();
    ASSERT_TRUE(dastrel::Support::instance()->refreshRequest(id));
    ASSERT_TRUE(settled([&] { return state().tableData.size() == 33; }));
    window->layoutTree();

    const auto& updates = table().appliedUpdates();
    ASSERT_FALSE(updates.empty());
    for (const auto& update : updates) EXPECT_NE(update.kind, uikit::TableUpdate::Kind::reloadData);
    EXPECT_TRUE(std::any_of(updates.begin(), updates.end(), [&](const uikit::TableUpdate& update) {
        return update.kind == uikit::TableUpdate::Kind::insertRows &&
               update.indexPaths.back().row == table().numberOfRowsInSection(0) - 1;
    }));
    EXPECT_EQ(table().contentOffset(), offset);
    const auto* answer = state().tableData.back().getIf<AgentMessage>();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->htmlBody, "<p>Sorry to hear. Is the <b>cartridge</b> new?</p>");

    // Gone from view, the screen takes no more pushes.
    navigation->setViewControllers({std::make_shared<uikit::ViewController>()}, false);
    EXPECT_FALSE(corvane::Corvane::instance()->actionHandlerRegistry().handler(RequestDetailRefreshActionHandler::actionName(id)));
}

TEST_F(ConversationScreenTest, ASendWhileOfflineFailsOffersRetryAndSucceedsOnceOnline) {
    const auto id = ticketWithHistory(2);
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));

    host->tickets().setOffline(true);
    auto* field = find<uikit::TextInput>("CRVmessageBodyField");
    ASSERT_TRUE(field);
    uikit::typeText(*field, "  \n");
    EXPECT_FALSE(screen->hasUnsavedEdits()) << "only space is no reply";
    for (int i = 0; i < 3; ++i) field->deleteBackward();
    uikit::typeText(*field, "Hello?");
    EXPECT_TRUE(screen->hasUnsavedEdits()) << "leaving now would drop the reply";
    ASSERT_TRUE(uikit::tap(*find("CRVsendButton")));
    ASSERT_TRUE(settled([&] { return statusOf("Hello?") == DeliveryStatus::failed; }));
    auto* error = find("CRVerrorStatusView");
    ASSERT_TRUE(error && uikit::isShown(*error));
    EXPECT_EQ(dynamic_cast<uikit::Label*>(error)->text(), localized(LocalizedKey::requestsCreateRequestCellError));
    auto* retry = find("CRVretryButton");
    ASSERT_TRUE(retry && uikit::isShown(*retry));
    EXPECT_FALSE(screen->hasUnsavedEdits()) << "a sent reply is no longer an edit";

    host->tickets().setOffline(false);
    ASSERT_TRUE(uikit::tap(*retry));
    auto sheet = std::dynamic_pointer_cast<uikit::AlertController>(screen->presentedViewController());
    ASSERT_TRUE(sheet);
    std::vector<std::string> titles;
    for (const auto& action : sheet->actions()) titles.push_back(action.title);
    EXPECT_EQ(titles, (std::vector<std::string>{localized(LocalizedKey::requestsCreateRequestFailedDelete),
                                                localized(LocalizedKey::requestsCreateRequestFailedRetry),
                                                localized(LocalizedKey::requestsLeftBarButtonTitleCancel)}));
    auto* again = uikit::findByIdentifier(*sheet->view(), localized(LocalizedKey::requestsCreateRequestFailedRetry));
    ASSERT_TRUE(again && uikit::tap(*again));
    ASSERT_TRUE(settled([&] { return statusOf("Hello?") == DeliveryStatus::lastDelivered; }));
    EXPECT_FALSE(find("CRVerrorStatusView"));
    EXPECT_EQ(host->tickets().comments(id).back().body, "Hello?");
    EXPECT_EQ(state().tableData.back().get<UserMessage>().body, "Hello?") << "the retried row goes to the bottom";
}

// The user picks Retry and the host takes the sheet away before its exit ends, so the row still
// offers its retry and a second sheet shows; the first choice then runs. A choice on the second
// sheet finds the send no longer failed: it neither posts it again nor deletes it.
TEST_F(ConversationScreenTest, ASecondSheetForASendAlreadyRetriedNeitherPostsNorDeletesIt) {
    const auto id = ticketWithHistory(1);
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    for (const std::string_view second : {LocalizedKey::requestsCreateRequestFailedRetry, LocalizedKey::requestsCreateRequestFailedDelete}) {
        const std::string body = "Are you there? " + localized(second);
        host->tickets().setOffline(true);
        typeAndSend(body);
        ASSERT_TRUE(settled([&] { return statusOf(body) == DeliveryStatus::failed; }));
        host->tickets().setOffline(false);

        ASSERT_TRUE(chooseOnRetrySheet(LocalizedKey::requestsCreateRequestFailedRetry));
        screen->dismissViewController(false);
        ASSERT_EQ(statusOf(body), DeliveryStatus::failed) << "the first choice waits for its sheet's exit";
        auto* stale = retrySheetChoice(second);
        ASSERT_TRUE(stale);
        queue_testing::pass(time, platform::seconds(1));
        ASSERT_TRUE(uikit::tap(*stale));
        ASSERT_TRUE(settled([&] { return statusOf(body) == DeliveryStatus::lastDelivered; }))
            << localized(second) << ": the retried row is gone or never delivered";
        queue_testing::pass(time, platform::seconds(2));
        const auto comments = host->tickets().comments(id);
        EXPECT_EQ(std::ranges::count_if(comments, [&](const auto& comment) { return comment.body == body; }), 1)
            << localized(second);
        EXPECT_EQ(statusOf(body), DeliveryStatus::lastDelivered) << localized(second);
    }
}

TEST_F(ConversationScreenTest, ALocalTicketThatFailsIsListedOnceAndCanBeDeletedWhole) {
    open(std::nullopt);
    host->tickets().setOffline(true);
    typeAndSend("First try");
    typeAndSend("Second try");  // waits behind the ticket's creation
    ASSERT_TRUE(settled([&] {
        return statusOf("First try") == DeliveryStatus::failed && statusOf("Second try") == DeliveryStatus::failed;
    }));
    EXPECT_EQ(listErrors, 1) << "one list row per local ticket";

    // Deleting every message of the ticket takes it off the list.
    const auto localId = state().localId.value();
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(chooseOnRetrySheet(LocalizedKey::requestsCreateRequestFailedDelete));
        queue_testing::pass(time, platform::seconds(1));
    }
    EXPECT_TRUE(state().tableData.empty());
    EXPECT_EQ(deletedFromList, std::vector<std::string>{localId});
}

TEST_F(ConversationScreenTest, AScreenThatAnotherTicketsScreenCoveredGetsItsConversationBackAndSendsToItsTicket) {
    const auto first = ticketWithHistory(1);
    const auto second = secondTicket();
    open(first);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 2; }));
    const auto firstScreen = screen;

    // A push opens the other ticket over it; the user reads it and goes back.
    auto other = screenFor(second);
    navigation->pushViewController(other, false);
    window->layoutTree();
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().remoteId == second; }));
    EXPECT_FALSE(firstScreen->ownsConversation());
    const auto rowsBefore = firstScreen->requestTable()->state().tableData.size();
    EXPECT_EQ(rowsBefore, 2u) << "a covered screen keeps its own rows";
    navigation->popViewController(false);
    window->layoutTree();
    EXPECT_TRUE(firstScreen->ownsConversation());
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().remoteId == first && state().tableData.size() == 2; }));

    typeAndSend("For the first ticket");
    ASSERT_TRUE(settled([&] { return statusOf("For the first ticket") == DeliveryStatus::lastDelivered; }));
    EXPECT_EQ(host->tickets().comments(first).back().body, "For the first ticket");
    EXPECT_EQ(host->tickets().comments(second).size(), 1u);
}

TEST_F(ConversationScreenTest, AScreenOnViewKeepsItsTicketWhenAnotherStartsOutOfSight) {
    const auto first = ticketWithHistory(1);
    const auto second = secondTicket();
    open(first);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 2; }));

    // The host starts the other ticket's screen under what the user sees, as a push handler may.
    auto other = screenFor(second);
    other->loadViewIfNeeded();
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().remoteId == second; }));
    window->layoutTree();
    EXPECT_EQ(screen->requestTable()->state().remoteId, first) << "the screen on view shows its own ticket";

    typeAndSend("Still about the printer");
    EXPECT_TRUE(screen->ownsConversation());
    ASSERT_TRUE(settled([&] { return statusOf("Still about the printer") == DeliveryStatus::lastDelivered; }));
    EXPECT_EQ(host->tickets().comments(first).back().body, "Still about the printer");
    EXPECT_EQ(host->tickets().comments(second).size(), 1u);
    EXPECT_FALSE(other->ownsConversation());
}

TEST_F(ConversationScreenTest, ASendWhoseScreenClosedBeforeTheAnswerIsKeptAsFailedAndListed) {
    open(std::nullopt);
    host->tickets().setLatency(platform::milliseconds(300));
    host->tickets().setOffline(true);
    typeAndSend("Gone before the answer");
    ASSERT_EQ(state().tableData.size(), 1u);
    const auto localId = id(state().tableData[0]);  // a new ticket is kept under its first message's id
    const auto cache = screen->ticketsCache();
    close();
    queue_testing::pass(time, platform::seconds(2));

    std::optional<MessageList> kept;
    ASSERT_TRUE(settled([&] {
        kept = decodeMessageList(cache->read(localId).value_or(""));
        return kept.has_value();
    }));
    ASSERT_EQ(kept->messages.size(), 1u);
    EXPECT_EQ(*bodyOf(kept->messages[0]), "Gone before the answer");
    EXPECT_EQ(status(kept->messages[0]), DeliveryStatus::failed);
    EXPECT_EQ(listErrors, 1) << "the failed ticket is listed, where its retry is";
}

// A retried photo's bytes are read from the disk before the send goes; the screen closes
// meanwhile and the retry fails again: the device still keeps the failed message.
TEST_F(ConversationScreenTest, ARetriedPhotoWhoseScreenClosedBeforeItsBytesWereReadIsKeptWhenItFailsAgain) {
    const auto id = ticketWithHistory(1);
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    host->tickets().setOffline(true);
    Actions::AttachmentAdded added;
    added.viewModel = photo();
    store->dispatch(added);
    typeAndSend("The photo of the box");
    ASSERT_TRUE(settled([&] { return statusOf("The photo of the box") == DeliveryStatus::failed; }));
    const auto cache = screen->ticketsCache();
    const auto key = state().localId.value();

    std::optional<SlowDisk> disk(std::in_place);
    ASSERT_TRUE(chooseOnRetrySheet(LocalizedKey::requestsCreateRequestFailedRetry));
    close();
    disk->open();
    queue_testing::pass(time, platform::seconds(2));

    std::optional<MessageList> kept;
    ASSERT_TRUE(settled([&] {
        kept = decodeMessageList(cache->read(key).value_or(""));
        return kept && std::ranges::any_of(kept->messages, [](const Message& message) {
                   const auto* body = bodyOf(message);
                   return body && *body == "The photo of the box" && status(message) == DeliveryStatus::failed;
               });
    })) << "the retried message left the device";
}

TEST_F(ConversationScreenTest, AScreenMadeEarlierKeepsTheTicketMapsOtherScreensSavedSince) {
    const auto other = ticketWithHistory(1);
    // Made before the new ticket exists, as a screen under another one is.
    auto earlier = screenFor(other);
    open(std::nullopt);
    typeAndSend("A brand new ticket");
    ASSERT_TRUE(settled([&] { return statusOf("A brand new ticket") == DeliveryStatus::lastDelivered; }));
    const auto created = state().remoteId.value();
    const auto localId = state().localId.value();
    ASSERT_EQ(LocalIDStore{}.remoteToLocal.at(created), localId);

    earlier->loadViewIfNeeded();
    ASSERT_TRUE(settled([&] { return state().remoteId == other && state().finishedLoading; }));
    queue_testing::pass(time, platform::milliseconds(500));
    const LocalIDStore stored;
    ASSERT_TRUE(stored.remoteToLocal.contains(created)) << "the earlier screen's save dropped the new ticket's key";
    EXPECT_EQ(stored.remoteToLocal.at(created), localId);
}

// A conversation of the device's own whose ticket was made while another screen showed that ticket
// under a key of its own: its file knows the ticket, and its next message goes there.
TEST_F(ConversationScreenTest, ADeviceConversationWhoseFileKnowsItsTicketSendsToIt) {
    const auto ticket = ticketWithHistory(1);
    const std::string key = "5F0E6C1A-7D4B-4C1E-9A57-2B8E0C6D9F31";
    const UserMessage first{.id = key, .status = DeliveryStatus::delivered, .body = "My printer prints blank pages",
                            .createdAt = 100};
    persistConversation({first}, key, ticket, {{key, "remote-first"}}, MessageList::currentVersion, false,
                        ConcreteCache::named(ConcreteCache::ticketsDirectory));
    queue_testing::pass(time, platform::milliseconds(200));

    open(key);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    EXPECT_EQ(state().remoteId, ticket);
    typeAndSend("Any news?");
    ASSERT_TRUE(settled([&] { return statusOf("Any news?") == DeliveryStatus::lastDelivered; }));
    EXPECT_EQ(host->tickets().requests().size(), 1u) << "a second ticket was made";
    EXPECT_EQ(host->tickets().comments(ticket).back().body, "Any news?");
}

// A conversation of the device's own, written in before its saved copy comes back: the ticket
// its message makes is kept under the conversation's key, not under the message's id.
TEST_F(ConversationScreenTest, ADeviceConversationKeepsItsKeyForAMessageSentBeforeTheDiskAnswered) {
    const std::string key = "8C2D7E4B-1F3A-4E6B-9D0C-5A7B3E1F2C48";
    persistConversation({UserMessage{.id = key, .status = DeliveryStatus::failed, .body = "Typed offline", .createdAt = 100}},
                        key, std::nullopt, {}, MessageList::currentVersion, false,
                        ConcreteCache::named(ConcreteCache::ticketsDirectory));
    queue_testing::pass(time, platform::milliseconds(200));
    SlowDisk disk;
    open(key);
    typeAndSend("Sent before the disk answered");
    ASSERT_TRUE(settled([&] { return statusOf("Sent before the disk answered") == DeliveryStatus::lastDelivered; }));
    disk.open();
    ASSERT_TRUE(settled([&] { return statusOf("Typed offline") == DeliveryStatus::failed; }));
    EXPECT_EQ(state().localId, key);
    const auto created = state().remoteId.value();
    EXPECT_EQ(LocalIDStore{}.remoteToLocal.at(created), key);
}

TEST_F(ConversationScreenTest, ATicketWhoseCommentsNeverLoadedStaysThatTicketThroughAFailedSendAndItsDeletion) {
    failASendOnATicketThatNeverLoaded(SavedCopy::readAtOnce);
}

TEST_F(ConversationScreenTest, ASendThatFailedBeforeTheSavedCopyCameBackStaysOnItsTicket) {
    failASendOnATicketThatNeverLoaded(SavedCopy::readAfterTheSend);
}

TEST_F(ConversationScreenTest, ASendThatFailedOnAScreenClosedBeforeTheSavedCopyCameIsKeptOnItsTicket) {
    failASendOnATicketThatNeverLoaded(SavedCopy::readOnlyAfterReopening);
}

TEST_F(ConversationScreenTest, ANewTicketCreatedWhileAnotherScreenHeldTheSlicesTakesItsNextMessage) {
    // Another ticket's screen starts before the help desk answers, and goes again.
    auto covering = startANewTicketAndCoverIt();
    ASSERT_TRUE(settled([&] { return host->tickets().requests().size() == 2; }));
    queue_testing::pass(time, platform::seconds(2));
    covering.reset();
    const auto created = host->tickets().requests().back().requestId;

    typeAndSend("And what followed");
    ASSERT_TRUE(settled([&] { return statusOf("And what followed") == DeliveryStatus::lastDelivered; }));
    EXPECT_EQ(host->tickets().requests().size(), 2u) << "no third ticket";
    EXPECT_EQ(host->tickets().comments(created).back().body, "And what followed");
    EXPECT_EQ(screen->requestId(), created);
}

// As above, but the next message goes before the help desk has answered, while the screen's saved
// copy is still being read: it waits for the ticket being created instead of making a second one.
TEST_F(ConversationScreenTest, ANewTicketShownAgainBeforeItsCreationAnswersTakesTheNextMessageAsAComment) {
    startANewTicketAndCoverIt();
    ASSERT_FALSE(screen->requestId().has_value()) << "the creation has not answered yet";

    typeAndSend("And what followed at once");
    ASSERT_TRUE(settled([&] { return statusOf("And what followed at once") == DeliveryStatus::lastDelivered; }));
    ASSERT_EQ(host->tickets().requests().size(), 2u) << "no third ticket";
    const auto created = host->tickets().requests().back().requestId;
    const auto comments = host->tickets().comments(created);
    ASSERT_EQ(comments.size(), 2u);
    EXPECT_EQ(comments[0].body, "The very first words");
    EXPECT_EQ(comments[1].body, "And what followed at once");
}

// The host opens the new ticket by its id, before its creation answers, over the screen that is
// creating it. Back on that screen, a message written before its saved copy is read still goes
// to the ticket, not to a second one.
TEST_F(ConversationScreenTest, ANewTicketOpenedByItsIdElsewhereTakesTheNextMessageBeforeItsFileIsRead) {
    open(std::nullopt);
    host->tickets().setLatency(platform::milliseconds(500));
    typeAndSend("The very first words");
    ASSERT_TRUE(settled([&] { return host->tickets().requests().size() == 1; }));
    const auto created = host->tickets().requests().back().requestId;
    auto byId = screenFor(created);
    byId->loadViewIfNeeded();
    queue_testing::pass(time, platform::seconds(2));
    ASSERT_EQ(state().remoteId, created) << "the screen shown takes the creation";
    byId.reset();

    host->tickets().setLatency(platform::Duration::zero());
    SlowDisk disk;
    typeAndSend("Written before the file was read");
    ASSERT_TRUE(settled([&] { return statusOf("Written before the file was read") == DeliveryStatus::lastDelivered; }));
    disk.open();
    EXPECT_EQ(host->tickets().requests().size(), 1u) << "a second ticket was made";
    EXPECT_EQ(host->tickets().comments(created).back().body, "Written before the file was read");
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    EXPECT_EQ(state().remoteId, created);
}

// As above, with a failed message kept only in the new conversation's file: the screen that
// took the ticket takes the conversation's key, shows that message and keeps it, and the ticket
// is mapped to that one key.
TEST_F(ConversationScreenTest, ATicketOpenedByItsIdElsewhereTakesTheKeyAndTheFailedMessagesOfTheConversationThatMadeIt) {
    open(std::nullopt);
    host->tickets().setOffline(true);
    typeAndSend("Typed in a tunnel");
    ASSERT_TRUE(settled([&] { return statusOf("Typed in a tunnel") == DeliveryStatus::failed; }));
    const auto key = state().localId.value();
    host->tickets().setOffline(false);
    host->tickets().setLatency(platform::milliseconds(500));
    typeAndSend("Out of the tunnel");
    ASSERT_TRUE(settled([&] { return host->tickets().requests().size() == 1; }));
    const auto created = host->tickets().requests().back().requestId;
    const auto cache = screen->ticketsCache();
    auto byId = screenFor(created);
    byId->loadViewIfNeeded();
    queue_testing::pass(time, platform::seconds(2));

    ASSERT_TRUE(settled([&] { return statusOf("Typed in a tunnel") == DeliveryStatus::failed; }))
        << "the failed message of the conversation did not join the ticket's screen";
    EXPECT_EQ(state().localId, key);
    EXPECT_EQ(LocalIDStore{}.remoteToLocal.at(created), key);
    std::optional<MessageList> kept;
    ASSERT_TRUE(settled([&] {
        kept = decodeMessageList(cache->read(key).value_or(""));
        return kept && kept->remoteRequestId == created && kept->messages.size() >= 2;
    }));
    const auto keptAs = [&](const std::string& body) {
        for (const auto& message : kept->messages)
            if (const auto* text = bodyOf(message); text && *text == body) return status(message);
        return std::optional<DeliveryStatus>();
    };
    EXPECT_EQ(keptAs("Typed in a tunnel"), DeliveryStatus::failed);
    EXPECT_TRUE(keptAs("Out of the tunnel").has_value());
}

TEST_F(ConversationScreenTest, ATicketOpenedByItsDeviceIdAfterItsRetryMadeItTalksToTheHelpDesksTicket) {
    open(std::nullopt);
    host->tickets().setOffline(true);
    typeAndSend("First try");
    ASSERT_TRUE(settled([&] { return statusOf("First try") == DeliveryStatus::failed; }));
    const auto localId = state().localId.value();  // the id its failed row in the list carries
    host->tickets().setOffline(false);
    ASSERT_TRUE(chooseOnRetrySheet(LocalizedKey::requestsCreateRequestFailedRetry));
    ASSERT_TRUE(settled([&] { return statusOf("First try") == DeliveryStatus::lastDelivered; }));
    const auto created = host->tickets().requests().back().requestId;
    close();

    open(localId);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    EXPECT_EQ(screen->requestId(), created);
    typeAndSend("Second words");
    ASSERT_TRUE(settled([&] { return statusOf("Second words") == DeliveryStatus::lastDelivered; }));
    EXPECT_EQ(host->tickets().comments(created).back().body, "Second words");
    EXPECT_EQ(host->tickets().requests().size(), 1u);
}

TEST_F(ConversationScreenTest, AnOversizedAttachmentShowsTheToastAndStaysOut) {
    open(std::nullopt, 1000);
    Actions::AttachmentAdded added;
    added.viewModel = std::make_shared<InputFileViewModel>("manual", 5000, nullptr, std::string(5000, 'm'), "big",
                                                           FileType::pdf, "pdf");
    store->dispatch(added);
    queue_testing::pass(time, platform::milliseconds(500));
    EXPECT_FALSE(find("CRVinputAttachment0"));
    EXPECT_TRUE(toastShows(localized(LocalizedKey::requestsCreateRequestAttachmentFileTooBig)));
}

TEST_F(ConversationScreenTest, AnOpenTicketComesFromTheDiskFirstAndAFailedFetchOffersRetry) {
    const auto id = ticketWithHistory(3);
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 4; }));
    const auto localId = state().localId.value();
    close();

    // Again, offline: the conversation shows from the disk, and the failed fetch offers a retry.
    host->tickets().setOffline(true);
    open(id);
    ASSERT_TRUE(settled([&] { return state().tableData.size() == 4; }));
    EXPECT_EQ(state().localId, localId);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    queue_testing::pass(time, platform::milliseconds(500));
    EXPECT_TRUE(toastShows(localized(LocalizedKey::requestsCommentListError)));

    host->tickets().setOffline(false);
    host->tickets().addAgentComment(id, agent, "Any luck?");
    auto* retry = find("CRVtoastRetryButton");
    ASSERT_TRUE(retry && uikit::tap(*retry));
    ASSERT_TRUE(settled([&] { return state().tableData.size() == 5; }));
}

TEST_F(ConversationScreenTest, TheNextConversationShowsOnlyItsOwnMessages) {
    const auto first = ticketWithHistory(2);
    open(first);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    host->tickets().setOffline(true);
    typeAndSend("Are you there?");
    ASSERT_TRUE(settled([&] { return statusOf("Are you there?") == DeliveryStatus::failed; }));
    std::weak_ptr<RequestController> gone = screen;
    close();
    queue_testing::pass(time, platform::seconds(1));
    EXPECT_TRUE(gone.expired()) << "the screen outlives its window";

    host->tickets().setOffline(false);
    const auto second = ticketWithHistory(1);
    open(second);
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    std::string shown;
    for (const auto& message : state().tableData) shown += id(message) + ":" + (bodyOf(message) ? *bodyOf(message) : "") + " | ";
    EXPECT_EQ(state().tableData.size(), 2u) << shown << " localId " << state().localId.value_or("-");
    EXPECT_FALSE(statusOf("Are you there?").has_value());
}

TEST_F(ConversationScreenTest, ASendDuringTheFirstLoadKeepsTheProgressBarUntilItsQueueIsDone) {
    const auto id = ticketWithHistory(1);
    host->tickets().setLatency(platform::seconds(2));
    open(id);
    // The disk answers on its own thread, in real time: the send goes while the fetch of the
    // comments is under way.
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return state().localId.has_value(); }));
    screen->sendButtonTapped("Quick question", {});
    const auto& progress = *screen->progressBar()->stateMachine();
    ASSERT_TRUE(settled([&] { return state().finishedLoading; }));
    EXPECT_NE(statusOf("Quick question"), DeliveryStatus::lastDelivered);
    EXPECT_TRUE(progress.state() == ProgressState::running || progress.state() == ProgressState::waiting)
        << toString(progress.state());
    ASSERT_TRUE(settled([&] { return statusOf("Quick question") == DeliveryStatus::lastDelivered; }));
    ASSERT_TRUE(settled([&] { return progress.state() == ProgressState::idle; }));
}

TEST_F(ConversationScreenTest, TheKeyboardKeepsAReaderAtTheEndAtTheEnd) {
    const auto id = ticketWithHistory(20);
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 21; }));
    const int last = table().numberOfRowsInSection(0) - 1;
    const auto lastRowShows = [&] {
        window->layoutTree();
        const auto rows = table().indexPathsForVisibleRows();
        return std::find(rows.begin(), rows.end(), uikit::IndexPath{0, last}) != rows.end() &&
               table().rectForRow({0, last}).maxY() <= table().contentOffset().y + table().frame().height() + 0.5;
    };
    ASSERT_TRUE(lastRowShows());
    const double before = table().frame().height();
    auto* field = find<uikit::TextInput>("CRVmessageBodyField");
    ASSERT_TRUE(field && field->becomeFirstResponder());
    window->showKeyboard(260);
    queue_testing::pass(time, platform::seconds(1));
    EXPECT_LT(table().frame().height(), before - 200);
    EXPECT_TRUE(lastRowShows());
}

TEST_F(ConversationScreenTest, AHelpCenterLinkInAnAgentsCommentOpensTheArticle) {
    const auto id = ticketWithHistory(1);
    host->tickets().addAgentComment(id, agent, "See our guide.",
                                    std::string("<p>See our <a href=\"https://belva.example.com/hc/en-us/articles/360001-installing-orbit-planner\">"
                                                "guide</a>.</p>"));
    open(id);
    ASSERT_TRUE(settled([&] { return state().finishedLoading && state().tableData.size() == 3; }));
    EXPECT_EQ(host->helpDesk->telemetry()->count("requestViewed"), 1u);

    window->layoutTree();
    const auto texts = uikit::findAll(root(), [](const uikit::View& view) {
        const auto* text = dynamic_cast<const MessageTextView*>(&view);
        return text && !text->links().empty() && uikit::isShown(view);
    });
    ASSERT_EQ(texts.size(), 1u);
    ASSERT_TRUE(uikit::tap(*texts.front()));
    queue_testing::pass(time, platform::seconds(1));
    ASSERT_EQ(navigation->viewControllers().size(), 2u);
    EXPECT_EQ(navigation->viewControllers().back()->className(), "CRVArticleViewController");
}

} // namespace
