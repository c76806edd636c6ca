#include "container_fixture.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/input_field_state.hpp"
#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_controller.hpp"
#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "belvakit/entry/request_ui.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/toolkit/progress_state_machine.hpp"
#include "uikit/probe.hpp"

#include <vector>

using namespace belvakit;
using container_testing::ContainerTest;
using container_testing::standIn;
using platform::LogLevel;

namespace {

class RequestContainerTest : public ContainerTest {
protected:
    // A container for the ticket with stand-ins for its children, which record what they were given.
    std::shared_ptr<RequestContainerController> container(std::optional<std::string> requestId = std::nullopt,
                                                          const mirrowset::ConfigurationList& configurations = {}) {
        auto made = requestId ? RequestUi::buildRequestUi(*requestId, configurations) : RequestUi::buildRequestUi(configurations);
        made->conversationScreenBuilder = [this](const ConversationScreenInput& input, RequestContainerController&) {
            conversations.push_back(input);
            return standIn("conversation");
        };
        made->createRequestScreenBuilder = [this](const CreateRequestScreenInput& input, RequestContainerController&) {
            forms.push_back(input);
            auto form = standIn("form");
            form->navigationItem().rightBarButtonItem = std::make_shared<uikit::BarButtonItem>();
            form->navigationItem().rightBarButtonItem->accessibilityIdentifier = "CRVsendButton";
            return form;
        };
        return made;
    }

    std::string shownChild(const RequestContainerController& screen) const {
        const auto& child = screen.activeController();
        if (!child) return "none";
        if (dynamic_cast<const RequestLoadingController*>(child.get())) return "loading";
        return child->view()->accessibilityIdentifier();
    }

    std::vector<ConversationScreenInput> conversations;
    std::vector<CreateRequestScreenInput> forms;
};

struct ScreenCase {
    const char* name;
    bool conversationsEnabled;
    bool neverRequestEmail;
    std::shared_ptr<corvane::Identity> identity;
    std::optional<std::string> requestId;
    // What the container ends up showing: a child, or "popped".
    std::string shown;
    bool requiresName = false;
    bool requiresEmail = false;
    LogLevel level;
    std::string log;
};

TEST_F(RequestContainerTest, PicksTheScreenFromSettingsAndIdentityWithItsLogLine) {
    const std::string withName = "Conversations disabled, showing no conversations screen with Name: ";
    const std::vector<ScreenCase> cases = {
        {"no identity wins over conversations", true, false, nullptr, std::nullopt, "popped", false, false,
         LogLevel::error, "No identity set. Dismissing Request creation"},
        {"conversations on", true, true, corvane::Identity::createAnonymous(), "12", "conversation", false, false,
         LogLevel::verbose, "Conversations enable, presnting Conversations Screen"},
        {"conversations off with a ticket", false, false, corvane::Identity::createAnonymous("Ann", "ann@example.com"),
         "12", "popped", false, false, LogLevel::error, "Conversations are disabled. Dismissing Request creation"},
        {"never request email, email known", false, true, corvane::Identity::createAnonymous(std::nullopt, "a@b.co"),
         std::nullopt, "form", true, false, LogLevel::verbose, withName + "true and Email: false"},
        {"never request email, no email", false, true, corvane::Identity::createAnonymous("Ann"), std::nullopt, "popped",
         false, false, LogLevel::error,
         "Conversations are disabled, never request email is enabled. With this configuration created tickets are "
         "unreachable by the user. Dismissing Request creation"},
        {"a JWT requires nothing", false, true, corvane::Identity::createJwt("token"), std::nullopt, "form", false,
         false, LogLevel::verbose, withName + "false and Email: false"},
        {"an empty name and email count as absent", false, false, corvane::Identity::createAnonymous("", ""),
         std::nullopt, "form", true, true, LogLevel::verbose, withName + "true and Email: true"},
    };
    for (const auto& screenCase : cases) {
        SCOPED_TRACE(screenCase.name);
        startCore(screenCase.identity);
        desk->settings()->setConversationsEnabled(screenCase.conversationsEnabled);
        desk->settings()->setNeverRequestEmail(screenCase.neverRequestEmail);
        log.clear();
        forms.clear();
        auto screen = container(screenCase.requestId);
        EXPECT_EQ(shownChild(*screen), "loading");
        push(screen);
        EXPECT_TRUE(logged(screenCase.level, screenCase.log));
        if (screenCase.shown == "popped") {
            EXPECT_EQ(navigation->topViewController(), root.get());
            EXPECT_EQ(screen->state.requestScreenType, RequestScreenType::end());
            continue;
        }
        EXPECT_EQ(navigation->topViewController(), screen.get());
        EXPECT_EQ(shownChild(*screen), screenCase.shown);
        if (screenCase.shown == "form") {
            ASSERT_EQ(forms.size(), 1u);
            EXPECT_EQ(forms[0].requiresName, screenCase.requiresName);
            EXPECT_EQ(forms[0].requiresEmail, screenCase.requiresEmail);
            // The form's send button moved to the container's bar.
            ASSERT_TRUE(screen->navigationItem().rightBarButtonItem);
            EXPECT_EQ(screen->navigationItem().rightBarButtonItem->accessibilityIdentifier, "CRVsendButton");
            EXPECT_EQ(screen->navigationItem().largeTitleDisplayMode, 2);
        }
        navigation->popToRootViewController(false);
        run(0.5);
    }
}

TEST_F(RequestContainerTest, AnEmptyIdOpensANewTicketAndAnIdThatNamesNoConversationLeaves) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto fresh = container("");
    push(fresh);
    ASSERT_EQ(conversations.size(), 1u);
    EXPECT_EQ(conversations[0].requestId, std::nullopt);
    navigation->popToRootViewController(false);
    run(0.5);

    // Its messages could be kept nowhere on the device: the screen goes rather than lose them.
    for (const std::string id : {"../Tickets", ".", "12/13"}) {
        SCOPED_TRACE(id);
        auto screen = container(id);
        push(screen);
        EXPECT_EQ(navigation->topViewController(), root.get());
        EXPECT_TRUE(logged(LogLevel::error, "Not a request id: " + id + ". Dismissing Request creation"));
    }
    EXPECT_EQ(conversations.size(), 1u);
}

TEST_F(RequestContainerTest, HandsTheChildrenTheSettingsConfigurationAndSharedViews) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    desk->settings()->setAttachments(true, 1234);
    auto configuration = std::make_shared<RequestUiConfiguration>();
    configuration->subject = "From the app";
    auto screen = container("77", {configuration});
    push(screen);
    ASSERT_EQ(conversations.size(), 1u);
    const auto& input = conversations[0];
    EXPECT_EQ(input.requestId, "77");
    EXPECT_EQ(input.configuration, configuration);
    EXPECT_TRUE(input.attachmentsEnabled);
    EXPECT_EQ(input.maxAttachmentSize, 1234);
    EXPECT_EQ(input.progressBar, screen->progressBar);
    EXPECT_EQ(input.toastWrapper, screen->toastWrapper);
    ASSERT_TRUE(input.ticketsCache);
    EXPECT_EQ(input.ticketsCache, screen->ticketsCache);

    // The conversation table's settings went out with the container's.
    const auto* table = sharedStore()->state().valueOfType<RequestTableState>();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->maxAttachmentSize, 1234);
}

TEST_F(RequestContainerTest, FailedChildrenAreLoggedAndTheLoadingScreenStays) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = RequestUi::buildRequestUi();
    screen->conversationScreenBuilder = [](const ConversationScreenInput&, RequestContainerController&) { return nullptr; };
    push(screen);
    EXPECT_TRUE(logged(LogLevel::error, "Failed to create conversations controller"));
    EXPECT_EQ(shownChild(*screen), "loading");

    desk->settings()->setConversationsEnabled(false);
    screen->createRequestScreenBuilder = nullptr;
    push(std::make_shared<uikit::ViewController>());
    navigation->popViewController(false);
    run(0.1);
    EXPECT_TRUE(logged(LogLevel::error, "Failed to start create request controller"));
}

TEST_F(RequestContainerTest, AClosedTicketIsClosedInTheConversationFromItsStart) {
    const auto core = startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    const auto openedOn = [&](bool ticketClosed) {
        auto screen = RequestContainerController::make("12", {}, core->storeModule(), nullptr, ticketClosed);
        push(screen);
        run(0.5);
        auto conversation = std::dynamic_pointer_cast<RequestController>(screen->activeController());
        EXPECT_NE(conversation, nullptr);
        if (conversation) {
            EXPECT_EQ(conversation->ticketClosed, ticketClosed);
        }
        const auto* input = sharedStore()->state().valueOfType<InputFieldState>();
        const auto* table = sharedStore()->state().valueOfType<RequestTableState>();
        EXPECT_TRUE(input && table);
        const bool closed = input && table && input->ticketClosed && table->ticketClosed;
        navigation->popViewController(false);
        run(0.1);
        return closed;
    };
    EXPECT_TRUE(openedOn(true));
    EXPECT_FALSE(openedOn(false));
}

TEST_F(RequestContainerTest, AConversationWithoutItsConfigurationSaysSoAndIsNotMade) {
    const auto core = startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = RequestContainerController::make("12", {}, core->storeModule());
    ConversationScreenInput bare;
    bare.requestId = "12";
    EXPECT_EQ(RequestContainerController::defaultConversationScreenBuilder()(bare, *screen), nullptr);
    EXPECT_TRUE(logged(LogLevel::debug, "No configuration found, please use RequestUi to present"));
}

TEST_F(RequestContainerTest, EveryAppearanceFetchesSettingsButOnlyAChangeRedraws) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = container();
    push(screen);
    ASSERT_EQ(shownChild(*screen), "conversation");
    const auto firstChild = screen->activeController();
    EXPECT_EQ(desk->settings()->requestCount(), 1u);

    auto other = std::make_shared<uikit::ViewController>();
    push(other);
    navigation->popViewController(false);
    run(0.1);
    EXPECT_EQ(desk->settings()->requestCount(), 2u);
    EXPECT_EQ(conversations.size(), 1u) << "equal settings must not rebuild the conversation";
    EXPECT_EQ(screen->activeController(), firstChild);

    desk->settings()->setSystemMessage("We answer within a day");
    push(other);
    navigation->popViewController(false);
    run(0.1);
    EXPECT_EQ(desk->settings()->requestCount(), 3u);
    EXPECT_EQ(conversations.size(), 2u);
    EXPECT_EQ(screen->childViewControllers().size(), 1u);
}

TEST_F(RequestContainerTest, AFailedSettingsFetchKeepsLoadingAndOffersARetry) {
    startCore(corvane::Identity::createJwt("token"));
    desk->settings()->setFailing(true);
    auto screen = container();
    push(screen);
    EXPECT_EQ(shownChild(*screen), "loading");
    auto* retry = uikit::findByIdentifier(*screen->view(), "CRVtoastRetryButton");
    ASSERT_NE(retry, nullptr);
    run(3);
    EXPECT_EQ(screen->progressBar->stateMachine()->state(), ProgressState::idle) << "the bar ends with the fetch";

    desk->settings()->setFailing(false);
    desk->settings()->setLatency(platform::seconds(2));
    EXPECT_TRUE(uikit::tap(*retry));
    run(0.5);
    EXPECT_EQ(screen->progressBar->stateMachine()->state(), ProgressState::running);
    run(2);
    EXPECT_EQ(shownChild(*screen), "conversation");
}

TEST_F(RequestContainerTest, TheLoadingScreenRunsTheProgressBarBelowTheBar) {
    startCore(corvane::Identity::createJwt("token"));
    desk->settings()->setLatency(platform::seconds(5));
    auto screen = container();
    push(screen);
    ASSERT_EQ(shownChild(*screen), "loading");
    const auto& bar = screen->progressBar;
    EXPECT_EQ(bar->superview(), screen->activeController()->view().get());
    EXPECT_EQ(bar->frame().minY(), 64);
    EXPECT_EQ(bar->frame().width(), 375);
    EXPECT_NE(bar->stateMachine()->state(), ProgressState::idle);
    run(6);
    EXPECT_EQ(shownChild(*screen), "conversation");
}

TEST_F(RequestContainerTest, A401ResetsTheTicketSlicesKeepsTheListAndLeaves) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = container();
    push(screen);
    ASSERT_EQ(shownChild(*screen), "conversation");

    const auto store = sharedStore();
    CreateRequestActions::Edited edited;
    edited.hasEdits = true;
    store->dispatch(edited);
    Actions::NewMessage message;
    message.message = UserMessage{.id = "pending"};
    store->dispatch(message);
    RequestListState list;
    list.referrerUrl = "https://example.com/kept";
    store->reset(list);

    desk->tickets()->setUnauthorized(true);
    desk->tickets()->getAllRequests([](auto, auto) {});
    run(0.5);

    EXPECT_TRUE(logged(LogLevel::warn, "401 received, clearing storage and dismissing Corvane UI"));
    EXPECT_EQ(navigation->topViewController(), root.get());
    EXPECT_EQ(*store->state().valueOfType<CreateRequestState>(), initialCreateRequestState());
    EXPECT_TRUE(store->state().valueOfType<RequestTableState>()->tableData.empty());
    EXPECT_EQ(*store->state().valueOfType<RequestContainerState>(), RequestContainerState{});
    EXPECT_EQ(store->state().valueOfType<RequestListState>()->referrerUrl, "https://example.com/kept");
}

TEST_F(RequestContainerTest, AContainerKeepsItsTicketWhileAnotherStartsAndWhenItShowsAgain) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    for (const char* description : {"First ticket", "Second ticket"})
        desk->tickets()->createRequest({.requestDescription = description}, [](auto, auto) {});
    run(0.5);
    const auto tickets = desk->tickets()->requests();
    ASSERT_EQ(tickets.size(), 2u);
    const auto ticketOf = [](const RequestContainerController& screen) -> std::optional<std::string> {
        const auto* conversation = dynamic_cast<const RequestController*>(screen.activeController().get());
        return conversation ? conversation->requestId() : std::nullopt;
    };

    auto first = RequestUi::buildRequestUi(tickets[0].requestId);
    push(first);
    run(1);
    ASSERT_EQ(ticketOf(*first), tickets[0].requestId);
    const auto* shownFirst = first->activeController().get();

    // The other ticket starts out of sight, as a host's push handler may start it, then on top.
    auto hidden = RequestUi::buildRequestUi(tickets[1].requestId);
    run(1);
    EXPECT_EQ(first->activeController().get(), shownFirst) << "the container on show is not rebuilt for another ticket";
    hidden.reset();
    auto second = RequestUi::buildRequestUi(tickets[1].requestId);
    push(second);
    run(1);
    ASSERT_EQ(ticketOf(*second), tickets[1].requestId);
    EXPECT_EQ(first->activeController().get(), shownFirst);

    navigation->popViewController(false);
    run(1);
    EXPECT_EQ(first->activeController().get(), shownFirst);
    EXPECT_EQ(ticketOf(*first), tickets[0].requestId);
    EXPECT_EQ(first->state.requestId, tickets[0].requestId);
    EXPECT_EQ(sharedStore()->state().valueOfType<RequestContainerState>()->requestId, tickets[0].requestId);
}

TEST_F(RequestContainerTest, AMessageThatA401FailsIsKeptOnTheDeviceAsFailed) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = RequestUi::buildRequestUi();
    push(screen);
    run(0.5);
    auto* conversation = dynamic_cast<RequestController*>(screen->activeController().get());
    ASSERT_TRUE(conversation);
    desk->tickets()->setLatency(platform::milliseconds(500));
    desk->tickets()->setUnauthorized(true);
    conversation->sendButtonTapped("Sent as the session ended", {});
    const auto sent = id(sharedStore()->state().valueOfType<RequestTableState>()->tableData.front());
    const auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
    run(2);
    EXPECT_TRUE(logged(LogLevel::warn, "401 received, clearing storage and dismissing Corvane UI"));
    EXPECT_EQ(navigation->topViewController(), root.get());

    std::optional<MessageList> kept;
    testing_support::pumpMainQueueUntil([&] { return (kept = decodeMessageList(cache->read(sent).value_or(""))).has_value(); },
                                        platform::seconds(2));
    ASSERT_TRUE(kept) << "the message is kept nowhere";
    ASSERT_EQ(kept->messages.size(), 1u);
    EXPECT_EQ(status(kept->messages[0]), DeliveryStatus::failed);
}

TEST_F(RequestContainerTest, APresentedContainerThatEndsIsDismissed) {
    startCore(nullptr);
    auto screen = container();
    root->presentViewController(std::make_shared<uikit::NavigationController>(screen), false);
    run(0.5);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_TRUE(logged(LogLevel::error, "No identity set. Dismissing Request creation"));
}

TEST_F(RequestContainerTest, TheTitleShowsTheConversationsAgentsLatestFirst) {
    startCore(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
    auto screen = container("5");
    push(screen);
    ASSERT_EQ(shownChild(*screen), "conversation");
    EXPECT_EQ(screen->navigationItem().titleView, nullptr);
    EXPECT_EQ(screen->navigationItem().title, "Contact us");

    const auto store = sharedStore();
    for (const auto& [id, user, name] : std::vector<std::tuple<std::string, std::int64_t, std::string>>{
             {"a1", 7, "Grace"}, {"a2", 8, "Linus"}, {"a3", 7, "Grace"}}) {
        Actions::NewMessage agent;
        agent.message = AgentMessage{.id = id, .body = "Hi", .userID = user, .name = name};
        store->dispatch(agent);
    }
    run(0.5);
    auto* title = dynamic_cast<AvatarTitleView*>(screen->navigationItem().titleView.get());
    ASSERT_NE(title, nullptr);
    ASSERT_EQ(title->agents().size(), 2u);
    EXPECT_EQ(title->agents()[0].agentName, "Grace");
    EXPECT_EQ(title->agents()[1].agentName, "Linus");
}

TEST_F(RequestContainerTest, TheFormRaisesATicketUpdatesTheIdentityAndTheContainerLeaves) {
    startCore(corvane::Identity::createAnonymous());
    desk->settings()->setConversationsEnabled(false);
    auto screen = RequestUi::buildRequestUi();
    push(screen);
    auto form = std::dynamic_pointer_cast<CreateRequestController>(screen->activeController());
    ASSERT_NE(form, nullptr);
    ASSERT_TRUE(form->nameField());
    ASSERT_TRUE(form->emailField());
    const auto send = screen->navigationItem().rightBarButtonItem;
    ASSERT_TRUE(send) << "the form's send button sits on the container's bar";
    EXPECT_EQ(send, form->sendButtonItem());
    EXPECT_FALSE(send->enabled);

    uikit::typeText(*form->nameField()->input(), "Ada");
    uikit::typeText(*form->emailField()->input(), "ada@example.com");
    uikit::typeText(*form->descriptionTextview()->input(), "The printer is on fire");
    run(0.1);
    EXPECT_TRUE(send->enabled) << "the form enables the button where it shows";
    send->action();
    // The form's messages are made off the main thread.
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return desk->tickets()->requests().size() == 1; }));
    run(1);
    EXPECT_EQ(desk->tickets()->requests()[0].requestDescription, "The printer is on fire");
    const auto* identity = dynamic_cast<const corvane::Anonymous*>(corvane::Corvane::instance()->identity().get());
    ASSERT_NE(identity, nullptr);
    EXPECT_EQ(identity->name(), "Ada");
    EXPECT_EQ(identity->email(), "ada@example.com");

    run(3);
    EXPECT_EQ(navigation->topViewController(), root.get()) << "the form hands over and the container leaves";
}

TEST_F(RequestContainerTest, TheWayOutAsksBeforeDroppingWhatTheFormHolds) {
    startCore(corvane::Identity::createJwt("token"));
    desk->settings()->setConversationsEnabled(false);
    auto screen = RequestUi::buildRequestUi();
    push(screen);
    auto form = std::dynamic_pointer_cast<CreateRequestController>(screen->activeController());
    ASSERT_NE(form, nullptr);
    ASSERT_TRUE(screen->discardEditsController);
    uikit::typeText(*form->descriptionTextview()->input(), "Half a thought");
    run(0.1);
    const auto back = screen->navigationItem().leftBarButtonItem;
    ASSERT_TRUE(back);
    back->action();
    run(0.5);
    EXPECT_NE(screen->presentedViewController(), nullptr) << "unsent edits bring the question";
    EXPECT_EQ(navigation->topViewController(), screen.get());
}

} // namespace
