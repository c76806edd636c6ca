#include "belvakit/Request/requestlist/avatar_fetcher.hpp"

#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <thread>

using namespace belvakit;

namespace {

// Answers from another thread, as a network provider does; an empty answer is a failure.
class FakeProvider final : public AttachmentsProvider {
public:
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

const AgentAvatarInfo ada{"https://avatars/people/7.png", nullptr, "42", "Ada", 7};

std::pair<AgentAvatarInfo, bool> fetch(const AvatarFetcher& fetcher, const AgentAvatarInfo& info) {
    std::optional<std::pair<AgentAvatarInfo, bool>> outcome;
    fetcher.fetch(info, [&](AgentAvatarInfo result, bool fromNetwork) {
        EXPECT_TRUE(platform::MainQueue::shared().isMainThread());
        outcome.emplace(std::move(result), fromNetwork);
    });
    EXPECT_TRUE(testing_support::pumpMainQueueUntil([&] { return outcome.has_value(); }));
    return *outcome;
}

} // namespace

TEST(AvatarFetcher, DownloadsOnceThenServesFromTheCache) {
    testing_support::TemporaryDirectory directory;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    auto provider = std::make_shared<FakeProvider>(*platform::encodePNG(*platform::makeImage(3, 2)));
    const AvatarFetcher fetcher{provider, cache};
    const auto [first, downloaded] = fetch(fetcher, ada);
    ASSERT_TRUE(first.avatarImage);
    EXPECT_EQ(first.avatarImage->width, 3);
    EXPECT_TRUE(downloaded);
    bool stored = false;
    cache->run([&] { platform::MainQueue::shared().async([&] { stored = true; }); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return stored; }));
    EXPECT_TRUE(cache->fileURL("https:avatarspeople7.png"));
    const auto [second, downloadedAgain] = fetch(fetcher, ada);
    EXPECT_TRUE(second.avatarImage);
    EXPECT_FALSE(downloadedAgain);
    EXPECT_EQ(provider->requested.size(), 1u);
}

TEST(AvatarFetcher, FailuresJunkAndMissingUrlsLeaveTheInfoWithoutImage) {
    testing_support::TemporaryDirectory directory;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    EXPECT_FALSE(fetch(AvatarFetcher{std::make_shared<FakeProvider>(""), cache}, ada).first.avatarImage);
    EXPECT_FALSE(fetch(AvatarFetcher{std::make_shared<FakeProvider>("not an image"), cache}, ada).first.avatarImage);
    EXPECT_FALSE(cache->fileURL(avatarCacheKey(*ada.avatarUrl))) << "junk is not cached";
    auto noUrl = ada;
    noUrl.avatarUrl.reset();
    auto provider = std::make_shared<FakeProvider>("x");
    EXPECT_EQ(fetch(AvatarFetcher{provider, cache}, noUrl).first, noUrl);
    EXPECT_TRUE(provider->requested.empty());
}
