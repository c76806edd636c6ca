#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "corvane/corvane.hpp"
#include "list_fixture.hpp"
#include "platform/image_codec.hpp"

#include <gtest/gtest.h>

#include <algorithm>

using namespace belvakit;

namespace {

std::vector<std::string> idsOf(const std::vector<RequestListCellData>& rows) {
    std::vector<std::string> ids;
    for (const auto& cell : rows) ids.push_back(cell.requestId);
    return ids;
}

// The list's actions as the shared store saw them, and each state of the slice.
class ListRecorder {
public:
    ListRecorder()
        : actions_(sharedStore()->addActionListener([this](const tivra::Action& action) {
              events.push_back(action.description());
          })),
          states_(sharedStore()->addListener<RequestListState>(
              [this](const RequestListState& state) { states.push_back(state); })) {}
    ~ListRecorder() {
        actions_.removeListener();
        states_.removeListener();
    }

    bool saw(const std::string& event) const { return std::count(events.begin(), events.end(), event) > 0; }
    bool reached(RequestListStateType type) const {
        return std::any_of(states.begin(), states.end(), [&](const auto& state) { return state.stateType == type; });
    }

    std::vector<std::string> events;
    std::vector<RequestListState> states;

private:
    tivra::ActionSubscription actions_;
    tivra::Subscription<RequestListState> states_;
};

class RequestListPipelineTest : public list_testing::ListTest {
protected:
    void loadSettings(bool showClosedRequests = false) {
        Actions::FetchRequestListSettingsSuccess settings;
        settings.conversationsEnabled = true;
        settings.showClosedRequests = showClosedRequests;
        sharedStore()->dispatch(settings);
    }

    void fetchCached() {
        Actions::FetchCachedRequests cached;
        cached.cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        sharedStore()->dispatch(cached);
    }

    // Waits for the pass that ends with `type`, started by `start`.
    void load(RequestListStateType type, const std::function<void()>& start) {
        ListRecorder recorder;
        start();
        ASSERT_TRUE(settled([&] { return recorder.reached(type); }));
    }
};

} // namespace

TEST_F(RequestListPipelineTest, AVisitGoesFromSettingsToTheNetworkRowsWithAvatarsAndKeepsThemForOffline) {
    const auto first = createTicket("Broken zip");
    const auto second = createTicket("Late order");
    const auto agent = host_.tickets().addAgent("Ada", "https://belva.example.com/avatars/ada.png");
    host_.helpDesk->attachments()->serve(*agent.avatarURL, *platform::encodePNG(*platform::makeImage(4, 4)));
    host_.tickets().addAgentComment(first, agent.userId, "We are on it");
    testing_support::CapturedLog log;

    ListRecorder recorder;
    loadSettings();
    ASSERT_TRUE(settled([&] { return recorder.reached(RequestListStateType::LoadedFromNetwork); }));
    EXPECT_EQ(recorder.events,
              (std::vector<std::string>{"FetchRequestListSettingsSuccess", "FetchRequests", "RequestsFetched",
                                        "FetchLocalOnlyRequests", "LocalRequestsFetched", "FetchAgentAvatars",
                                        "RequestsWithAvatarsFetched"}));
    EXPECT_EQ(recorder.states.front().stateType, RequestListStateType::Loading);
    // The agent's comment is the newest change.
    EXPECT_EQ(idsOf(slice().requests), (std::vector<std::string>{first, second}));
    const auto& avatar = slice().requests[0].agentAvatarInfo;
    ASSERT_TRUE(avatar);
    EXPECT_EQ(avatar->agentName, "Ada");
    ASSERT_TRUE(avatar->avatarImage);
    EXPECT_EQ(avatar->avatarImage->width, 4);
    EXPECT_FALSE(slice().requests[1].agentAvatarInfo);
    EXPECT_EQ(log.count(platform::LogLevel::debug, "Agent avatar fetched success"), 1u);

    // The answer was kept: offline, the cached pass shows the same rows, the avatar from its cache.
    host_.tickets().setOffline(true);
    log.clear();
    const auto networkRows = slice().requests;
    load(RequestListStateType::LoadedFromCache, [&] { fetchCached(); });
    EXPECT_EQ(idsOf(slice().requests), idsOf(networkRows));
    EXPECT_EQ(slice().requests[0].requestLastComment, "We are on it");
    ASSERT_TRUE(slice().requests[0].agentAvatarInfo);
    EXPECT_TRUE(slice().requests[0].agentAvatarInfo->avatarImage);
    EXPECT_FALSE(log.contains(platform::LogLevel::debug, "Agent avatar fetched success"));
}

TEST_F(RequestListPipelineTest, AnUnauthorizedAnswerFailsWithAuthThenGeneric) {
    createTicket("Broken zip");
    host_.tickets().setUnauthorized(true);
    ListRecorder recorder;
    loadSettings();
    ASSERT_TRUE(settled([&] { return recorder.saw("RequestsFetchedFailed"); }));
    queue_testing::pass(time_, platform::milliseconds(500));
    EXPECT_EQ(recorder.events, (std::vector<std::string>{"FetchRequestListSettingsSuccess", "FetchRequests",
                                                         "RequestsFetchedFailedWIthAuthError",
                                                         "RequestsFetchedFailed"}));
    // Listeners see `auth` before the list settles on `generic`.
    ASSERT_EQ(recorder.states.size(), 3u);
    EXPECT_EQ(recorder.states[1].error, NetworkError::auth);
    EXPECT_EQ(recorder.states[2].error, NetworkError::generic);
    EXPECT_EQ(slice().stateType, RequestListStateType::ErroredFromNetwork);
}

TEST_F(RequestListPipelineTest, ATicketOnlyThisDeviceKnowsComesFirstMarkedErrored) {
    const auto first = createTicket("Broken zip");
    const auto second = createTicket("Late order");
    clock_.clock->advance(600);
    auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
    LocalIDStore ids;
    ids.addLocalId("local-only");
    // A local conversation that got its remote ticket is that ticket's row already.
    ids.remoteToLocal[second] = "local-sent";
    ids.addLocalId("local-sent");
    for (const auto* id : {"local-only", "local-sent"})
        persistConversation({UserMessage{.id = id, .status = DeliveryStatus::failed, .body = "Typed offline",
                                         .createdAt = platform::now()}},
                            std::string(id), std::nullopt, {}, MessageList::currentVersion, false, cache);
    // A conversation that can't be read adds no row.
    ids.addLocalId("local-corrupt");
    cache->store("local-corrupt", "{not json");
    bool written = false;
    cache->run([&] { platform::MainQueue::shared().async([&] { written = true; }); });
    ASSERT_TRUE(settled([&] { return written; }));
    RequestsWithFailedMessagesIdStore{}.add(first);

    load(RequestListStateType::LoadedFromNetwork, [&] { loadSettings(); });
    ASSERT_EQ(idsOf(slice().requests), (std::vector<std::string>{"local-only", second, first}));
    EXPECT_TRUE(slice().requests[0].isErrored);
    EXPECT_EQ(slice().requests[0].requestTitle, "Typed offline");
    EXPECT_EQ(slice().requests[0].updatedAtDate, platform::now());
    EXPECT_FALSE(slice().requests[1].isErrored);
    EXPECT_TRUE(slice().requests[2].isErrored);
}

TEST_F(RequestListPipelineTest, ClosedTicketsShowOnlyWhenTheSettingsAskForThem) {
    const auto closed = createTicket("Broken zip");
    const auto open = createTicket("Late order");
    host_.tickets().setStatus(closed, "closed");

    load(RequestListStateType::LoadedFromNetwork, [&] { loadSettings(false); });
    EXPECT_EQ(idsOf(slice().requests), (std::vector<std::string>{open}));
    load(RequestListStateType::LoadedFromCache, [&] { fetchCached(); });
    EXPECT_EQ(idsOf(slice().requests), (std::vector<std::string>{open}));

    load(RequestListStateType::LoadedFromNetwork, [&] { loadSettings(true); });
    EXPECT_EQ(idsOf(slice().requests), (std::vector<std::string>{open, closed}));
    EXPECT_EQ(slice().requests[1].requestStatus, RequestStatus::closed);
}

TEST_F(RequestListPipelineTest, EachStageLeavesItsActionWholeForListenersAndASecondDispatch) {
    std::vector<RequestListCellData> rows{RequestListCellData::local("t1", "Broken zip", 100, false),
                                          RequestListCellData::local("t2", "Late order", 200, false)};
    Actions::RequestsFetched fetched;
    fetched.requests = rows;
    fetched.isFromCache = true;
    std::vector<std::size_t> seenByListener;
    auto listener = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (const auto* merged = tivra::actionAs<Actions::LocalRequestsFetched>(action))
            seenByListener.push_back(merged->mergedLocalAndRemoteRequestDatums.size());
        if (const auto* avatars = tivra::actionAs<Actions::FetchAgentAvatars>(action))
            seenByListener.push_back(avatars->requestDatums.size());
    });
    for (int pass = 0; pass < 2; ++pass) {
        sharedStore()->dispatch(Actions::ClearRequestList{});
        load(RequestListStateType::LoadedFromCache, [&] { sharedStore()->dispatch(fetched); });
        EXPECT_EQ(idsOf(slice().requests), (std::vector<std::string>{"t2", "t1"})) << "pass " << pass;
        EXPECT_EQ(fetched.requests.get(), rows) << "pass " << pass;
    }
    listener.removeListener();
    EXPECT_EQ(seenByListener, (std::vector<std::size_t>{2, 2, 2, 2}));
}

namespace {
// Answers with neither tickets nor an error.
class SilentService final : public RequestListServiceProtocol {
public:
    void fetchRequests(std::shared_ptr<Cache>, FetchRequestsCompletion completion) const override {
        completion(std::nullopt, std::nullopt);
    }
    void fetchAgentAvatars(RequestListRows, std::shared_ptr<Cache>, std::shared_ptr<AttachmentsProvider>,
                           FetchAgentAvatarsCompletion) const override {}
};
} // namespace

TEST_F(RequestListPipelineTest, AFetchThatCannotStartOrGetsNoAnswerEndsTheLoadingAsAFailure) {
    Actions::FetchRequests silent;
    silent.service = std::make_shared<SilentService>();
    silent.provider = makeRequestProvider();
    load(RequestListStateType::ErroredFromNetwork, [&] { sharedStore()->dispatch(silent); });

    sharedStore()->dispatch(Actions::RefreshRequests{});
    Actions::FetchRequests withoutService;
    withoutService.isRefreshing = true;
    load(RequestListStateType::ErroredFromNetwork, [&] { sharedStore()->dispatch(withoutService); });
    EXPECT_EQ(slice().error, NetworkError::generic);

    sharedStore()->dispatch(Actions::RefreshRequests{});
    Actions::FetchAgentAvatars avatars;
    avatars.requestDatums = {RequestListCellData::local("t1", "Broken zip", 100, false)};
    load(RequestListStateType::ErroredFromNetwork, [&] { sharedStore()->dispatch(avatars); });

    // Last, as the core object stays gone for the rest of the test.
    corvane::Corvane::reset();
    sharedStore()->dispatch(Actions::RefreshRequests{});
    load(RequestListStateType::ErroredFromNetwork, [&] { fetchCached(); });
}
