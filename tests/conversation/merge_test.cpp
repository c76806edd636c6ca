// Merging what the server says into what the device holds: no message is lost or shown twice,
// whatever the order of the lists and however the clocks disagree.
#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "table_fixtures.hpp"

#include <algorithm>
#include <map>
#include <random>

using namespace table_fixtures;

namespace {

AgentMessage reply(std::string id, Date at) { return agent(std::move(id), at); }

UserFile file(std::string id, std::string parentId, Date at) {
    return {.id = std::move(id), .parentId = std::move(parentId), .filename = "notes.txt", .status = DeliveryStatus::delivered,
            .fileType = FileType::txt, .createdAt = at};
}

std::vector<Message> merged(const std::vector<Message>& local, const std::vector<Message>& remote,
                            const std::map<std::string, std::string>& map) {
    return mergeMessages(remote, local, map);
}

TEST(Merge, AMappedMessageWhoseMatchLiesBehindTheCursorShowsOnce) {
    // An image sent without text, and the agent's answer.
    const std::vector<Message> sent{image("LA", "L", t0 + 90)};
    const std::map<std::string, std::string> map{{"LA", "201"}};
    EXPECT_EQ(ids(merged(sent, {image("201", "200", t0 + 1), reply("X", t0 + 200)}, map)), (Strings{"LA", "X"}));
    EXPECT_EQ(ids(merged(sent, {image("201", "200", t0 + 1)}, map)), (Strings{"LA"}));

    // An unmapped text between: the server's date puts the image first.
    const std::vector<Message> local{text("L0", t0 + 100, DeliveryStatus::failed), image("LA", "L", t0 + 90)};
    const auto result = merged(local, {image("201", "200", t0 + 1), reply("X", t0 + 200)}, map);
    EXPECT_EQ(ids(result), (Strings{"LA", "L0", "X"}));
    EXPECT_EQ(createdAt(result[0]), t0 + 1);

    // A delivered text took the server's time, before a failed text's device time.
    const std::vector<Message> skewed{text("F", t0 + 300, DeliveryStatus::failed), text("S", t0 + 50)};
    EXPECT_EQ(ids(merged(skewed, {text("100", t0 + 50), reply("A", t0 + 60)}, {{"S", "100"}})),
              (Strings{"S", "A", "F"}));
}

TEST(Merge, OrdinaryConversationsKeepTheirOrder) {
    const std::map<std::string, std::string> map{{"L1", "100"}, {"L1a", "101"}, {"L1b", "102"}};
    const std::vector<Message> local{text("L1", t0), image("L1a", "L1", t0), file("L1b", "L1", t0),
                                     text("L2", t0 + 500, DeliveryStatus::failed)};
    // Attachments of one comment come back in any order; new replies fall in by date.
    const std::vector<Message> remote{text("100", t0 + 1), file("102", "100", t0 + 1), image("101", "100", t0 + 1),
                                      reply("200", t0 + 40), reply("300", t0 + 900)};
    EXPECT_EQ(ids(merged(local, remote, map)), (Strings{"L1", "L1a", "L1b", "200", "L2", "300"}));
    // Rows fetched before come back once.
    const std::vector<Message> known{text("L1", t0), reply("200", t0 + 40)};
    EXPECT_EQ(ids(merged(known, {reply("200", t0 + 40), reply("300", t0 + 90)}, map)), (Strings{"L1", "200", "300"}));
    // An attachment paired only by its id keeps its date's place, like any unmapped row.
    EXPECT_EQ(ids(merged({image("a5", "p", t0 + 10)}, {reply("X", t0), image("a5", "p", t0 + 10)}, {})),
              (Strings{"X", "a5"}));
    // A text never merges into an image: both stay.
    EXPECT_EQ(ids(merged({text("L1", t0)}, {image("100", "99", t0 + 1)}, map)), (Strings{"L1", "100"}));
}

TEST(Merge, LoadsIntoAFilledTableKeepLocalIdsAndWhatTheTableLearnt) {
    auto reducer = std::make_shared<RequestTableReducer>();
    // The network answered first: the table holds the server's rows.
    Actions::MessagesLoadedFromNetwork network;
    network.requestId = "42";
    network.messages = {text("100", t0 + 1), image("101", "100", t0 + 1), reply("200", t0 + 60)};
    auto state = *reducer->reduce(reducer->initialState(), network);
    state.mapLocalToRemote["L9"] = "900";  // a send that finished meanwhile

    Actions::MessagesLoadedFromDisk disk;
    disk.localId = "L1";
    disk.messages = {text("L1", t0), image("L1a", "L1", t0), text("L9", t0 + 90)};
    disk.mapLocalToRemote = {{"L1", "100"}, {"L1a", "101"}};
    state = *reducer->reduce(state, disk);
    EXPECT_EQ(ids(state.tableData), (Strings{"L1", "L1a", "200", "L9"}));
    EXPECT_EQ(state.mapLocalToRemote.at("L9"), "900");

    Actions::NewCommentsFetched fetched;
    fetched.comments = {Request::Comment{900, "late", std::nullopt, false, {}, t0 + 95, 0, "", std::nullopt},
                        Request::Comment{901, "hi", std::nullopt, true, {}, t0 + 99, 7, "Ada", std::nullopt}};
    state = *reducer->reduce(state, fetched);
    EXPECT_EQ(ids(state.tableData), (Strings{"L1", "L1a", "200", "L9", "901"}));
}

// A conversation as the device and the server see it, built from a seed.
struct Generated {
    std::vector<Message> local;
    std::vector<Message> remote;
    std::map<std::string, std::string> map;
};

Generated generate(std::mt19937& random) {
    auto chance = [&](int percent) { return std::uniform_int_distribution<int>(0, 99)(random) < percent; };
    auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    Generated out;
    Date server = t0;
    const int events = pick(0, 14);
    const int fetchedBefore = pick(0, events);  // replies up to here are on the device already
    const int since = pick(0, events);          // the server answers with what came from here on
    for (int k = 0; k < events; ++k) {
        server += pick(0, 3) * 10;  // equal dates happen
        const Date device = server + pick(-300, 300);
        const std::string remoteId = "R" + std::to_string(k);
        std::vector<Message> serverSide;
        if (chance(40)) {
            serverSide.push_back(reply(remoteId, server));
            if (chance(30)) serverSide.push_back(AgentImage{.id = remoteId + "i", .parentId = remoteId, .createdAt = server});
            if (k < fetchedBefore) out.local.insert(out.local.end(), serverSide.begin(), serverSide.end());
        } else {
            const std::string localId = "L" + std::to_string(k);
            const bool delivered = chance(65);
            const bool withText = chance(75);
            const int attachments = withText ? pick(0, 2) : pick(1, 2);
            const bool mapped = delivered && chance(90);
            if (withText) {
                out.local.push_back(text(localId, delivered ? server : device,
                                         delivered ? DeliveryStatus::delivered : DeliveryStatus::failed));
                if (delivered) serverSide.push_back(text(remoteId, server));
                if (mapped) out.map[localId] = remoteId;
            }
            for (int a = 0; a < attachments; ++a) {
                const std::string suffix = "a" + std::to_string(a);
                const bool isImage = chance(50);
                out.local.push_back(isImage ? Message(image(localId + suffix, localId, device))
                                            : Message(file(localId + suffix, localId, device)));
                if (delivered)
                    serverSide.push_back(isImage ? Message(image(remoteId + suffix, remoteId, server))
                                                 : Message(file(remoteId + suffix, remoteId, server)));
                if (mapped) out.map[localId + suffix] = remoteId + suffix;
            }
            // The server keeps a comment's attachments in no particular order.
            if (serverSide.size() > 2) std::shuffle(serverSide.begin() + (withText ? 1 : 0), serverSide.end(), random);
        }
        if (k >= since) out.remote.insert(out.remote.end(), serverSide.begin(), serverSide.end());
    }
    return out;
}

TEST(Merge, EveryMessageShowsExactlyOnceOverGeneratedConversations) {
    auto reducer = std::make_shared<RequestTableReducer>();
    for (unsigned seed = 1; seed <= 6000; ++seed) {
        std::mt19937 random(seed);
        const Generated g = generate(random);
        RequestTableState state = reducer->initialState();
        Actions::SetMessages set;
        set.messages = g.local;
        state = *reducer->reduce(state, set);
        // Every action that merges into a filled table: the map learnt by the table, or brought by
        // the disk along with its messages.
        std::vector<Message> result;
        switch (seed % 3) {
        case 0: {
            state.mapLocalToRemote = g.map;
            Actions::MergeMessages merge;
            merge.messages = g.remote;
            result = reducer->reduce(state, merge)->tableData;
            break;
        }
        case 1: {
            state.mapLocalToRemote = g.map;
            Actions::MessagesLoadedFromNetwork network;
            network.requestId = "T";
            network.messages = g.remote;
            result = reducer->reduce(state, network)->tableData;
            break;
        }
        default: {
            Actions::MessagesLoadedFromDisk disk;
            disk.localId = "K";
            disk.messages = g.remote;
            disk.mapLocalToRemote = g.map;
            result = reducer->reduce(state, disk)->tableData;
            break;
        }
        }

        std::map<std::string, int> shown;
        for (const auto& message : result) ++shown[id(message)];
        std::map<std::string, const Message*> mappedTo;  // remote id -> the local message standing for it
        for (const auto& message : g.local)
            if (const auto remote = g.map.find(id(message)); remote != g.map.end()) mappedTo[remote->second] = &message;
        std::size_t expected = g.local.size();
        for (const auto& message : g.local) ASSERT_EQ(shown[id(message)], 1) << "seed " << seed << ", local " << id(message);
        for (const auto& remote : g.remote) {
            const auto standIn = mappedTo.find(id(remote));
            const bool onDevice = std::ranges::any_of(g.local, [&](const Message& m) { return id(m) == id(remote); });
            if (standIn != mappedTo.end()) {
                ASSERT_EQ(shown[id(remote)], 0) << "seed " << seed << ", remote " << id(remote) << " shown beside its local";
                const auto local = std::ranges::find_if(result, [&](const Message& m) { return id(m) == id(*standIn->second); });
                ASSERT_EQ(createdAt(*local), createdAt(remote)) << "seed " << seed << ", " << id(remote) << " not merged";
            } else {
                ASSERT_EQ(shown[id(remote)], 1) << "seed " << seed << ", remote " << id(remote);
                if (!onDevice) ++expected;
            }
        }
        ASSERT_EQ(result.size(), expected) << "seed " << seed;
    }
}

} // namespace
