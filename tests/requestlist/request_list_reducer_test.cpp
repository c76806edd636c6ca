#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_reducer.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"

#include <gtest/gtest.h>

#include <limits>

using namespace belvakit;

namespace {

RequestListCellData row(std::string id, Date date, RequestStatus status = RequestStatus::open, bool unread = false) {
    auto cell = RequestListCellData::local(std::move(id), "About " + std::to_string(date), date, false);
    cell.requestStatus = status;
    cell.hasUnreadComments = unread;
    return cell;
}

std::vector<std::string> idsOf(const std::vector<RequestListCellData>& rows) {
    std::vector<std::string> ids;
    for (const auto& cell : rows) ids.push_back(cell.requestId);
    return ids;
}

RequestListState loaded() {
    RequestListState state;
    state.requests = {row("1", 300, RequestStatus::open, true), row("2", 200), row("3", 100)};
    state.stateType = RequestListStateType::LoadedFromNetwork;
    return state;
}

RequestListState reduce(const RequestListState& state, const tivra::Action& action) {
    const auto next = RequestListReducer().reduce(state, action);
    EXPECT_TRUE(next.has_value()) << "the slice must count as changed";
    return next.value_or(state);
}

} // namespace

TEST(RequestListReducer, SettingsStartALoadOrRefuseTheScreen) {
    Actions::FetchRequestListSettingsSuccess settings;
    settings.referrerUrl = "https://ref.example.com";
    settings.conversationsEnabled = true;
    settings.showClosedRequests = true;
    auto next = reduce(loaded(), settings);
    EXPECT_TRUE(next.requests.empty());
    EXPECT_EQ(next.stateType, RequestListStateType::Loading);
    EXPECT_EQ(next.referrerUrl, "https://ref.example.com");
    EXPECT_TRUE(next.showClosedRequests);
    EXPECT_FALSE(next.showReferrerLogo);

    settings.conversationsEnabled = false;
    EXPECT_EQ(reduce(loaded(), settings).stateType, RequestListStateType::ConversationsDisabledError);
}

TEST(RequestListReducer, AFailureKeepsTheRowsAndNamesItsKind) {
    auto failed = reduce(loaded(), Actions::RequestsFetchedFailed{});
    EXPECT_EQ(failed.requests, loaded().requests);
    EXPECT_EQ(failed.stateType, RequestListStateType::ErroredFromNetwork);
    EXPECT_EQ(failed.error, NetworkError::generic);
    EXPECT_EQ(reduce(loaded(), Actions::RequestsFetchedFailedWIthAuthError{}).error, NetworkError::auth);

    Actions::RefreshRequests refresh;
    refresh.refreshing = false;
    EXPECT_EQ(reduce(failed, refresh).stateType, RequestListStateType::Refreshing);

    auto cleared = reduce(failed, Actions::ClearRequestList{});
    EXPECT_TRUE(cleared.requests.empty());
    EXPECT_EQ(cleared.stateType, RequestListStateType::NotLoaded);
}

TEST(RequestListReducer, TicketsMadeOrFailedHereGoToTheTopReplacingTheirRow) {
    Actions::RequestCreationOrUpdateError failed;
    failed.id = "2";
    failed.requestDescription = "My order";
    failed.createdAtDate = 50;
    auto next = reduce(loaded(), failed);
    EXPECT_EQ(idsOf(next.requests), (std::vector<std::string>{"2", "1", "3"}));
    EXPECT_TRUE(next.requests[0].isErrored);
    EXPECT_EQ(next.requests[0].requestTitle, "My order");
    EXPECT_EQ(next.requests[0].updatedAtDate, 50);

    Actions::TicketCreated created;
    created.localId = "local";
    created.remoteRequestId = "3";
    created.body = "Sent now";
    created.remoteCreatedAt = 400;
    next = reduce(next, created);
    EXPECT_EQ(idsOf(next.requests), (std::vector<std::string>{"3", "2", "1"}));
    EXPECT_FALSE(next.requests[0].isErrored);
    EXPECT_EQ(next.requests[0].requestDescription, "Sent now");
    EXPECT_EQ(next.requests[0].requestStatus, RequestStatus::new_);
}

TEST(RequestListReducer, DeletionsTakeOnlyWholeTickets) {
    Actions::DeleteMessages deletion;
    deletion.messages = {UserMessage{.id = "x"}, UserMessage{.id = "2"}};
    deletion.isDeletingWholeTicket = false;
    EXPECT_EQ(reduce(loaded(), deletion).requests, loaded().requests);
    deletion.isDeletingWholeTicket = true;
    EXPECT_EQ(idsOf(reduce(loaded(), deletion).requests), (std::vector<std::string>{"1", "3"}));
    // A failed ticket whose last message is an attachment: the attachment names its text.
    deletion.messages = {UserMessage{.id = "2"}, UserImage{.id = "i", .parentId = "2"}};
    EXPECT_EQ(idsOf(reduce(loaded(), deletion).requests), (std::vector<std::string>{"1", "3"}));
    deletion.messages = {UserMessage{.id = "2"}, UserFile{.id = "f", .parentId = "2"}};
    EXPECT_EQ(idsOf(reduce(loaded(), deletion).requests), (std::vector<std::string>{"1", "3"}));
    deletion.messages.clear();
    EXPECT_EQ(reduce(loaded(), deletion).requests, loaded().requests);

    Actions::DeleteRequestFromList fromList;
    fromList.ticketId = "1";
    EXPECT_EQ(idsOf(reduce(loaded(), fromList).requests), (std::vector<std::string>{"2", "3"}));
}

TEST(RequestListReducer, FetchedRowsReplaceTheListAndReadingClearsOneMark) {
    Actions::RequestsWithAvatarsFetched fetched;
    fetched.requests = {row("9", 1)};
    fetched.requestListStateType = RequestListStateType::LoadedFromCache;
    auto next = reduce(loaded(), fetched);
    EXPECT_EQ(idsOf(next.requests), (std::vector<std::string>{"9"}));
    EXPECT_EQ(next.stateType, RequestListStateType::LoadedFromCache);

    Actions::MarkRequestAsRead read;
    read.requestData = row("1", 0);
    next = reduce(loaded(), read);
    EXPECT_FALSE(next.requests[0].hasUnreadComments);
    EXPECT_EQ(idsOf(next.requests), idsOf(loaded().requests));
    read.requestData = row("404", 0);
    EXPECT_EQ(reduce(loaded(), read), loaded());
    EXPECT_EQ(reduce(RequestListState{}, read), RequestListState{});

    EXPECT_FALSE(RequestListReducer().reduce(loaded(), Actions::TicketClosed{}).has_value());
}

TEST(RequestListReducer, TheSliceSharesTheFetchedRowsAndChangesNeverReachRowsHeldElsewhere) {
    Actions::RequestsWithAvatarsFetched fetched;
    fetched.requests = loaded().requests;
    const auto shown = reduce(RequestListState{}, fetched);
    EXPECT_TRUE(shown.requests.shares(fetched.requests));

    Actions::MarkRequestAsRead read;
    read.requestData = row("1", 0);
    EXPECT_FALSE(reduce(shown, read).requests[0].hasUnreadComments);
    Actions::RequestCreationOrUpdateError failed;
    failed.id = "3";
    EXPECT_EQ(idsOf(reduce(shown, failed).requests), (std::vector<std::string>{"3", "1", "2"}));
    Actions::DeleteRequestFromList deletion;
    deletion.ticketId = "2";
    EXPECT_EQ(idsOf(reduce(shown, deletion).requests), (std::vector<std::string>{"1", "3"}));

    // The action and the earlier slice still hold the rows as they came.
    EXPECT_EQ(fetched.requests, loaded().requests);
    EXPECT_TRUE(shown.requests.shares(fetched.requests));
    EXPECT_TRUE(shown.requests[0].hasUnreadComments);
}

TEST(RequestListOrdering, NewestFirstAndClosedOnlyWhenAsked) {
    const std::vector<RequestListCellData> rows = {row("a", 10), row("b", 30, RequestStatus::closed), row("c", 20)};
    EXPECT_EQ(idsOf(sortedAndFilteredRequests(rows, true)), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(idsOf(sortedAndFilteredRequests(rows, false)), (std::vector<std::string>{"c", "a"}));
    // A date that is no number goes last instead of spoiling the order of the rest, even after
    // an infinitely old one (the fuzzer found the two tied).
    auto withNan = rows;
    withNan.insert(withNan.begin() + 1, row("n", std::numeric_limits<double>::quiet_NaN()));
    withNan.push_back(row("old", -std::numeric_limits<double>::infinity()));
    EXPECT_EQ(idsOf(sortedAndFilteredRequests(withNan, true)), (std::vector<std::string>{"b", "c", "a", "old", "n"}));
}

TEST(RequestListOfflineCache, ReadsWhatItWroteAndKeepsTheReadablePartOfBadEntries) {
    dastrel::CRVRequest request;
    request.requestId = "7";
    request.requestDescription = "Broken zip";
    request.status = "open";
    request.createdAt = 1700000000;
    request.commentingAgentsIds = {500};
    const dastrel::CRVRequestsWithCommentingAgents response{{request}, {{500, "Ada", "https://a/1.png", true}}};
    EXPECT_EQ(decodeRequestListOfflineCache(encodeRequestListOfflineCache(response)), response);

    EXPECT_FALSE(decodeRequestListOfflineCache("not json"));
    EXPECT_FALSE(decodeRequestListOfflineCache("[1,2]"));
    const auto wrongShape = decodeRequestListOfflineCache(R"({"requests": 5, "last_commenting_agents": {}})");
    ASSERT_TRUE(wrongShape);
    EXPECT_TRUE(wrongShape->requests.empty());
    const auto partial = decodeRequestListOfflineCache(
        R"({"requests": [{"id": 1, "description": "x", "status": "open", "created_at": "never"},)"
        R"( {"id": "8", "description": "kept", "status": "open", "created_at": 1700000000}]})");
    ASSERT_TRUE(partial);
    ASSERT_EQ(partial->requests.size(), 1u);
    EXPECT_EQ(partial->requests[0].requestId, "8");
}
