#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/attachments/cache.hpp"
#include "fixtures.hpp"
#include "platform/clock.hpp"
#include "platform/json.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <set>

using namespace belvakit;
using namespace conversation_fixtures;
namespace json = boost::json;

namespace {

// Keeps what is stored, synchronously.
class RecordingCache final : public Cache {
public:
    void store(const std::string& key, std::string bytes) override { stored.emplace_back(key, std::move(bytes)); }
    void fetch(const std::string&, FetchCompletion completion) override { completion(std::nullopt); }
    void update(const std::string& key, Change change) override {
        const auto last = std::find_if(stored.rbegin(), stored.rend(), [&](const auto& entry) { return entry.first == key; });
        if (auto bytes = change(last == stored.rend() ? std::nullopt : std::optional(last->second))) store(key, std::move(*bytes));
    }
    std::optional<std::filesystem::path> fileURL(const std::string&) const override { return std::nullopt; }
    void run(std::function<void()> block) override { block(); }
    std::vector<std::pair<std::string, std::string>> stored;
};

struct Loaded {
    std::vector<Message> messages;
    std::map<std::string, std::string> map;
    std::optional<std::string> remoteRequestId;
    bool ticketClosed = true;
    int calls = 0;
};

Loaded load(std::string_view bytes, int version = 1) {
    Loaded loaded;
    loadConversation(bytes, version, [&](auto messages, auto map, auto remoteId, bool closed) {
        loaded.messages = std::move(messages);
        loaded.map = std::move(map);
        loaded.remoteRequestId = std::move(remoteId);
        loaded.ticketClosed = closed;
        ++loaded.calls;
    });
    return loaded;
}

std::set<std::string> keysOf(const json::object& object) {
    std::set<std::string> keys;
    for (const auto& entry : object) keys.emplace(entry.key());
    return keys;
}

std::vector<std::string> idsOf(const std::vector<Message>& messages) {
    std::vector<std::string> ids;
    for (const auto& message : messages) ids.push_back(id(message));
    return ids;
}

json::object encoded(const Message& message) { return json::parse(encodeMessage(message)).as_object(); }

std::string listWith(const json::array& messages, std::int64_t version = 1) {
    json::object root{{"version", version},
                      {"timeStamp", 1700000000.5},
                      {"messages", messages},
                      {"mapLocalToRemote", json::object{{"L1", "901"}}},
                      {"ticketClosed", true}};
    return json::serialize(root);
}

} // namespace

TEST(MessageFormat, EveryRecordKindSurvivesARoundTrip) {
    const std::vector<Message> all{Message(userMessage("1"), true), agentMessage("2"), userImage("3"),
                                   Message(agentImage("4"), true), userFile("5"), agentFile("6")};
    for (const auto& message : all) {
        const auto back = decodeMessage(encodeMessage(message));
        ASSERT_TRUE(back) << encodeMessage(message);
        ASSERT_EQ(back->index(), message.index());
        EXPECT_EQ(json::parse(encodeMessage(*back)), json::parse(encodeMessage(message)));
    }

    // An absent html body or avatar comes back empty; bitmaps are never written.
    auto agent = agentMessage("2");
    agent.avatarURL.reset();
    agent.htmlBody.reset();
    EXPECT_EQ(encoded(agent).at("html_body"), "");
    const auto agentBack = (*decodeMessage(encodeMessage(agent))).get<AgentMessage>();
    EXPECT_EQ(agentBack.avatarURL, std::optional<std::string>(""));
    EXPECT_EQ(agentBack.htmlBody, std::optional<std::string>(""));
    auto picture = userImage("3");
    picture.image = platform::makeImage(2, 2);
    picture.thumbnailImage = platform::makeImage(1, 1);
    const auto pictureBack = (*decodeMessage(encodeMessage(picture))).get<UserImage>();
    EXPECT_EQ(pictureBack.image, nullptr);
    EXPECT_EQ(pictureBack.thumbnailImage, nullptr);
}

TEST(MessageFormat, EachRecordWritesExactlyItsColumnWithTheRightJsonTypes) {
    const std::set<std::string> common{"id", "type", "createdAt", "isEndOfGroup"};
    auto with = [&](std::initializer_list<const char*> extra) {
        auto keys = common;
        for (const char* key : extra) keys.emplace(key);
        return keys;
    };
    EXPECT_EQ(keysOf(encoded(userMessage("1"))), with({"status", "body", "html_body"}));
    EXPECT_EQ(keysOf(encoded(agentMessage("2"))), with({"body", "html_body", "userID", "name", "avatarURL"}));
    EXPECT_EQ(keysOf(encoded(userImage("3"))), with({"parentId", "filename", "status", "imageUrl", "thumbnailUrl",
                                                      "imageSize-width", "imageSize-height", "fileType"}));
    EXPECT_EQ(keysOf(encoded(agentImage("4"))),
              with({"parentId", "filename", "imageUrl", "thumbnailUrl", "imageSize-width", "imageSize-height",
                    "fileType", "userID", "name", "avatarURL"}));
    EXPECT_EQ(keysOf(encoded(userFile("5"))),
              with({"parentId", "filename", "status", "attachmentUrl", "size", "fileType", "downloaded"}));
    EXPECT_EQ(keysOf(encoded(agentFile("6"))), with({"parentId", "filename", "attachmentUrl", "size", "fileType",
                                                      "downloaded", "userID", "name", "avatarURL"}));

    const auto file = encoded(userFile("5"));
    EXPECT_EQ(file.at("type"), "userFile");
    EXPECT_TRUE(file.at("status").is_int64());
    EXPECT_EQ(file.at("status").as_int64(), 2);
    EXPECT_EQ(file.at("fileType").as_int64(), 2);
    EXPECT_TRUE(file.at("downloaded").is_bool());
    EXPECT_TRUE(file.at("size").is_int64());
    EXPECT_TRUE(file.at("createdAt").is_double());
    const auto image = encoded(agentImage("4"));
    EXPECT_TRUE(image.at("imageSize-width").is_double());
    EXPECT_EQ(image.at("fileType").as_int64(), 12);
}

TEST(MessageFormat, ARecordFailingARequirementIsDroppedAlone) {
    auto withKey = [](Message message, const char* key, json::value value) {
        auto object = encoded(message);
        object[key] = std::move(value);
        return object;
    };
    auto without = [](Message message, const char* key) {
        auto object = encoded(message);
        object.erase(key);
        return object;
    };
    json::array messages{
        encoded(userMessage("keep-1")),
        withKey(userMessage("status-4"), "status", 4),
        withKey(userFile("fileType-13"), "fileType", 13),
        withKey(userFile("fileType-negative"), "fileType", -1),
        without(agentMessage("no-html"), "html_body"),
        without(agentImage("no-avatar"), "avatarURL"),
        withKey(userMessage("status-as-text"), "status", "1"),
        withKey(userFile("size-as-double"), "size", 1.5),
        withKey(agentFile("downloaded-as-number"), "downloaded", 1),
        withKey(userMessage("unknown-type"), "type", "videoMessage"),
        withKey(userMessage("type-as-number"), "type", 0),
        json::object{{"id", "d"}, {"type", "date"}, {"date", 1.0}, {"createdAt", 1.0}, {"isEndOfGroup", false}},
        json::object{{"id", "s"}, {"type", "systemMessage"}, {"message", "m"}, {"createdAt", 1.0},
                     {"isEndOfGroup", false}},
        encoded(agentFile("keep-2")),
        withKey(agentMessage("keep-integer-date"), "createdAt", 1700000000),
    };
    const auto loaded = load(listWith(messages));
    ASSERT_EQ(loaded.calls, 1);
    EXPECT_EQ(idsOf(loaded.messages), (std::vector<std::string>{"keep-1", "keep-2", "keep-integer-date"}));
    EXPECT_EQ(loaded.map, (std::map<std::string, std::string>{{"L1", "901"}}));
    EXPECT_TRUE(loaded.ticketClosed);
    EXPECT_FALSE(loaded.remoteRequestId);
}

TEST(MessageFormat, AnythingButAReadableListOfTheAskedVersionIsAnEmptyConversation) {
    const json::array one{encoded(userMessage("1"))};
    auto expectEmpty = [](const Loaded& loaded, const std::string& why) {
        EXPECT_EQ(loaded.calls, 1) << why;
        EXPECT_TRUE(loaded.messages.empty()) << why;
        EXPECT_TRUE(loaded.map.empty()) << why;
        EXPECT_FALSE(loaded.remoteRequestId) << why;
        EXPECT_FALSE(loaded.ticketClosed) << why;
    };
    ASSERT_EQ(load(listWith(one)).messages.size(), 1u);
    expectEmpty(load(listWith(one, 2)), "version 2");
    expectEmpty(load(listWith(one), 2), "asked for version 2");
    expectEmpty(load(""), "no bytes");
    expectEmpty(load("[1,2]"), "not an object");
    expectEmpty(load(listWith(one).substr(0, 40)), "truncated");

    auto damaged = [&](const char* key, json::value value) {
        auto root = json::parse(listWith(one)).as_object();
        if (value.is_null())
            root.erase(key);
        else
            root[key] = std::move(value);
        return json::serialize(root);
    };
    expectEmpty(load(damaged("ticketClosed", nullptr)), "no ticketClosed");
    expectEmpty(load(damaged("version", 1.0)), "version as a double");
    expectEmpty(load(damaged("timeStamp", "now")), "timeStamp as text");
    expectEmpty(load(damaged("mapLocalToRemote", json::object{{"L1", 901}})), "map to a number");
    expectEmpty(load(damaged("messages", json::array{encoded(userMessage("1")), 5})), "a message that is no object");

    // The remote request id is optional: of the wrong type it is left out, not the list.
    EXPECT_EQ(load(damaged("remoteRequestId", "4711")).remoteRequestId, "4711");
    const auto wrongType = load(damaged("remoteRequestId", 4711));
    EXPECT_FALSE(wrongType.remoteRequestId);
    EXPECT_EQ(wrongType.messages.size(), 1u);
}

TEST(PersistConversation, KeepsFailedAndAgentRowsButNotQueuedOnes) {
    auto cache = std::make_shared<RecordingCache>();
    const std::vector<Message> messages{userMessage("queued", DeliveryStatus::notDelivered),
                                        userMessage("failed", DeliveryStatus::failed), agentMessage("agent"),
                                        userImage("queued-image", DeliveryStatus::notDelivered),
                                        userFile("sent-file", DeliveryStatus::delivered)};
    persistConversation(messages, "LOCAL-1", "4711", {{"LOCAL-1", "4711"}}, 1, true, cache);
    ASSERT_EQ(cache->stored.size(), 1u);
    EXPECT_EQ(cache->stored[0].first, "LOCAL-1");

    const auto root = json::parse(cache->stored[0].second).as_object();
    EXPECT_EQ(root.at("version"), 1);
    EXPECT_TRUE(root.at("timeStamp").is_double());
    EXPECT_EQ(root.at("remoteRequestId"), "4711");
    EXPECT_EQ(root.at("ticketClosed"), true);

    const auto loaded = load(cache->stored[0].second);
    EXPECT_EQ(idsOf(loaded.messages), (std::vector<std::string>{"failed", "agent", "sent-file"}));
    EXPECT_EQ(loaded.map.at("LOCAL-1"), "4711");
    EXPECT_TRUE(loaded.ticketClosed);
}

// An older copy writes only what it was asked to over the saved entry: a message deleted since
// stays deleted, one added since stays, and a fetched copy of a comment the copy sent goes.
TEST(PersistConversation, ChangesWrittenOverTheSavedEntryLeaveTheRestAsSaved) {
    auto cache = std::make_shared<RecordingCache>();
    persistConversation({agentMessage("a1"), userMessage("u1"), userMessage("R2"), agentMessage("x")}, "KEY", "4711",
                        {{"u1", "R1"}}, 1, false, cache);
    const std::vector<Message> older{agentMessage("a1"), userMessage("u1"), userMessage("deleted", DeliveryStatus::failed),
                                     userMessage("L2")};
    persistChangesOver(older, {.changed = {"L2"}, .removed = {}}, "KEY", std::nullopt, {{"L2", "R2"}}, 1, false, cache);

    const auto loaded = load(cache->stored.back().second);
    EXPECT_EQ(idsOf(loaded.messages), (std::vector<std::string>{"a1", "u1", "x", "L2"}));
    EXPECT_EQ(loaded.map, (std::map<std::string, std::string>{{"u1", "R1"}, {"L2", "R2"}}));
    EXPECT_EQ(loaded.remoteRequestId, "4711");
}

TEST(PersistConversation, WritesNothingWithoutAKeyOrForAnUnwritableValue) {
    auto cache = std::make_shared<RecordingCache>();
    persistConversation({userMessage("1")}, std::nullopt, std::nullopt, {}, 1, false, cache);
    auto broken = userMessage("2");
    broken.createdAt = std::numeric_limits<double>::infinity();
    persistConversation({broken}, "KEY", std::nullopt, {}, 1, false, cache);
    EXPECT_TRUE(cache->stored.empty());

    persistConversation({}, "KEY", std::nullopt, {}, 1, false, cache);
    ASSERT_EQ(cache->stored.size(), 1u);
    EXPECT_FALSE(json::parse(cache->stored[0].second).as_object().contains("remoteRequestId"));
}

TEST(PersistConversation, StampsThePlatformClockAndReadsEveryDateBackBitForBit) {
    const auto previous = platform::setWallClock(std::make_shared<platform::FixedWallClock>(1800000000.123456789));
    auto cache = std::make_shared<RecordingCache>();
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937_64 random(seed);
        // Whole doubles of the seconds since 1970 a server or a device may send, any fraction bits.
        std::uniform_real_distribution<double> date(1.0e9, 2.0e9), size(0.0, 8000.0);
        std::vector<Message> messages;
        const int count = 1 + static_cast<int>(random() % 8);
        for (int i = 0; i < count; ++i) {
            const auto id = std::to_string(i);
            switch (random() % 3) {
            case 0: { auto m = userMessage(id); m.createdAt = date(random); messages.push_back(m); break; }
            case 1: { auto m = agentImage(id); m.createdAt = date(random);
                      m.imageSize = {size(random), size(random)}; messages.push_back(m); break; }
            default: { auto m = userImage(id); m.createdAt = date(random);
                       m.imageSize = {size(random), size(random)}; messages.push_back(m); break; }
            }
        }
        cache->stored.clear();
        persistConversation(messages, "KEY", std::nullopt, {}, 1, false, cache);
        ASSERT_EQ(cache->stored.size(), 1u);
        const auto root = platform::parseJson(cache->stored[0].second);
        ASSERT_TRUE(root);
        ASSERT_EQ(root->as_object().at("timeStamp").as_double(), 1800000000.123456789);

        const auto loaded = load(cache->stored[0].second);
        ASSERT_EQ(loaded.messages.size(), messages.size());
        for (std::size_t i = 0; i < messages.size(); ++i) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(createdAt(loaded.messages[i])),
                      std::bit_cast<std::uint64_t>(createdAt(messages[i])))
                << "message " << i;
            const auto sizeOf = [](const Message& m) {
                return m.visit([](const auto& r) -> std::optional<platform::Size> {
                    if constexpr (requires { r.imageSize; }) return r.imageSize; else return std::nullopt;
                });
            };
            if (const auto original = sizeOf(messages[i])) {
                const auto back = sizeOf(loaded.messages[i]);
                ASSERT_TRUE(back);
                ASSERT_EQ(std::bit_cast<std::uint64_t>(back->width), std::bit_cast<std::uint64_t>(original->width));
                ASSERT_EQ(std::bit_cast<std::uint64_t>(back->height), std::bit_cast<std::uint64_t>(original->height));
            }
        }
    }
    platform::setWallClock(previous);
}
