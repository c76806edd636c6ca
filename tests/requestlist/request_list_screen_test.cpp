#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_table_view_cell.hpp"
#include "belvakit/Request/requestlist/request_list_view_controller.hpp"
#include "belvakit/engine/support_engine.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "belvakit/entry/request_ui.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "dastrel/dispatcher_notifications.hpp"
#include "list_fixture.hpp"
#include "platform/image_codec.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace belvakit;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// A ticket screen that remembers which ticket it was made for.
class TicketScreen final : public uikit::ViewController {
public:
    explicit TicketScreen(std::optional<std::string> id) : requestId(std::move(id)) {}
    std::optional<std::string> requestId;
};

class ListScreen final : public RequestListViewController {
public:
    using RequestListViewController::RequestListViewController;
    uikit::ViewController::Ptr makeRequestScreen(const std::optional<std::string>& requestId) override {
        return std::make_shared<TicketScreen>(requestId);
    }
};

std::string text(std::string_view key) { return localized(key); }

// Counts the ends of the list's loading passes as the shared store sees them: the pass over the
// kept rows, and the one that asks the help desk.
class PassWatcher {
public:
    PassWatcher()
        : subscription_(sharedStore()->addActionListener([this](const tivra::Action& action) {
              if (const auto* rows = tivra::actionAs<Actions::RequestsWithAvatarsFetched>(action))
                  ++(rows->requestListStateType == RequestListStateType::LoadedFromCache ? cached : network);
              // A 401 fails twice; the second failure ends the pass.
              if (tivra::actionAs<Actions::RequestsFetchedFailed>(action)) ++network;
          })) {}
    ~PassWatcher() { subscription_.removeListener(); }
    int cached = 0;
    int network = 0;

private:
    tivra::ActionSubscription subscription_;
};

class RequestListScreenTest : public list_testing::ListTest {
protected:
    void SetUp() override {
        ListTest::SetUp();
        // The desk answers only as virtual time moves, so a visit's kept rows come first, as on a device.
        host_.tickets().setLatency(platform::milliseconds(100));
        window_->makeKeyAndVisible();
    }
    void TearDown() override {
        window_->setRootViewController(nullptr);
        queue_testing::pass(time_, platform::seconds(1));
        ListTest::TearDown();
    }

    static std::shared_ptr<ListScreen> makeList() {
        return std::make_shared<ListScreen>(mirrowset::Configurations{}, ConcreteCache::named(ConcreteCache::ticketsDirectory));
    }

    // The list pushed over a home screen, as a host shows it.
    void show(const std::shared_ptr<RequestListViewController>& list) {
        navigation_ = std::make_shared<uikit::NavigationController>(home_);
        window_->setRootViewController(navigation_);
        navigation_->pushViewController(list, false);
        window_->layoutTree();
    }
    // A visit: a screen new on view loads as its view loads and again as it appears; each load
    // ends with a pass over the kept rows and one that asks the desk, or fails for want of settings.
    void visit(const std::shared_ptr<RequestListViewController>& list) {
        const Passes before = passes();
        show(list);
        awaitVisit(before);
    }
    struct Passes {
        int cached;
        int network;
    };
    Passes passes() const { return {passes_.cached, passes_.network}; }
    // The kept rows need no time to pass, only the threads of the cache: waiting for them leaves
    // the desk's answers and the toasts' timers where they were.
    void awaitVisit(Passes before, int loads = 2) {
        ASSERT_TRUE(keptRowsCame(before.cached, loads));
        ASSERT_TRUE(settled([&] { return passes_.network >= before.network + loads; }));
        window_->layoutTree();
    }
    bool keptRowsCame(int before, int passes = 1) {
        return platform::MainQueue::shared().runUntil([&] { return passes_.cached >= before + passes; },
                                                      platform::seconds(10));
    }
    void pull() {
        const int network = passes_.network;
        list_->refreshController->userDidPull();
        ASSERT_TRUE(settled([&] { return passes_.network > network; }));
        window_->layoutTree();
    }

    // Each row as "names | subject | last comment", with [unread], [avatar] or [letter] after it.
    std::vector<std::string> rows() {
        window_->layoutTree();
        std::vector<std::string> drawn;
        const int count = list_->requestListTableView->numberOfRowsInSection(0);
        for (int row = 0; row < count; ++row) {
            list_->requestListTableView->scrollToRow({0, row}, uikit::TableViewScrollPosition::none, false);
            auto* cell = dynamic_cast<RequestListTableViewCell*>(list_->requestListTableView->cellForRow({0, row}).get());
            if (!cell) {
                drawn.push_back("?");
                continue;
            }
            std::string line = cell->agentNamesTitle->text() + " | " + cell->requestSubjectLabel->text() + " | " +
                               (cell->lastCommentLabel->isHidden() ? "-" : cell->lastCommentLabel->text());
            if (!cell->unreadIndicator->isHidden()) line += " [unread]";
            if (!cell->agentAvatarView->isHidden())
                line += cell->agentAvatarView->showsPlaceholder() ? " [placeholder]" : " [avatar]";
            if (!cell->letterAvatarView->isHidden()) line += " [letter " + cell->letterAvatarView->letterLabel()->text() + "]";
            drawn.push_back(line);
        }
        return drawn;
    }
    RequestListTableViewCell* cell(int row) {
        window_->layoutTree();
        return dynamic_cast<RequestListTableViewCell*>(list_->requestListTableView->cellForRow({0, row}).get());
    }
    std::vector<std::string> shownTexts() {
        window_->layoutTree();
        return uikit::visibleTexts(*window_);
    }
    bool showsText(const std::string& wanted) {
        const auto texts = shownTexts();
        return std::find(texts.begin(), texts.end(), wanted) != texts.end();
    }

    sandbox::SettingsDesk& settings_ = *host_.helpDesk->settings();
    std::shared_ptr<uikit::Window> window_ = std::make_shared<uikit::Window>();
    std::shared_ptr<uikit::ViewController> home_ = std::make_shared<uikit::ViewController>();
    std::shared_ptr<uikit::NavigationController> navigation_;
    std::shared_ptr<ListScreen> list_ = makeList();
    PassWatcher passes_;
};

} // namespace

TEST_F(RequestListScreenTest, LoadsFromTheDeskThroughTheLoadingStateToRowsWithAvatarsUnreadAndClosedMarks) {
    const auto answered = createTicket("Broken zip");
    const auto closed = createTicket("Refund please");
    const auto fresh = createTicket("Late order");
    const auto ada = host_.tickets().addAgent("Ada", "https://belva.example.com/avatars/ada.png");
    host_.helpDesk->attachments()->serve(*ada.avatarURL, *platform::encodePNG(*platform::makeImage(4, 4)));
    const auto bob = host_.tickets().addAgent("bob");
    host_.tickets().addAgentComment(closed, bob.userId, "Done, closing");
    host_.tickets().setStatus(closed, "closed");
    clock_.clock->advance(60);
    host_.tickets().addAgentComment(answered, ada.userId, "We are on it");
    (void)fresh;

    const Passes before = passes();
    show(list_);
    // Loading: a spinner, neither the empty view nor a row yet; the send strip stays away.
    EXPECT_TRUE(list_->isLoading());
    EXPECT_TRUE(uikit::isShown(*list_->loadingSpinner));
    EXPECT_TRUE(list_->loadingSpinner->isAnimating());
    EXPECT_TRUE(list_->progressBar->isHidden());
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));
    EXPECT_EQ(navigation_->navigationBar()->titleLabel()->text(), text(LocalizedKey::requestsRequestListTitle));
    ASSERT_NE(uikit::findByIdentifier(*window_, "CRVcomposeButton"), nullptr);
    // Nothing was kept yet: still loading after the kept rows' pass.
    ASSERT_TRUE(keptRowsCame(before.cached));
    EXPECT_TRUE(list_->loadingSpinner->isAnimating());
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));

    awaitVisit(before);
    EXPECT_FALSE(list_->loadingSpinner->isAnimating());
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));
    EXPECT_TRUE(uikit::isShown(*list_->requestListTableView));
    EXPECT_EQ(list_->progressBar->stateMachine()->state(), ProgressState::idle);
    EXPECT_TRUE(list_->progressBar->isHidden()) << "a strip over a loaded list";
    // Newest change first; an agent's picture, an agent without one, and the user alone.
    // A closed ticket says so before its latest comment; every row's time is its display timestamp.
    EXPECT_THAT(rows(), ElementsAre("Ada, Me | Broken zip | We are on it [unread] [avatar]",
                                    "bob, Me | Refund please | " + text(LocalizedKey::requestsRequestListCellClosed) +
                                        " \u00B7 Done, closing [unread] [letter B]",
                                    "Me | Late order | -"));
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(cell(row)->updatedAtTimestamp->text(), slice().requests[static_cast<std::size_t>(row)].displayTimestamp);
    EXPECT_FALSE(slice().requests[1].displayTimestamp.empty());
    const Passes beforeSecond = passes();
    EXPECT_EQ(cell(0)->unreadIndicator->accessibilityLabel(), text(LocalizedKey::requestsRequestListUnreadAccessibility));
    // The texts start after an avatar, and at the margin without one.
    EXPECT_GT(cell(0)->requestSubjectLabel->frame().minX(), cell(0)->agentAvatarView->frame().maxX());
    EXPECT_EQ(cell(2)->requestSubjectLabel->frame().minX(), RequestListTableViewCell::margin);

    // A new screen draws the rows the slice holds at once, with no spinner, until its own loads come.
    navigation_->popViewController(false);
    list_ = makeList();
    show(list_);
    EXPECT_EQ(list_->requestListTableView->numberOfRowsInSection(0), 3);
    EXPECT_FALSE(list_->loadingSpinner->isAnimating());
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));
    awaitVisit(beforeSecond);

    // A ticket whose sending failed comes first, marked.
    Actions::RequestCreationOrUpdateError failed;
    failed.id = "local-1";
    failed.requestDescription = "Typed offline";
    failed.createdAtDate = platform::now();
    sharedStore()->dispatch(failed);
    EXPECT_EQ(rows().front(), "Me | Typed offline | " + text(LocalizedKey::requestsRequestListCellFailed));
}

TEST_F(RequestListScreenTest, AnEmptyAccountShowsTheEmptyViewWhoseButtonAndComposeOfferANewTicket) {
    settings_.setReferrer(true, "https://belva.example.com/ref");
    visit(list_);
    EXPECT_TRUE(uikit::isShown(*list_->inboxView));
    EXPECT_FALSE(uikit::isShown(*list_->requestListTableView));
    EXPECT_TRUE(uikit::isShown(*list_->inboxImageView));
    EXPECT_TRUE(showsText(text(LocalizedKey::requestsRequestListEmptySubtitle)));
    EXPECT_TRUE(showsText(text(LocalizedKey::requestsRequestListEmptyButton)));
    EXPECT_TRUE(uikit::isShown(*list_->corvaneLogoButton));
    EXPECT_EQ(list_->corvaneLogoButton->referrerUrl, "https://belva.example.com/ref");
    // The empty view's parts stay inside it, one under the other.
    const auto& empty = list_->inboxView->bounds();
    EXPECT_LT(list_->inboxImageView->frame().maxY(), list_->conversationsLabel->frame().minY());
    EXPECT_LT(list_->conversationsLabel->frame().maxY(), list_->createATicketButton->frame().minY());
    EXPECT_LE(list_->createATicketButton->frame().maxY(), empty.maxY());

    ASSERT_TRUE(uikit::tap(*list_->createATicketButton));
    auto presented = std::dynamic_pointer_cast<uikit::NavigationController>(list_->presentedViewController());
    ASSERT_TRUE(presented);
    auto* creation = dynamic_cast<TicketScreen*>(presented->topViewController());
    ASSERT_NE(creation, nullptr);
    EXPECT_EQ(creation->requestId, std::nullopt);
    list_->dismissViewController(false);

    auto* compose = uikit::findByIdentifier(*window_, "CRVcomposeButton");
    ASSERT_NE(compose, nullptr);
    ASSERT_TRUE(uikit::tap(*compose));
    presented = std::dynamic_pointer_cast<uikit::NavigationController>(list_->presentedViewController());
    ASSERT_TRUE(presented);
    EXPECT_NE(dynamic_cast<TicketScreen*>(presented->topViewController()), nullptr);
}

TEST_F(RequestListScreenTest, AFailedFetchShowsTheErrorToastKeepsTheRowsAndWithoutRowsOffersANewTicket) {
    const auto error = text(LocalizedKey::requestsRequestListError);
    // Both loads of the visit fail.
    host_.tickets().failNext(2);
    visit(list_);
    EXPECT_EQ(list_->state.stateType, RequestListStateType::ErroredFromNetwork);
    // Nothing was ever fetched: the toast says the list could not be loaded; the empty view
    // keeps its own words and its button.
    EXPECT_TRUE(uikit::isShown(*list_->inboxView));
    EXPECT_EQ(list_->conversationsLabel->text(), text(LocalizedKey::requestsRequestListEmptySubtitle));
    EXPECT_TRUE(showsText(text(LocalizedKey::requestsRequestListEmptyButton)));
    EXPECT_TRUE(list_->toastWrapper->isShowingError);
    const auto texts = shownTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), error), 1);
    EXPECT_TRUE(list_->progressBar->isHidden());
    queue_testing::pass(time_, platform::seconds(4));
    EXPECT_FALSE(list_->toastWrapper->isShowingError);

    createTicket("Broken zip");
    pull();
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip")));

    host_.tickets().failNext(1);
    pull();
    EXPECT_EQ(list_->state.stateType, RequestListStateType::ErroredFromNetwork);
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip")));
    EXPECT_FALSE(list_->refreshController->isRefreshing());
    EXPECT_TRUE(list_->toastWrapper->isShowingError);
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));
    // The toast makes room above the rows.
    EXPECT_GE(list_->requestListTableView->frame().minY(), list_->toastWrapper->contentHeight);
    EXPECT_GT(list_->toastWrapper->contentHeight, 0);
}

TEST_F(RequestListScreenTest, OfflineTheCachedRowsShowUnderBothToastsAndKeepClearOfTheSides) {
    createTicket("Broken zip");
    createTicket("Late order");
    visit(list_);
    navigation_->popViewController(false);

    host_.tickets().setOffline(true);
    // The account's settings can't be had offline either.
    settings_.setFailing(true);
    list_ = makeList();
    visit(list_);
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Late order"), HasSubstr("Broken zip")));
    EXPECT_FALSE(list_->isLoading());
    EXPECT_FALSE(uikit::isShown(*list_->inboxView));
    // The connectivity toast says why, the error toast what failed: one under the other.
    EXPECT_TRUE(showsText(text(LocalizedKey::requestsConnectionError)));
    EXPECT_TRUE(showsText(text(LocalizedKey::requestsRequestListError)));
    EXPECT_TRUE(list_->toastWrapper->isShowingError);
    ASSERT_TRUE(list_->toastView);
    const auto connectivity = list_->toastView->toast()->convert(list_->toastView->toast()->bounds(), nullptr);
    const auto error = list_->toastWrapper->convert(list_->toastWrapper->bounds(), nullptr);
    EXPECT_GT(connectivity.height(), 0);
    EXPECT_GT(error.height(), 0);
    EXPECT_GE(error.minY(), connectivity.maxY());
    EXPECT_GE(list_->requestListTableView->frame().minY(), list_->toastWrapper->contentHeight);
    queue_testing::pass(time_, platform::seconds(4));
    EXPECT_FALSE(list_->toastWrapper->isShowingError);
    window_->layoutTree();
    EXPECT_EQ(list_->requestListTableView->frame().minY(), 0);

    // Sideways, the rows keep clear of the notch and the rounded corners.
    window_->setEnvironment(uikit::Environment::phoneLandscape());
    window_->layoutTree();
    const auto safe = uikit::Environment::phoneLandscape().safeAreaInsets;
    const auto table = list_->requestListTableView->convert(list_->requestListTableView->bounds(), nullptr);
    EXPECT_EQ(table.minX(), safe.left);
    EXPECT_EQ(table.maxX(), uikit::Environment::phoneLandscape().size.width - safe.right);
}

TEST_F(RequestListScreenTest, PullAndTheOutsideRefreshActionFetchAgainWhileTheListIsOnView) {
    createTicket("Broken zip");
    visit(list_);
    const double restingTop = list_->requestListTableView->frame().minY();

    createTicket("Late order");
    list_->refreshController->userDidPull();
    window_->layoutTree();
    // The strip with its spinner opens above the rows until the answer comes.
    EXPECT_TRUE(uikit::isShown(*list_->refreshController));
    EXPECT_TRUE(list_->refreshController->spinner()->isAnimating());
    EXPECT_EQ(list_->requestListTableView->frame().minY(), restingTop + RefreshControl::height);
    const int network = passes_.network;
    ASSERT_TRUE(settled([&] { return passes_.network > network; }));
    window_->layoutTree();
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Late order"), HasSubstr("Broken zip")));
    EXPECT_FALSE(uikit::isShown(*list_->refreshController));
    EXPECT_EQ(list_->requestListTableView->frame().minY(), restingTop);

    auto& registry = host_.core->actionHandlerRegistry();
    const auto handler = registry.handler(RequestListRefreshActionHandler::defaultActionName);
    ASSERT_TRUE(handler);
    EXPECT_FALSE(registry.handler("Request_List_Refresh_"));
    createTicket("Wrong size");
    const int beforeAction = passes_.network;
    handler->handle({});
    ASSERT_TRUE(settled([&] { return passes_.network > beforeAction; }));
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Wrong size"), HasSubstr("Late order"), HasSubstr("Broken zip")));

    // Away from view the action has no handler; back on view it has one again, and one only.
    navigation_->popViewController(false);
    EXPECT_FALSE(registry.handler(RequestListRefreshActionHandler::defaultActionName));
    const auto before = registry.count();
    show(list_);
    EXPECT_TRUE(registry.handler(RequestListRefreshActionHandler::defaultActionName));
    EXPECT_EQ(registry.count(), before + 1);
}

TEST_F(RequestListScreenTest, AnAuthErrorClearsTheListAndLeavesTwoSecondsLaterTheDesksUnauthorizedNoticeAtOnce) {
    createTicket("Broken zip");
    visit(list_);
    testing_support::CapturedLog log;
    // The pipeline's answer to a 401: the auth failure, then the generic one.
    sharedStore()->dispatch(Actions::RequestsFetchedFailedWIthAuthError{});
    sharedStore()->dispatch(Actions::RequestsFetchedFailed{});
    EXPECT_THAT(log.messages(platform::LogLevel::error), ElementsAre("401 Authentication error, dismissing Request List"));
    EXPECT_THAT(slice().requests.get(), IsEmpty());
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_TRUE(list_->toastWrapper->isShowingError);
    queue_testing::pass(time_, platform::milliseconds(1900));
    EXPECT_EQ(navigation_->topViewController(), list_.get());
    queue_testing::pass(time_, platform::milliseconds(150));
    EXPECT_EQ(navigation_->topViewController(), home_.get());

    // The desk's 401 comes with the dispatcher's notice, which takes the list away at once.
    list_ = makeList();
    visit(list_);
    log.clear();
    host_.tickets().setUnauthorized(true);
    const int network = passes_.network;
    list_->refreshController->userDidPull();
    ASSERT_TRUE(settled([&] { return navigation_->topViewController() == home_.get(); }));
    EXPECT_THAT(log.messages(platform::LogLevel::warn), ElementsAre("401 received, clearing storage and dismissing Corvane UI"));
    ASSERT_TRUE(settled([&] { return passes_.network > network; }));
    EXPECT_THAT(slice().requests.get(), IsEmpty());
}

TEST_F(RequestListScreenTest, ConversationsOffDisableComposeAndDismissTheScreen) {
    settings_.setConversationsEnabled(false);
    testing_support::CapturedLog log;
    show(list_);
    ASSERT_TRUE(settled([&] { return navigation_->topViewController() == home_.get(); }));
    EXPECT_FALSE(list_->navigationItem().rightBarButtonItem->enabled);
    // Each of the two loads of the new screen hears the settings.
    const std::string disabled = "Conversations disabled, request list screen not available. Dismissing screen.";
    ASSERT_TRUE(settled([&] { return settings_.requestCount() == 2 && log.messages(platform::LogLevel::error).size() == 2; }));
    EXPECT_THAT(log.messages(platform::LogLevel::error), ElementsAre(disabled, disabled));
}

TEST_F(RequestListScreenTest, EachLoadAsksForTheKeptRowsAtOnceWhateverTheSettingsAndReportsTheVisitOncePerScreen) {
    createTicket("Broken zip");
    // A first visit keeps the rows on the device; the slice is then emptied.
    visit(list_);
    navigation_->popViewController(false);
    const auto kept = list_->cache;
    ASSERT_TRUE(platform::MainQueue::shared().runUntil(
        [&] { return kept->read("request-list-offline-cache").has_value(); }, platform::seconds(10)));
    sharedStore()->dispatch(Actions::ClearRequestList{});
    list_ = makeList();
    const Passes before = passes();

    int cachedAsked = 0;
    int settingsAnswered = 0;
    auto actions = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (tivra::actionAs<Actions::FetchCachedRequests>(action)) ++cachedAsked;
        if (tivra::actionAs<Actions::FetchRequestListSettingsSuccess>(action)) ++settingsAnswered;
    });
    auto& telemetry = *host_.helpDesk->telemetry();
    settings_.setLatency(platform::milliseconds(500));

    // As the view loads and as it appears: the settings asked, the kept rows asked at once.
    const auto asked = settings_.requestCount();
    show(list_);
    EXPECT_EQ(settings_.requestCount(), asked + 2);
    EXPECT_EQ(cachedAsked, 2);
    EXPECT_EQ(settingsAnswered, 0);
    EXPECT_EQ(telemetry.count("requestListViewed"), 2u);
    // The kept rows come before the slow settings, and stay when the settings empty the slice.
    ASSERT_TRUE(platform::MainQueue::shared().runUntil(
        [&] { return list_->requestListTableView->numberOfRowsInSection(0) > 0; }, platform::seconds(10)));
    EXPECT_EQ(settingsAnswered, 0);
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip")));
    ASSERT_TRUE(settled([&] { return settingsAnswered == 2; }));
    EXPECT_EQ(slice().stateType, RequestListStateType::Loading);
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip")));
    awaitVisit(before);

    // Back on view: one more load, and no second report of the visit.
    navigation_->pushViewController(std::make_shared<uikit::ViewController>(), false);
    navigation_->popViewController(false);
    EXPECT_EQ(settings_.requestCount(), asked + 3);
    EXPECT_EQ(cachedAsked, 3);
    EXPECT_EQ(telemetry.count("requestListViewed"), 2u);
    ASSERT_TRUE(settled([&] { return settingsAnswered == 3; }));

    // With the settings failing, the kept rows are asked for all the same.
    settings_.setFailing(true);
    navigation_->pushViewController(std::make_shared<uikit::ViewController>(), false);
    navigation_->popViewController(false);
    EXPECT_EQ(cachedAsked, 4);
    ASSERT_TRUE(settled([&] { return list_->state.stateType == RequestListStateType::ErroredFromNetwork; }));
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip")));
    actions.removeListener();
}

TEST_F(RequestListScreenTest, TappingARowOpensThatTicketAndMarksItRead) {
    const auto first = createTicket("Broken zip");
    const auto second = createTicket("Late order");
    const auto ada = host_.tickets().addAgent("Ada");
    host_.tickets().addAgentComment(first, ada.userId, "We are on it");
    visit(list_);
    ASSERT_THAT(rows(), ElementsAre(HasSubstr("Broken zip | We are on it [unread]"), HasSubstr("Late order")));

    ASSERT_TRUE(uikit::tap(*cell(0)));
    auto* opened = dynamic_cast<TicketScreen*>(navigation_->topViewController());
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->requestId, first);
    EXPECT_FALSE(slice().requests[0].hasUnreadComments);
    EXPECT_THAT(rows(), ElementsAre(testing::Not(HasSubstr("[unread]")), HasSubstr("Late order")));

    // Back on the list, its reload remembers what was read; a later answer is unread again.
    const Passes before = passes();
    navigation_->popViewController(false);
    awaitVisit(before, 1);
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip | We are on it [letter A]"), HasSubstr("Late order")))
        << "the read ticket's dot came back";
    host_.tickets().addAgentComment(first, ada.userId, "Fixed now");
    pull();
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Broken zip | Fixed now [unread]"), HasSubstr("Late order")));
    ASSERT_TRUE(uikit::tap(*cell(1)));
    opened = dynamic_cast<TicketScreen*>(navigation_->topViewController());
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->requestId, second);

    // The library's own ticket screen is the request container, with the list's configurations:
    // on the tapped ticket, or on a new one from the compose button.
    auto configuration = std::make_shared<RequestUiConfiguration>();
    auto library = RequestListViewController::make({configuration});
    visit(library);
    auto* compose = uikit::findByIdentifier(*window_, "CRVcomposeButton");
    ASSERT_NE(compose, nullptr);
    ASSERT_TRUE(uikit::tap(*compose));
    auto presented = std::dynamic_pointer_cast<uikit::NavigationController>(library->presentedViewController());
    ASSERT_TRUE(presented);
    auto* creating = dynamic_cast<RequestContainerController*>(presented->topViewController());
    ASSERT_NE(creating, nullptr);
    EXPECT_EQ(creating->state.requestId, std::nullopt);
    library->dismissViewController(false);

    ASSERT_TRUE(uikit::tap(*library->requestListTableView->cellForRow({0, 0})));
    auto container = std::dynamic_pointer_cast<RequestContainerController>(navigation_->viewControllers().back());
    ASSERT_TRUE(container);
    EXPECT_EQ(container->state.requestId, first);
    ASSERT_TRUE(container->state.configs);
    EXPECT_EQ(container->state.configs->configuration<RequestUiConfiguration>(), configuration);
}

TEST_F(RequestListScreenTest, TheEngineShowsTheListOnTheMessagingScreensNavigationOnly) {
    auto made = SupportEngine::engine();
    auto* engine = std::get_if<std::shared_ptr<SupportEngine>>(&made);
    ASSERT_TRUE(engine);
    navigation_ = std::make_shared<uikit::NavigationController>(home_);
    window_->setRootViewController(navigation_);

    (*engine)->openRequestList({{"navController", std::string("not a navigation")}});
    (*engine)->openRequestList({{"navController", std::shared_ptr<uikit::ViewController>(home_)}});
    EXPECT_EQ(navigation_->viewControllers().size(), 1u);

    createTicket("Broken zip");
    const Passes before = passes();
    (*engine)->openRequestList({{"navController", navigation_}});
    ASSERT_EQ(navigation_->viewControllers().size(), 2u);
    auto shown = std::dynamic_pointer_cast<RequestListViewController>(navigation_->viewControllers().back());
    ASSERT_TRUE(shown);
    awaitVisit(before);
    EXPECT_EQ(shown->state.stateType, RequestListStateType::LoadedFromNetwork);
    EXPECT_EQ(shown->requestListTableView->numberOfRowsInSection(0), 1);
}

TEST_F(RequestListScreenTest, TheHostsRequestListIsThisScreenUnderTheCoordinatorsBarAndLeavesWithIt) {
    createTicket("Broken zip");
    auto flow = RequestUi::buildRequestList();
    navigation_ = std::make_shared<uikit::NavigationController>(home_);
    window_->setRootViewController(navigation_);
    const Passes before = passes();
    navigation_->pushViewController(flow, false);
    ASSERT_TRUE(settled([&] { return flow->activeController() != nullptr; }));
    auto shown = std::dynamic_pointer_cast<RequestListViewController>(flow->activeController());
    ASSERT_TRUE(shown);
    awaitVisit(before);
    EXPECT_EQ(shown->requestListTableView->numberOfRowsInSection(0), 1);
    // The list's title and compose button stand on the bar of the screen that holds it.
    EXPECT_EQ(navigation_->navigationBar()->titleLabel()->text(), text(LocalizedKey::requestsRequestListTitle));
    ASSERT_NE(uikit::findByIdentifier(*window_, "CRVcomposeButton"), nullptr);

    // Back on view the coordinator names a new list, which takes the old one's place and shows
    // the held rows at once.
    navigation_->pushViewController(std::make_shared<uikit::ViewController>(), false);
    const Passes again = passes();
    navigation_->popViewController(false);
    ASSERT_TRUE(settled([&] { return flow->activeController() != shown; }));
    auto renewed = std::dynamic_pointer_cast<RequestListViewController>(flow->activeController());
    ASSERT_TRUE(renewed);
    EXPECT_EQ(flow->childViewControllers().size(), 1u);
    EXPECT_EQ(shown->parentViewController(), nullptr);
    // Nothing else holds the old list: it goes.
    const std::weak_ptr<RequestListViewController> old = shown;
    shown.reset();
    EXPECT_TRUE(old.expired());
    EXPECT_EQ(renewed->requestListTableView->numberOfRowsInSection(0), 1);
    // The old list's load as the flow came back, then the new one's two.
    awaitVisit(again, 3);
    EXPECT_EQ(renewed->requestListTableView->numberOfRowsInSection(0), 1);

    // Leaving takes the holding screen off the stack.
    sharedStore()->dispatch(Actions::RequestsFetchedFailedWIthAuthError{});
    queue_testing::pass(time_, platform::seconds(2.1));
    EXPECT_EQ(navigation_->topViewController(), home_.get());
}

