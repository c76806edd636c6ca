#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_fetcher.hpp"
#include "belvakit/attachments/cache.hpp"
#include "host_fixture.hpp"
#include "test_support.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

using namespace belvakit;
using testing_support::CapturedLog;

namespace {

const char* const loadFailure = "RequestIdMapper could not be initalized. Failed to load remote IDs";

// Counts writes, so that a test can tell a write that changes nothing from none.
class CountingStore final : public UserDefaultsStore {
public:
    std::optional<boost::json::value> value(const std::string& forKey) const override {
        auto found = values.find(forKey);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(boost::json::value value, const std::string& forKey) override {
        values[forKey] = std::move(value);
        ++writes;
    }
    std::map<std::string, boost::json::value> values;
    int writes = 0;
};

} // namespace

TEST(LocalIDStore, AddAndRemoveReportNewnessAndSaveTheDictionary) {
    auto store = std::make_shared<CountingStore>();
    LocalIDStore ids(store);
    EXPECT_TRUE(ids.addLocalId("a"));
    EXPECT_TRUE(ids.addLocalId("b"));
    const int writes = store->writes;
    EXPECT_FALSE(ids.addLocalId("a"));
    EXPECT_EQ(store->writes, writes + 1) << "a known id still writes";

    ids.remoteToLocal["300"] = "a";
    EXPECT_TRUE(ids.removeLocalId("a"));
    EXPECT_FALSE(ids.removeLocalId("zz"));
    EXPECT_EQ(store->writes, writes + 2) << "an unknown id writes nothing";
    EXPECT_EQ(store->values.at("LocalIDStore"),
              boost::json::parse(R"({"localIds": ["b"], "remoteMapKey": {"300": "a"}})"));
}

TEST(LocalIDStore, LoadsWhatWasSavedAndLogsOnlyForABrokenEntry) {
    auto store = std::make_shared<CountingStore>();
    CapturedLog log;
    LocalIDStore empty(store);
    EXPECT_EQ(log.messages(platform::LogLevel::debug), std::vector<std::string>{loadFailure}) << "nothing stored yet";
    empty.save();
    log.clear();
    LocalIDStore reloaded(store);
    EXPECT_TRUE(log.messages(platform::LogLevel::debug).empty()) << "an empty saved entry loads silently";

    for (const auto* broken : {R"({"localIds": ["a"]})", R"({"localIds": ["a"], "remoteMapKey": {"1": 2}})",
                               R"({"localIds": "a", "remoteMapKey": {}})", R"(["a"])"}) {
        log.clear();
        store->values["LocalIDStore"] = boost::json::parse(broken);
        LocalIDStore lost(store);
        EXPECT_TRUE(lost.localIdList.empty()) << broken;
        EXPECT_TRUE(lost.remoteToLocal.empty()) << broken;
        EXPECT_EQ(log.messages(platform::LogLevel::debug), std::vector<std::string>{loadFailure}) << broken;
    }
}

TEST(LocalIDStore, WithoutACoreNothingIsKept) {
    corvane::Corvane::reset();
    CapturedLog log;
    LocalIDStore ids;
    EXPECT_EQ(ids.store, nullptr);
    EXPECT_TRUE(ids.addLocalId("a"));
    EXPECT_EQ(ids.localIdList, std::vector<std::string>{"a"});
    RequestsWithFailedMessagesIdStore failed;
    EXPECT_TRUE(failed.add("1"));
    EXPECT_TRUE(failed.ids().empty());
}

TEST(RequestsWithFailedMessagesIdStore, AddsOnceRemovesAndIgnoresAWrongType) {
    auto store = std::make_shared<CountingStore>();
    RequestsWithFailedMessagesIdStore failed{store};
    EXPECT_TRUE(failed.add("7"));
    EXPECT_TRUE(failed.add("8"));
    const int writes = store->writes;
    EXPECT_FALSE(failed.add("7"));
    EXPECT_EQ(store->writes, writes);
    EXPECT_EQ(store->values.at("RequestsWithFailedMessagesIdStore"), boost::json::parse(R"(["7", "8"])"));
    failed.remove("7");
    EXPECT_EQ(failed.ids(), std::vector<std::string>{"8"});

    store->values["RequestsWithFailedMessagesIdStore"] = boost::json::parse(R"({"7": true})");
    EXPECT_TRUE(failed.ids().empty());
    EXPECT_TRUE(failed.add("9"));
    EXPECT_EQ(failed.ids(), std::vector<std::string>{"9"});
}

// Two lives of the host over one directory: the id maps come back from the session store.
TEST(LocalIDStore, IdMapsSurviveARestartOfTheHost) {
    testing_support::TemporaryDirectory directory;
    {
        queue_testing::Host host(directory.path());
        LocalIDStore ids;
        ids.addLocalId("local-1");
        ids.remoteToLocal["501"] = "local-1";
        ids.save();
        RequestsWithFailedMessagesIdStore{}.add("501");
    }
    EXPECT_EQ(corvane::Corvane::instance(), nullptr);
    CapturedLog log;
    queue_testing::Host host(directory.path());
    LocalIDStore ids;
    EXPECT_EQ(ids.localIdList, std::vector<std::string>{"local-1"});
    EXPECT_EQ(ids.remoteToLocal, (std::map<std::string, std::string>{{"501", "local-1"}}));
    EXPECT_EQ(RequestsWithFailedMessagesIdStore{}.ids(), std::vector<std::string>{"501"});
    EXPECT_TRUE(log.messages(platform::LogLevel::debug).empty());
}

TEST(LocalIDStore, LocalRequestsComeFromTheCachedConversationsInListOrder) {
    testing_support::TemporaryDirectory directory;
    queue_testing::Host host(directory.path());
    auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
    ASSERT_NE(cache, nullptr);
    UserMessage first{.id = "m1", .status = DeliveryStatus::delivered, .body = "First words", .createdAt = 100};
    const UserImage image{.id = "img", .parentId = "m1", .status = DeliveryStatus::delivered, .createdAt = 101};
    persistConversation({first, image}, "conv-a", std::nullopt, {}, 1, false, cache);
    persistConversation({image}, "conv-b", std::nullopt, {}, 1, false, cache);
    persistConversation({UserMessage{.id = "m3", .status = DeliveryStatus::delivered, .body = "Second", .createdAt = 200}}, "conv-c", std::nullopt, {}, 1,
                        false, cache);

    auto store = std::make_shared<CountingStore>();
    LocalIDStore ids(store);
    for (const auto* id : {"conv-c", "missing", "conv-b", "conv-a"}) ids.addLocalId(id);
    std::optional<std::vector<dastrel::CRVRequest>> requests;
    ids.fetchLocalRequests(cache, [&](std::vector<dastrel::CRVRequest> found) { requests = std::move(found); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return requests.has_value(); }));
    ASSERT_EQ(requests->size(), 2u);
    EXPECT_EQ((*requests)[0].requestId, "m3");
    EXPECT_EQ((*requests)[0].requestDescription, "Second");
    EXPECT_EQ((*requests)[1].requestId, "img") << "the id of the last message";
    EXPECT_EQ((*requests)[1].requestDescription, "First words");
    EXPECT_EQ((*requests)[1].createdAt, 100);

    std::optional<std::vector<Message>> loaded;
    RequestFetcher fetcher(makeRequestProvider(), cache);
    fetcher.loadFromDisk("conv-a", [&](std::vector<Message> messages, auto&&...) { loaded = std::move(messages); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return loaded.has_value(); }));
    EXPECT_EQ(loaded->size(), 2u);
}
