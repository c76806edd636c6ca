#include "belvakit/Request/conversation/request_table_reducer.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "table_fixtures.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using namespace table_fixtures;
using Strings = std::vector<std::string>;

namespace {

struct Unrelated final : tivra::Action {};

class RequestTableReducerTest : public FixedCalendar {
protected:
    RequestTableState reduce(const RequestTableState& state, const tivra::Action& action) {
        auto next = reducer->reduce(state, action);
        if (!next) throw std::runtime_error("the reducer declined");
        return *next;
    }
    RequestTableState withMessages(std::vector<Message> messages) {
        Actions::SetMessages set;
        set.messages = std::move(messages);
        return reduce(reducer->initialState(), set);
    }
    std::optional<DeliveryStatus> statusOf(const RequestTableState& state, const std::string& wanted) {
        return status(find(state.tableData, wanted));
    }

    std::shared_ptr<RequestTableReducer> reducer = std::make_shared<RequestTableReducer>();
};

Upload::Attachment upload(std::string id, std::optional<std::string> filename = std::nullopt) {
    Upload::Attachment attachment;
    attachment.id = std::move(id);
    attachment.fileType = FileType::png;
    attachment.filename = std::move(filename);
    return attachment;
}

} // namespace

TEST_F(RequestTableReducerTest, NewMessagesAppendAsTheyComeAndRecomputeTheRows) {
    auto state = withMessages({text("u1", t0 + 100)});
    Actions::NewMessage one;
    one.message = text("u0", t0);  // earlier, but never sorted
    state = reduce(state, one);
    Actions::NewMessages more;
    more.messages = {text("u0", t0), agent("a1", t0 + 200)};
    state = reduce(state, more);
    EXPECT_EQ(ids(state.tableData), (Strings{"u1", "u0", "u0", "a1"}));
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "u0", "u0", "a1"}));
    EXPECT_EQ(state.lastActionType, ActionTypes::noAction);
}

TEST_F(RequestTableReducerTest, InitializeGoesBackToTheInitialState) {
    auto state = withMessages({text("u1", t0)});
    state.remoteId = "5";
    state = reduce(state, Actions::InitializeRequestControllerState{});
    EXPECT_TRUE(state.tableData.empty());
    EXPECT_TRUE(state.cellItems.empty());
    EXPECT_FALSE(state.remoteId);
    EXPECT_EQ(state.lastActionType, ActionTypes::noAction);
}

TEST_F(RequestTableReducerTest, DeclinesWhatItDoesNotHandle) {
    const auto state = withMessages({text("u1", t0)});
    EXPECT_FALSE(reducer->reduce(state, Unrelated{}));
    Actions::AttachmentFetched unknown;
    unknown.message = image("nowhere", "u1", t0);
    EXPECT_FALSE(reducer->reduce(state, unknown));
}

TEST_F(RequestTableReducerTest, FetchedAttachmentReplacesItsMessage) {
    auto state = withMessages({text("u1", t0), image("i1", "u1", t0)});
    auto fetched = image("i1", "u1", t0);
    fetched.image = platform::makeImage(2, 2);
    Actions::AttachmentFetched action;
    action.message = fetched;
    state = reduce(state, action);
    EXPECT_EQ(std::get<UserImage>(state.tableData[1]).image, fetched.image);
    EXPECT_EQ(std::get<UserImage>(std::get<Message>(state.cellItems[2])).image, fetched.image);
}

TEST_F(RequestTableReducerTest, CommentCreatedLabelsOnlyTheLastAttachmentOfTheNewestSend) {
    auto state = withMessages({text("old", t0, DeliveryStatus::lastDelivered), text("L", t0 + 10, DeliveryStatus::notDelivered),
                               image("i1", "L", t0 + 10, DeliveryStatus::notDelivered),
                               image("i2", "L", t0 + 10, DeliveryStatus::notDelivered),
                               image("i3", "L", t0 + 10, DeliveryStatus::notDelivered)});
    Actions::CommentCreated created;
    created.localId = "L";
    created.remoteCommentId = "501";
    created.remoteCreatedAt = t0 + 99;
    created.attachments = {{"601", upload("i1")}, {"602", upload("i2")}, {"603", upload("i3")}};
    state = reduce(state, created);

    EXPECT_EQ(state.lastActionType, ActionTypes::remoteCommentCreated);
    EXPECT_EQ(statusOf(state, "old"), DeliveryStatus::delivered);
    EXPECT_EQ(statusOf(state, "L"), DeliveryStatus::delivered);
    EXPECT_EQ(statusOf(state, "i1"), DeliveryStatus::delivered);
    EXPECT_EQ(statusOf(state, "i2"), DeliveryStatus::delivered);
    EXPECT_EQ(statusOf(state, "i3"), DeliveryStatus::lastDelivered);
    EXPECT_EQ(createdAt(find(state.tableData, "L")), t0 + 99);
    EXPECT_EQ(state.mapLocalToRemote, (std::map<std::string, std::string>{
                                          {"L", "501"}, {"i1", "601"}, {"i2", "602"}, {"i3", "603"}}));
    EXPECT_FALSE(state.localId) << "only a new ticket names the conversation";
    EXPECT_EQ(status(std::get<Message>(state.cellItems.back())), DeliveryStatus::lastDelivered);
}

TEST_F(RequestTableReducerTest, TicketCreatedNamesTheConversationAndLabelsALoneText) {
    auto state = withMessages({text("L", t0, DeliveryStatus::notDelivered)});
    Actions::TicketCreated created;
    created.localId = "L";
    created.remoteRequestId = "42";
    created.remoteCommentId = "500";
    created.remoteCreatedAt = t0 + 5;
    state = reduce(state, created);
    EXPECT_EQ(state.lastActionType, ActionTypes::remoteTicketCreated);
    EXPECT_EQ(state.localId, "L");
    EXPECT_EQ(state.remoteId, "42");
    EXPECT_EQ(statusOf(state, "L"), DeliveryStatus::lastDelivered);
    EXPECT_EQ(state.mapLocalToRemote.at("L"), "500");
}

TEST_F(RequestTableReducerTest, FailuresMarkTheTextAndItsAttachments) {
    const auto sending = withMessages({text("ok", t0), text("L", t0 + 1, DeliveryStatus::notDelivered),
                                       image("i1", "L", t0 + 1, DeliveryStatus::notDelivered), agent("a1", t0 + 2)});
    Actions::CommentCreationError commentError;
    commentError.id = "L";
    auto state = reduce(sending, commentError);
    EXPECT_EQ(statusOf(state, "L"), DeliveryStatus::failed);
    EXPECT_EQ(statusOf(state, "i1"), DeliveryStatus::failed);
    EXPECT_EQ(statusOf(state, "ok"), DeliveryStatus::delivered);
    EXPECT_EQ(state.lastActionType, ActionTypes::noAction);
    EXPECT_EQ(status(std::get<Message>(state.cellItems[3])), DeliveryStatus::failed);

    Actions::AttachmentsUploadError uploadError;
    uploadError.id = "L";
    EXPECT_EQ(statusOf(reduce(sending, uploadError), "i1"), DeliveryStatus::failed);

    Actions::TicketCreationError ticketError;
    ticketError.id = "L";
    state = reduce(sending, ticketError);
    EXPECT_EQ(state.localId, "L");
    EXPECT_EQ(statusOf(state, "L"), DeliveryStatus::failed);
}

TEST_F(RequestTableReducerTest, PreparedAttachmentsNameTheirRows) {
    auto file = UserFile{};
    file.id = "f1";
    file.parentId = "L";
    auto state = withMessages({text("L", t0), image("i1", "L", t0), file, image("i2", "L", t0)});
    Actions::AttachmentsPrepared prepared;
    prepared.attachments = {upload("i1"), upload("f1", "notes.txt"), upload("L", "not-an-attachment"),
                            upload("missing", "x")};
    state = reduce(state, prepared);
    EXPECT_EQ(std::get<UserImage>(state.tableData[1]).filename, "Attachmenti1.png");
    EXPECT_EQ(std::get<UserFile>(state.tableData[2]).filename, "notes.txt");
    EXPECT_EQ(std::get<UserImage>(state.tableData[3]).filename, "pic.png");
    EXPECT_EQ(std::get<UserMessage>(state.tableData[0]).body, "body of L");
}

TEST_F(RequestTableReducerTest, MergingNothingKeepsTheMessages) {
    const auto state = withMessages({text("u1", t0), agent("a1", t0 + 1)});
    const auto merged = reduce(state, Actions::MergeMessages{});
    EXPECT_EQ(ids(merged.tableData), ids(state.tableData));
    EXPECT_EQ(merged.lastActionType, ActionTypes::fetchedNewComments);
}

TEST_F(RequestTableReducerTest, MergePairsMappedRowsAndOrdersTheRestByDate) {
    auto local = withMessages({text("L1", t0, DeliveryStatus::lastDelivered), text("L2", t0 + 50, DeliveryStatus::failed)});
    local.mapLocalToRemote = {{"L1", "100"}};
    auto remoteOfL1 = text("100", t0 + 3);
    remoteOfL1.body = "server body";
    Actions::MergeMessages merge;
    merge.messages = {remoteOfL1, agent("200", t0 + 50), agent("300", t0 + 500)};
    const auto state = reduce(local, merge);
    // Equal dates: the remote row first; a later unmapped remote row after every local one.
    EXPECT_EQ(ids(state.tableData), (Strings{"L1", "200", "L2", "300"}));
    const auto& paired = std::get<UserMessage>(state.tableData[0]);
    EXPECT_EQ(paired.body, "server body");
    EXPECT_EQ(paired.createdAt, t0 + 3);
    EXPECT_EQ(paired.status, DeliveryStatus::lastDelivered);
}

TEST_F(RequestTableReducerTest, MappedAttachmentsFindTheirRemoteRowAnywhere) {
    auto localImage = image("i1", "L", t0, DeliveryStatus::delivered);
    localImage.thumbnailImage = platform::makeImage(1, 1);
    auto local = withMessages({text("L", t0), localImage, image("i2", "L", t0), text("L2", t0 + 10)});
    local.mapLocalToRemote = {{"L", "100"}, {"i1", "101"}, {"i2", "102"}};
    auto remoteImage = image("101", "100", t0 + 1);
    remoteImage.filename = "server.png";
    remoteImage.imageUrl = "https://files/101";
    Actions::MergeMessages merge;
    merge.messages = {text("100", t0 + 1), image("102", "100", t0 + 1), remoteImage};  // attachments swapped
    const auto state = reduce(local, merge);
    EXPECT_EQ(ids(state.tableData), (Strings{"L", "i1", "i2", "L2"}));
    const auto& merged = std::get<UserImage>(state.tableData[1]);
    EXPECT_EQ(merged.filename, "server.png");
    EXPECT_EQ(merged.imageUrl, "https://files/101");
    EXPECT_EQ(merged.parentId, "L");
    EXPECT_EQ(merged.createdAt, t0 + 1);
    EXPECT_EQ(merged.thumbnailImage, localImage.thumbnailImage);
}

TEST(MessageMerge, RecordsOfDifferentKindsGiveTheRemoteOne) {
    const Message merged = mergedMessage(agent("100", t0), text("100", t0 + 1));
    EXPECT_TRUE(std::holds_alternative<AgentMessage>(merged));
}

TEST_F(RequestTableReducerTest, FetchedCommentsBecomeMessagesAndMerge) {
    auto state = withMessages({text("u1", t0)});
    Request::Comment comment;
    comment.id = 900;
    comment.isAgent = true;
    comment.body = "hello";
    comment.createdAt = t0 + 60;
    comment.userID = 7;
    Actions::NewCommentsFetched fetched;
    fetched.comments = {comment};
    state = reduce(state, fetched);
    EXPECT_EQ(ids(state.tableData), (Strings{"u1", "900"}));
    EXPECT_EQ(state.lastActionType, ActionTypes::fetchedNewComments);

    const auto failed = reduce(state, Actions::FetchCommentsError{});
    EXPECT_EQ(failed.lastActionType, ActionTypes::fetchedNewCommentsError);
    EXPECT_EQ(rowIds(failed.cellItems), rowIds(state.cellItems));
    const auto initialFailure = reduce(state, Actions::InitalFetchCommentsError{});
    EXPECT_TRUE(initialFailure.finishedLoading);
    EXPECT_EQ(initialFailure.lastActionType, ActionTypes::fetchedNewComments);
}

TEST_F(RequestTableReducerTest, MessagesFromDiskNameOnlyAnEmptyTable) {
    Actions::MessagesLoadedFromDisk disk;
    disk.messages = {text("d1", t0)};
    disk.mapLocalToRemote = {{"d1", "10"}};
    disk.localId = "disk-id";
    auto fresh = reduce(reducer->initialState(), disk);
    EXPECT_EQ(fresh.localId, "disk-id");
    EXPECT_EQ(fresh.lastActionType, ActionTypes::setMessages);
    EXPECT_EQ(fresh.mapLocalToRemote, disk.mapLocalToRemote);

    auto busy = withMessages({text("t1", t0 + 5)});
    busy.localId = "table-id";
    const auto merged = reduce(busy, disk);
    EXPECT_EQ(merged.localId, "table-id");
    EXPECT_EQ(merged.lastActionType, ActionTypes::fetchedNewComments);
    EXPECT_EQ(ids(merged.tableData), (Strings{"d1", "t1"}));
}

TEST_F(RequestTableReducerTest, MessagesFromTheNetworkNameAnEmptyTableAfterTheFirstMessage) {
    Actions::MessagesLoadedFromNetwork network;
    network.requestId = "42";
    network.messages = {text("100", t0), agent("101", t0 + 1)};
    const auto state = reduce(reducer->initialState(), network);
    EXPECT_EQ(state.localId, "100");
    EXPECT_EQ(state.remoteId, "42");
    EXPECT_TRUE(state.finishedLoading);
    EXPECT_EQ(state.lastActionType, ActionTypes::setMessages);
}

TEST_F(RequestTableReducerTest, DeleteDropsRowsAndTheirIdPairs) {
    auto state = withMessages({text("u1", t0), text("u2", t0 + 1)});
    state.mapLocalToRemote = {{"u1", "100"}, {"u2", "200"}};
    Actions::DeleteMessages deletion;
    deletion.messages = {text("u1", 0)};
    state = reduce(state, deletion);
    EXPECT_EQ(ids(state.tableData), (Strings{"u2"}));
    EXPECT_EQ(state.mapLocalToRemote, (std::map<std::string, std::string>{{"u2", "200"}}));
    EXPECT_EQ(state.lastActionType, ActionTypes::deleteMessages);
}

TEST_F(RequestTableReducerTest, MovingAFailedRowQueuesItAtTheBottom) {
    const auto failed = text("u1", t0, DeliveryStatus::failed);
    auto state = withMessages({failed, agent("a1", t0 + 1)});
    Actions::MoveMessagesToBottom move;
    move.messages = {failed};
    state = reduce(state, move);
    EXPECT_EQ(ids(state.tableData), (Strings{"a1", "u1"}));
    EXPECT_EQ(statusOf(state, "u1"), DeliveryStatus::notDelivered);
    EXPECT_EQ(state.lastActionType, ActionTypes::moveMessagesToBottom);
}

TEST_F(RequestTableReducerTest, NoticesWaitForTheNextRecompute) {
    auto state = withMessages({text("u1", t0)});
    const auto rows = rowIds(state.cellItems);
    state = reduce(state, Actions::TicketClosed{});
    Actions::SettingsFetched settings;
    settings.systemMessage = "Notice";
    settings.maxAttachmentSize = 1024;
    state = reduce(state, settings);
    Actions::SetRemoteId remote;
    remote.remoteRequestID = "77";
    state = reduce(state, remote);
    EXPECT_TRUE(state.ticketClosed);
    EXPECT_EQ(state.maxAttachmentSize, 1024);
    EXPECT_EQ(state.remoteId, "77");
    EXPECT_EQ(state.lastActionType, ActionTypes::setMessages);
    EXPECT_EQ(rowIds(state.cellItems), rows);

    Actions::NewMessage next;
    next.message = agent("a1", t0 + 1);
    state = reduce(state, next);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "system", "a1", "system"}));
}

TEST(SharedStore, HoldsTheConversationSlice) {
    auto store = sharedStore();
    Actions::NewMessage message;
    message.message = text("shared", t0);
    store->dispatch(message);
    const auto* slice = store->state().valueOfType<RequestTableState>();
    ASSERT_NE(slice, nullptr);
    EXPECT_EQ(ids(slice->tableData), (Strings{"shared"}));
    store->dispatch(Actions::InitializeRequestControllerState{});
    EXPECT_TRUE(store->state().valueOfType<RequestTableState>()->tableData.empty());
}
