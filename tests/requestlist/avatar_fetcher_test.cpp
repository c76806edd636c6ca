#include "belvakit/Request/requestlist/avatar_fetcher.hpp"

#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace belvakit;

namespace {

// Answers from another thread, as a network provider does.
class FakeProvider final : public AttachmentsProvider {
public:
    // An empty answer is a failure.
    explicit FakeProvider(std::string answer) : answer_(std::move(answer)) {}
    void getAttachment(const std::string& url, Completion completion) override {
        requested.push_back(url);
        std::thread([answer = answer_, completion] {
            if (answer.empty())
                completion(std::nullopt, dastrel::ProviderError{});
            else
                completion(answer, std::nullopt);
        }).detach();
    }
    std::vector<std::string> requested;

private:
    std::string answer_;
};

std::string pngBytes() { return *platform::encodePNG(*platform::makeImage(3, 2)); }

AgentAvatarInfo ada() { return AgentAvatarInfo{"https://avatars/people/7.png", nullptr, "42", "Ada", 7}; }

struct Outcome {
    std::optional<AgentAvatarInfo> info;
    bool fromNetwork = false;
    bool onMainThread = false;
};

Outcome fetch(const AvatarFetcher& fetcher, const AgentAvatarInfo& info) {
    Outcome outcome;
    fetcher.fetch(info, [&](AgentAvatarInfo result, bool fromNetwork) {
        outcome = {std::move(result), fromNetwork, platform::MainQueue::shared().isMainThread()};
    });
    EXPECT_TRUE(testing_support::pumpMainQueueUntil([&] { return outcome.info.has_value(); }));
    return outcome;
}

} // namespace

TEST(AvatarFetcher, DownloadsOnceAndThenServesFromTheCache) {
    testing_support::TemporaryDirectory directory;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    auto provider = std::make_shared<FakeProvider>(pngBytes());
    const AvatarFetcher fetcher{provider, cache};

    const auto first = fetch(fetcher, ada());
    ASSERT_TRUE(first.info->avatarImage);
    EXPECT_EQ(first.info->avatarImage->width, 3);
    EXPECT_TRUE(first.fromNetwork);
    EXPECT_TRUE(first.onMainThread);
    EXPECT_EQ(first.info->agentName, "Ada");

    std::atomic<bool> stored = false;
    cache->run([&] { stored = true; });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return stored.load(); }));
    EXPECT_TRUE(cache->fileURL("https:avatarspeople7.png"));

    const auto second = fetch(fetcher, ada());
    ASSERT_TRUE(second.info->avatarImage);
    EXPECT_FALSE(second.fromNetwork);
    EXPECT_EQ(provider->requested, (std::vector<std::string>{"https://avatars/people/7.png"}));
}

TEST(AvatarFetcher, FailuresAndMissingUrlsLeaveTheInfoWithoutImage) {
    testing_support::TemporaryDirectory directory;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    auto failing = std::make_shared<FakeProvider>("");
    const auto failed = fetch(AvatarFetcher{failing, cache}, ada());
    EXPECT_FALSE(failed.info->avatarImage);
    EXPECT_FALSE(failed.fromNetwork);

    auto garbage = std::make_shared<FakeProvider>(std::string("not an image"));
    const auto unreadable = fetch(AvatarFetcher{garbage, cache}, ada());
    EXPECT_FALSE(unreadable.info->avatarImage);
    EXPECT_FALSE(cache->fileURL(avatarCacheKey("https://avatars/people/7.png"))) << "junk is not cached";

    auto noUrl = ada();
    noUrl.avatarUrl.reset();
    const auto skipped = fetch(AvatarFetcher{failing, cache}, noUrl);
    EXPECT_EQ(*skipped.info, noUrl);
    EXPECT_EQ(failing->requested.size(), 1u);
}
