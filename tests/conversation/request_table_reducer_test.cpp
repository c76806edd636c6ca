#include "belvakit/Request/conversation/request_table_reducer.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "table_fixtures.hpp"

using namespace table_fixtures;

namespace {

struct Unrelated final : tivra::Action {};

class RequestTableReducerTest : public FixedCalendar {
protected:
    RequestTableState reduce(const RequestTableState& state, const tivra::Action& action) {
        auto next = reducer->reduce(state, action);
        if (!next) throw std::runtime_error("the reducer declined");
        return *next;
    }
    RequestTableState withMessages(std::vector<Message> messages, std::map<std::string, std::string> map = {}) {
        Actions::SetMessages set;
        set.messages = std::move(messages);
        auto state = reduce(reducer->initialState(), set);
        state.mapLocalToRemote = std::move(map);
        return state;
    }
    std::shared_ptr<RequestTableReducer> reducer = std::make_shared<RequestTableReducer>();
};

Actions::TicketCreationError creationError(std::string id) {
    Actions::TicketCreationError error;
    error.id = std::move(id);
    return error;
}

Upload::Attachment upload(std::string id, std::optional<std::string> filename = std::nullopt) {
    return Upload::Attachment{"", std::move(id), FileType::png, std::move(filename)};
}

} // namespace

TEST_F(RequestTableReducerTest, NewMessagesAppendUnsortedAndUnknownActionsAreDeclined) {
    Actions::NewMessages more;
    more.messages = {text("u0", t0), agent("a1", t0 + 200)};
    const auto state = reduce(withMessages({text("u1", t0 + 100)}), more);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "u0", "a1"}));
    EXPECT_EQ(state.lastActionType, ActionTypes::noAction);
    EXPECT_FALSE(reducer->reduce(state, Unrelated{}));
    Actions::AttachmentFetched unknown;
    unknown.message = image("nowhere", "u1", t0);
    EXPECT_FALSE(reducer->reduce(state, unknown));
}

TEST_F(RequestTableReducerTest, CommentCreatedLabelsOnlyTheLastAttachmentOfTheNewestSend) {
    const auto queued = DeliveryStatus::notDelivered;
    auto state = withMessages({text("old", t0, DeliveryStatus::lastDelivered), text("L", t0 + 10, queued),
                               image("i1", "L", t0 + 10, queued), image("i2", "L", t0 + 10, queued),
                               image("i3", "L", t0 + 10, queued)});
    Actions::CommentCreated created;
    created.localId = "L";
    created.remoteCommentId = "501";
    created.remoteCreatedAt = t0 + 99;
    created.attachments = {{"601", upload("i1")}, {"602", upload("i2")}, {"603", upload("i3")}};
    state = reduce(state, created);

    EXPECT_EQ(state.lastActionType, ActionTypes::remoteCommentCreated);
    for (const auto* delivered : {"old", "L", "i1", "i2"}) EXPECT_EQ(statusOf(state.tableData, delivered), DeliveryStatus::delivered);
    EXPECT_EQ(statusOf(state.tableData, "i3"), DeliveryStatus::lastDelivered);
    EXPECT_EQ(createdAt(state.tableData[1]), t0 + 99);
    EXPECT_EQ(state.mapLocalToRemote,
              (std::map<std::string, std::string>{{"L", "501"}, {"i1", "601"}, {"i2", "602"}, {"i3", "603"}}));
    EXPECT_FALSE(state.localId) << "only a new ticket names the conversation";
    EXPECT_EQ(status(std::get<Message>(state.cellItems.back())), DeliveryStatus::lastDelivered);

    Actions::TicketCreated ticket;
    ticket.localId = "T";
    ticket.remoteRequestId = "42";
    state = reduce(withMessages({text("T", t0, queued)}), ticket);
    EXPECT_EQ(state.lastActionType, ActionTypes::remoteTicketCreated);
    EXPECT_EQ(state.localId, "T");
    EXPECT_EQ(state.remoteId, "42");
    EXPECT_EQ(statusOf(state.tableData, "T"), DeliveryStatus::lastDelivered);

    // A ticket whose first message failed and that a later one makes keeps the conversation's id,
    // under which the device already keeps it.
    auto failedFirst = reduce(withMessages({text("F", t0, queued)}), creationError("F"));
    ASSERT_EQ(failedFirst.localId, "F");
    failedFirst.tableData.push_back(text("T", t0 + 1, queued));
    state = reduce(failedFirst, ticket);
    EXPECT_EQ(state.localId, "F");
    EXPECT_EQ(state.remoteId, "42");
    EXPECT_EQ(reduce(state, creationError("T")).localId, "F");
}

TEST_F(RequestTableReducerTest, ASendWhoseCommentAFetchBroughtFirstStaysOneRow) {
    // The fetch overtook the send's answer: the table holds the comment as the help desk's too.
    const auto queued = DeliveryStatus::notDelivered;
    auto state = withMessages({text("L", t0 + 10, queued), image("i1", "L", t0 + 10, queued), text("501", t0 + 11),
                               image("601", "501", t0 + 11), agent("a1", t0 + 12)});
    Actions::CommentCreated created;
    created.localId = "L";
    created.remoteCommentId = "501";
    created.remoteCreatedAt = t0 + 11;
    created.attachments = {{"601", upload("i1")}};
    state = reduce(state, created);
    EXPECT_EQ(ids(state.tableData), (Strings{"L", "i1", "a1"}));
    EXPECT_EQ(statusOf(state.tableData, "L"), DeliveryStatus::delivered);

    Actions::TicketCreated ticket;
    ticket.localId = "T";
    ticket.remoteRequestId = "42";
    ticket.remoteCommentId = "700";
    state = reduce(withMessages({text("T", t0, queued), text("700", t0 + 1)}), ticket);
    EXPECT_EQ(ids(state.tableData), (Strings{"T"}));
}

TEST_F(RequestTableReducerTest, FailuresMarkTheTextAndItsAttachments) {
    const auto sending = withMessages({text("ok", t0), text("L", t0 + 1, DeliveryStatus::notDelivered),
                                       image("i1", "L", t0 + 1, DeliveryStatus::notDelivered), agent("a1", t0 + 2)});
    Actions::AttachmentsUploadError uploadError;
    uploadError.id = "L";
    auto state = reduce(sending, uploadError);
    EXPECT_EQ(statusOf(state.tableData, "L"), DeliveryStatus::failed);
    EXPECT_EQ(statusOf(state.tableData, "i1"), DeliveryStatus::failed);
    EXPECT_EQ(statusOf(state.tableData, "ok"), DeliveryStatus::delivered);
    EXPECT_EQ(state.lastActionType, ActionTypes::noAction);
    EXPECT_EQ(reduce(sending, creationError("L")).localId, "L");
}

TEST_F(RequestTableReducerTest, PreparedAttachmentsNameTheirRows) {
    Actions::AttachmentsPrepared prepared;
    prepared.attachments = {upload("i1"), upload("i2", "notes.png"), upload("L", "not-an-attachment"), upload("gone", "x")};
    const auto state = reduce(withMessages({text("L", t0), image("i1", "L", t0), image("i2", "L", t0)}), prepared);
    EXPECT_EQ(state.tableData[1].get<UserImage>().filename, "Attachmenti1.png");
    EXPECT_EQ(state.tableData[2].get<UserImage>().filename, "notes.png");
    EXPECT_EQ(state.tableData[0].get<UserMessage>().body, "body of L");
}

TEST_F(RequestTableReducerTest, MergePairsMappedRowsAndOrdersTheRestByDate) {
    const auto local = withMessages({text("L1", t0, DeliveryStatus::lastDelivered), text("L2", t0 + 50)}, {{"L1", "100"}});
    EXPECT_EQ(ids(reduce(local, Actions::MergeMessages{}).tableData), (Strings{"L1", "L2"}));
    EXPECT_EQ(reduce(local, Actions::MergeMessages{}).lastActionType, ActionTypes::fetchedNewComments);

    auto remoteOfL1 = text("100", t0 + 3);
    remoteOfL1.body = "server body";
    Actions::MergeMessages merge;
    merge.messages = {remoteOfL1, agent("200", t0 + 50), agent("300", t0 + 500)};
    const auto state = reduce(local, merge);
    // Equal dates put the remote row first; a later unmapped one goes after every local row.
    EXPECT_EQ(ids(state.tableData), (Strings{"L1", "200", "L2", "300"}));
    const auto& paired = state.tableData[0].get<UserMessage>();
    EXPECT_EQ(paired.body, "server body");
    EXPECT_EQ(paired.createdAt, t0 + 3);
    EXPECT_EQ(paired.status, DeliveryStatus::lastDelivered);
    EXPECT_TRUE(mergedMessage(agent("1", t0), text("1", t0)).holds<AgentMessage>());
}

TEST_F(RequestTableReducerTest, MappedAttachmentsFindTheirRemoteRowAnywhere) {
    auto localImage = image("i1", "L", t0);
    localImage.thumbnailImage = platform::makeImage(1, 1);
    const auto local = withMessages({text("L", t0), localImage, image("i2", "L", t0), text("L2", t0 + 10)},
                                    {{"L", "100"}, {"i1", "101"}, {"i2", "102"}});
    auto remoteImage = image("101", "100", t0 + 1);
    remoteImage.imageUrl = "https://files/101";
    Actions::MergeMessages merge;
    merge.messages = {text("100", t0 + 1), image("102", "100", t0 + 1), remoteImage};  // attachments swapped
    const auto state = reduce(local, merge);
    EXPECT_EQ(ids(state.tableData), (Strings{"L", "i1", "i2", "L2"}));
    const auto& merged = state.tableData[1].get<UserImage>();
    EXPECT_EQ(merged.imageUrl, "https://files/101");
    EXPECT_EQ(merged.parentId, "L");
    EXPECT_EQ(merged.thumbnailImage, localImage.thumbnailImage);
}

TEST_F(RequestTableReducerTest, FetchedCommentsMergeAsMessagesAndAFailedFetchKeepsTheRows) {
    Actions::NewCommentsFetched fetched;
    fetched.comments = {Request::Comment{900, "hi", std::nullopt, true, {}, t0 + 60, 7, "Ada", std::nullopt}};
    const auto state = reduce(withMessages({text("u1", t0)}), fetched);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1", "900"}));
    EXPECT_EQ(state.lastActionType, ActionTypes::fetchedNewComments);
    const auto failed = reduce(state, Actions::FetchCommentsError{});
    EXPECT_EQ(failed.lastActionType, ActionTypes::fetchedNewCommentsError);
    EXPECT_EQ(rowIds(failed.cellItems), rowIds(state.cellItems));
}

TEST_F(RequestTableReducerTest, LoadedMessagesNameOnlyATableWithoutAName) {
    Actions::MessagesLoadedFromDisk disk;
    disk.messages = {text("d1", t0)};
    disk.mapLocalToRemote = {{"d1", "10"}};
    disk.localId = "disk-id";
    EXPECT_EQ(reduce(reducer->initialState(), disk).localId, "disk-id");
    auto busy = withMessages({text("t1", t0 + 5)});
    busy.localId = "table-id";
    const auto merged = reduce(busy, disk);
    EXPECT_EQ(merged.localId, "table-id");
    EXPECT_EQ(merged.mapLocalToRemote, disk.mapLocalToRemote);
    EXPECT_EQ(ids(merged.tableData), (Strings{"d1", "t1"}));
    // A send made before the disk answered, on a table not yet named: it is kept under the disk's key.
    const auto sentFirst = reduce(withMessages({text("t2", t0 + 6)}), disk);
    EXPECT_EQ(sentFirst.localId, "disk-id");
    EXPECT_EQ(ids(sentFirst.tableData), (Strings{"d1", "t2"}));

    Actions::MessagesLoadedFromNetwork network;
    network.requestId = "42";
    network.messages = {text("100", t0)};
    const auto loaded = reduce(reducer->initialState(), network);
    EXPECT_EQ(loaded.localId, "100");
    EXPECT_EQ(loaded.remoteId, "42");
    EXPECT_TRUE(loaded.finishedLoading);
}

TEST_F(RequestTableReducerTest, DeletingAndMovingRows) {
    const auto failed = text("u1", t0, DeliveryStatus::failed);
    const auto state = withMessages({failed, agent("a1", t0 + 1)}, {{"u1", "100"}, {"a1", "200"}});
    Actions::MoveMessagesToBottom move;
    move.messages = {failed};
    const auto moved = reduce(state, move);
    EXPECT_EQ(ids(moved.tableData), (Strings{"a1", "u1"}));
    EXPECT_EQ(statusOf(moved.tableData, "u1"), DeliveryStatus::notDelivered);
    Actions::DeleteMessages deletion;
    deletion.messages = {failed};
    const auto deleted = reduce(state, deletion);
    EXPECT_EQ(ids(deleted.tableData), (Strings{"a1"}));
    EXPECT_EQ(deleted.mapLocalToRemote, (std::map<std::string, std::string>{{"a1", "200"}}));
}

TEST_F(RequestTableReducerTest, NoticesWaitForTheNextRecompute) {
    auto state = reduce(withMessages({text("u1", t0)}), Actions::TicketClosed{});
    Actions::SettingsFetched settings;
    settings.systemMessage = "Notice";
    settings.maxAttachmentSize = 1024;
    state = reduce(state, settings);
    EXPECT_EQ(state.maxAttachmentSize, 1024);
    EXPECT_EQ(state.lastActionType, ActionTypes::setMessages);
    EXPECT_EQ(rowIds(state.cellItems), (Strings{"date", "u1"}));
    Actions::NewMessage next;
    next.message = agent("a1", t0 + 1);
    EXPECT_EQ(rowIds(reduce(state, next).cellItems), (Strings{"date", "u1", "system", "a1", "system"}));
}
