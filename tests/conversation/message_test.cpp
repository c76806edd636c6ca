#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/Request/conversation/message_list.hpp"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace belvakit;

namespace {

// What a Message should hold, kept as plain values: the record as its file text, and the flag.
struct Expected {
    std::string text;
    bool endOfGroup = false;
};

Expected expectedOf(const Message& message) { return {encodeMessage(message), isEndOfGroup(message)}; }

Message someMessage(std::mt19937& random, int serial) {
    const std::string id = "m" + std::to_string(serial);
    const bool end = random() % 2 == 0;
    switch (random() % 4) {
    case 0: return {UserMessage{id, DeliveryStatus::delivered, "body " + id + std::string(40, 'x'), std::nullopt, 1.0}, end};
    case 1: return {AgentMessage{id, "agent " + id, "<p>agent</p>", 2.0, 7, "Ada", "https://a/7.png"}, end};
    case 2: {
        UserImage image;
        image.id = id;
        image.parentId = "p";
        image.filename = "picture-with-a-long-name-" + id + ".png";
        return {image, end};
    }
    default: {
        AgentFile file;
        file.id = id;
        file.filename = "report-" + id + ".pdf";
        file.size = 99;
        return {file, end};
    }
    }
}

// One change through the writing side of the interface.
void change(Message& message, std::mt19937& random) {
    switch (random() % 5) {
    case 0: setIsEndOfGroup(message, !isEndOfGroup(message)); break;
    case 1: setCreatedAt(message, createdAt(message) + 1); break;
    case 2: setStatus(message, status(message) == DeliveryStatus::failed ? DeliveryStatus::delivered : DeliveryStatus::failed); break;
    case 3:
        if (!message.edit<UserMessage>([](UserMessage& text) { text.body += "!"; }))
            message.edit<AgentMessage>([](AgentMessage& agent) { agent.body += "?"; });
        break;
    default:
        message.update([](auto& record) { record.id += "'"; });
        break;
    }
}

} // namespace

// Copies share a record until one of them changes; no change, assignment or move may ever show in
// another Message. Each step is checked against every Message of the pool.
TEST(Message, CopiesBehaveAsIndependentValuesUnderRandomOperations) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 random(seed);
        std::vector<Message> pool;
        std::vector<Expected> expected;
        for (int i = 0; i < 6; ++i) {
            pool.push_back(someMessage(random, i));
            expected.push_back(expectedOf(pool.back()));
        }
        int serial = 100;
        for (int step = 0; step < 300; ++step) {
            const std::size_t a = random() % pool.size();
            const std::size_t b = random() % pool.size();
            switch (random() % 7) {
            case 0:
                pool[a] = pool[b];
                expected[a] = expected[b];
                break;
            case 1:
                if (a != b) {
                    pool[a] = std::move(pool[b]);
                    expected[a] = expected[b];
                    expected[b] = expectedOf(Message());  // a moved-from Message is an empty text
                }
                break;
            case 2: {
                Message copy(pool[b]);
                change(copy, random);
                expected[a] = expectedOf(copy);
                pool[a] = std::move(copy);
                break;
            }
            case 3:
                change(pool[a], random);
                expected[a] = expectedOf(pool[a]);
                break;
            case 4:
                pool[a].swap(pool[b]);
                std::swap(expected[a], expected[b]);
                break;
            case 5:
                pool[a] = someMessage(random, serial++);
                expected[a] = expectedOf(pool[a]);
                break;
            default: {
                const Message& same = pool[a];
                pool[a] = same;  // assigning a Message to itself keeps it
                break;
            }
            }
            for (std::size_t i = 0; i < pool.size(); ++i) {
                ASSERT_EQ(encodeMessage(pool[i]), expected[i].text) << "seed " << seed << " step " << step << " slot " << i;
                ASSERT_EQ(isEndOfGroup(pool[i]), expected[i].endOfGroup) << "seed " << seed << " step " << step;
                // What the Message keeps beside its record follows the record.
                ASSERT_EQ(createdAt(pool[i]), pool[i].visit([](const auto& record) { return record.createdAt; }));
                ASSERT_EQ(pool[i].idHash(), std::hash<std::string_view>{}(id(pool[i])));
            }
        }
    }
}

TEST(Message, SharesItsRecordUntilChangedAndAnswersForItsKind) {
    const Message original(UserMessage{"u1", DeliveryStatus::delivered, "hello", std::nullopt, 5.0});
    Message copy = original;
    EXPECT_TRUE(copy.sharesRecordWith(original));

    // Setting what a field already holds, or the flag, keeps the shared record.
    EXPECT_TRUE(setStatus(copy, DeliveryStatus::delivered));
    setCreatedAt(copy, 5.0);
    setIsEndOfGroup(copy, true);
    EXPECT_TRUE(copy.sharesRecordWith(original));
    EXPECT_FALSE(isEndOfGroup(original));

    EXPECT_TRUE(setStatus(copy, DeliveryStatus::failed));
    EXPECT_FALSE(copy.sharesRecordWith(original));
    EXPECT_EQ(status(original), DeliveryStatus::delivered);

    Message agent = AgentMessage{"a1", "hi", std::nullopt, 1.0, 3, "Ada", std::nullopt};
    EXPECT_FALSE(setStatus(agent, DeliveryStatus::failed)) << "agent rows have no status";
    EXPECT_EQ(agent.getIf<UserMessage>(), nullptr);
    EXPECT_FALSE(agent.edit<UserMessage>([](UserMessage& text) { text.body = "never"; }));
    EXPECT_EQ(*bodyOf(agent), "hi");
    EXPECT_THROW((void)agent.get<UserImage>(), std::bad_variant_access);
    EXPECT_TRUE(agent.holds<AgentMessage>());
    EXPECT_EQ(agent.index(), 1u);

    const Message empty;
    EXPECT_TRUE(empty.holds<UserMessage>());
    EXPECT_EQ(id(empty), "");
}

// Copies of one record live and die on several threads at once; each thread changes its own.
TEST(Message, CopiesMayBeUsedAndDroppedOnDifferentThreads) {
    const Message shared(UserMessage{"u1", DeliveryStatus::delivered, std::string(64, 'b'), std::nullopt, 1.0});
    std::array<std::vector<Message>, 4> kept;
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kept.size(); ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                Message copy = shared;
                if (i % 3 == 0) copy.edit<UserMessage>([&](UserMessage& text) { text.body = "thread " + std::to_string(t); });
                if (i % 7 == 0) kept[t].push_back(std::move(copy));
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(*bodyOf(shared), std::string(64, 'b'));
    for (std::size_t t = 0; t < kept.size(); ++t) {
        ASSERT_EQ(kept[t].size(), 286u);
        for (std::size_t i = 0; i < kept[t].size(); ++i) {
            const bool changed = (i * 7) % 3 == 0;
            EXPECT_EQ(*bodyOf(kept[t][i]), changed ? "thread " + std::to_string(t) : std::string(64, 'b'));
            EXPECT_EQ(kept[t][i].sharesRecordWith(shared), !changed);
        }
    }
}
