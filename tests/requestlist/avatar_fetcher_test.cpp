#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"

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

TEST(AvatarFetcher, KeepsOnlyRealImagesUnderTheirKeyAndServesThemFromTheCacheAfterwards) {
    testing_support::TemporaryDirectory directory;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    const auto stored = [&] {
        bool done = false;
        cache->run([&] { platform::MainQueue::shared().async([&] { done = true; }); });
        EXPECT_TRUE(testing_support::pumpMainQueueUntil([&] { return done; }));
        return cache->fileURL("https:avatarspeople7.png").has_value();
    };
    EXPECT_FALSE(fetch(AvatarFetcher{std::make_shared<FakeProvider>(""), cache}, ada).first.avatarImage);
    EXPECT_FALSE(fetch(AvatarFetcher{std::make_shared<FakeProvider>("not an image"), cache}, ada).first.avatarImage);
    EXPECT_FALSE(stored()) << "junk is not cached";
    auto noUrl = ada;
    noUrl.avatarUrl.reset();
    auto provider = std::make_shared<FakeProvider>(*platform::encodePNG(*platform::makeImage(3, 2)));
    EXPECT_EQ(fetch(AvatarFetcher{provider, cache}, noUrl).first, noUrl);
    EXPECT_TRUE(provider->requested.empty());

    const AvatarFetcher fetcher{provider, cache};
    const auto [first, downloaded] = fetch(fetcher, ada);
    ASSERT_TRUE(first.avatarImage);
    EXPECT_EQ(first.avatarImage->width, 3);
    EXPECT_TRUE(downloaded);
    EXPECT_TRUE(stored());
    const auto [second, downloadedAgain] = fetch(fetcher, ada);
    EXPECT_TRUE(second.avatarImage);
    EXPECT_FALSE(downloadedAgain);
    EXPECT_EQ(provider->requested.size(), 1u);
}

TEST(RequestListService, FetchesEachAvatarOnceAndFillsEveryRowThatShowsIt) {
    testing_support::TemporaryDirectory directory;
    testing_support::CapturedLog log;
    auto cache = std::make_shared<ConcreteCache>(directory.path(), true);
    auto provider = std::make_shared<FakeProvider>(*platform::encodePNG(*platform::makeImage(3, 2)));
    auto failing = std::make_shared<FakeProvider>("");
    const auto row = [](std::string id, std::optional<AgentAvatarInfo> info) {
        RequestListCellData cell;
        cell.requestId = std::move(id);
        cell.agentAvatarInfo = std::move(info);
        return cell;
    };
    auto emptyUrl = ada;
    emptyUrl.avatarUrl = "";
    std::vector<RequestListCellData> rows{row("1", ada), row("2", std::nullopt), row("3", ada), row("4", emptyUrl)};

    std::optional<std::vector<RequestListCellData>> filled;
    RequestListService().fetchAgentAvatars(rows, cache, provider, [&](auto result) { filled = std::move(result); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return filled.has_value(); }));
    ASSERT_EQ(filled->size(), 4u);
    EXPECT_EQ((*filled)[2].requestId, "3");
    ASSERT_TRUE((*filled)[0].agentAvatarInfo->avatarImage);
    EXPECT_EQ((*filled)[0].agentAvatarInfo->avatarImage, (*filled)[2].agentAvatarInfo->avatarImage);
    EXPECT_FALSE((*filled)[1].agentAvatarInfo);
    EXPECT_FALSE((*filled)[3].agentAvatarInfo->avatarImage);
    EXPECT_EQ(provider->requested, std::vector<std::string>{*ada.avatarUrl});
    EXPECT_EQ(log.count(platform::LogLevel::debug, "Agent avatar fetched success"), 1u);

    // The next pass finds the kept bytes in the cache, for every row that shows them.
    filled.reset();
    RequestListService().fetchAgentAvatars(rows, cache, failing, [&](auto result) { filled = std::move(result); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return filled.has_value(); }));
    ASSERT_TRUE((*filled)[0].agentAvatarInfo->avatarImage);
    EXPECT_EQ((*filled)[0].agentAvatarInfo->avatarImage->width, 3);
    EXPECT_TRUE((*filled)[2].agentAvatarInfo->avatarImage);
    EXPECT_FALSE((*filled)[3].agentAvatarInfo->avatarImage);
    EXPECT_TRUE(failing->requested.empty());

    // Without an image to be had, every row stays as it was.
    auto bob = ada;
    bob.avatarUrl = "https://avatars/people/8.png";
    filled.reset();
    RequestListService().fetchAgentAvatars({row("5", bob), row("6", bob)}, cache, failing,
                                           [&](auto result) { filled = std::move(result); });
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return filled.has_value(); }));
    EXPECT_EQ(*filled, (std::vector<RequestListCellData>{row("5", bob), row("6", bob)}));
    EXPECT_EQ(failing->requested.size(), 1u);
}
