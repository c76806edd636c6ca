#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "belvakit/toolkit/avatar_title.hpp"
#include "navigation_fixture.hpp"
#include "platform/image_codec.hpp"
#include "platform/url_opener.hpp"
#include "uikit/animation.hpp"
#include "uikit/probe.hpp"

#include <gtest/gtest.h>

#include <algorithm>

using namespace belvakit;

namespace {

// Bytes by key in memory, answering on the main queue as the real cache does.
class MemoryCache final : public Cache {
public:
    void store(const std::string& key, std::string bytes) override { entries[key] = std::move(bytes); }
    void fetch(const std::string& key, FetchCompletion completion) override {
        ++fetches;
        const auto found = entries.find(key);
        std::optional<std::string> bytes = found == entries.end() ? std::nullopt : std::optional(found->second);
        platform::MainQueue::shared().async([completion, bytes] { completion(bytes); });
    }
    std::optional<std::filesystem::path> fileURL(const std::string&) const override { return std::nullopt; }
    void run(std::function<void()> block) override { block(); }

    std::map<std::string, std::string> entries;
    int fetches = 0;
};

platform::ImagePtr solid(int size, std::uint8_t red) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(size, size));
    for (std::size_t pixel = 0; pixel < image->rgba.size(); pixel += 4) {
        image->rgba[pixel] = red;
        image->rgba[pixel + 3] = 255;
    }
    return image;
}

AgentAvatarInfo agent(std::int64_t id, std::string name, std::optional<std::string> url = std::nullopt,
                      platform::ImagePtr image = nullptr) {
    return {std::move(url), std::move(image), "42", std::move(name), id};
}

std::vector<AvatarImageView*> avatarsIn(uikit::View& root) {
    std::vector<AvatarImageView*> avatars;
    for (auto* view : uikit::findAll(root, [](const uikit::View& v) { return v.className() == "AvatarImageView"; }))
        avatars.push_back(static_cast<AvatarImageView*>(view));
    return avatars;
}

class AvatarTitleTest : public toolkit_testing::NavigationScreenTest {
protected:
    std::shared_ptr<MemoryCache> cache = std::make_shared<MemoryCache>();
};

TEST_F(AvatarTitleTest, TheBarShowsEachAgentsAvatarAndTheirNames) {
    const auto anna = solid(8, 200);
    const auto benAvatar = solid(12, 90);
    const std::string benUrl = "https://help.example.com/avatars/ben.png";
    cache->store(avatarCacheKey(benUrl), *platform::encodePNG(*benAvatar));

    AvatarTitle title(screen, "Conversation", cache);
    title.setAgents({agent(1, "Anna", std::nullopt, anna), agent(2, "Ben", benUrl), agent(1, "Anna"),
                     agent(3, "Cleo", "https://help.example.com/avatars/cleo.png"), agent(4, "Dan")});
    window->layoutTree();

    auto* shown = uikit::findByIdentifier(*window, "CRVavatarTitle");
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown, title.titleView().get());
    EXPECT_EQ(screen->navigationItem().titleView, title.titleView());
    EXPECT_TRUE(shown->isDescendantOf(*navigation->navigationBar()));
    EXPECT_TRUE(uikit::isShown(*shown));
    EXPECT_FALSE(title.initalPresent);

    // Each agent once, in order, the first three with avatars.
    EXPECT_EQ(title.agentNamesView->text(), "Anna, Ben, Cleo, Dan");
    EXPECT_EQ(screen->navigationItem().title, "Anna, Ben, Cleo, Dan");
    const auto texts = uikit::visibleTexts(*window);
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Anna, Ben, Cleo, Dan"), texts.end());
    const auto avatars = avatarsIn(*shown);
    ASSERT_EQ(avatars.size(), 3u);
    EXPECT_EQ(avatars[0]->image(), anna);
    EXPECT_EQ(avatars[0]->accessibilityLabel(), "Anna");
    EXPECT_EQ(avatars[1]->accessibilityLabel(), "Ben");
    const auto placeholder = AvatarImageView::placeholderImage();
    ASSERT_NE(placeholder, nullptr);
    EXPECT_EQ(avatars[1]->image(), placeholder);
    EXPECT_TRUE(avatars[1]->showsPlaceholder());

    // Side by side, overlapping, above the names, all inside the bar.
    EXPECT_EQ(avatars[1]->frame().minX() - avatars[0]->frame().minX(), 18);
    const uikit::Rect inBar = shown->convert(shown->bounds(), navigation->navigationBar().get());
    const uikit::Rect bar = navigation->navigationBar()->bounds();
    EXPECT_GE(inBar.minY(), bar.minY());
    EXPECT_LE(inBar.maxY(), bar.maxY());
    EXPECT_LE(title.agentNamesView->frame().minY(), shown->bounds().maxY());
    EXPECT_GE(title.agentNamesView->frame().minY(), avatars[0]->frame().maxY());

    // Ben's avatar comes from the cache; Cleo's is not there, and the placeholder stays.
    EXPECT_EQ(cache->fetches, 2);
    platform::MainQueue::shared().runPending();
    ASSERT_NE(avatars[1]->image(), placeholder);
    EXPECT_EQ(avatars[1]->image()->width, 12);
    EXPECT_EQ(avatars[1]->image()->rgba[0], 90);
    EXPECT_TRUE(avatars[2]->showsPlaceholder());
}

// Serves the bytes it holds; any other URL fails.
class ServedAvatars final : public AttachmentsProvider {
public:
    void getAttachment(const std::string& url, Completion completion) override {
        const auto found = served.find(url);
        if (found == served.end()) return completion(std::nullopt, dastrel::ProviderError{"test", 404, "absent"});
        completion(found->second, std::nullopt);
    }
    std::map<std::string, std::string> served;
};

TEST_F(AvatarTitleTest, AnAvatarTheCacheLacksIsDownloadedAndKept) {
    const std::string cleoUrl = "https://help.example.com/avatars/cleo.png";
    auto provider = std::make_shared<ServedAvatars>();
    provider->served[cleoUrl] = *platform::encodePNG(*solid(10, 150));

    AvatarTitle title(screen, "Conversation", cache, nullptr, 0, provider);
    title.setAgents({agent(3, "Cleo", cleoUrl), agent(5, "Eve", "https://help.example.com/avatars/eve.png")});
    window->layoutTree();
    platform::MainQueue::shared().runPending();

    const auto avatars = avatarsIn(*title.titleView());
    ASSERT_EQ(avatars.size(), 2u);
    ASSERT_FALSE(avatars[0]->showsPlaceholder());
    EXPECT_EQ(avatars[0]->image()->rgba[0], 150);
    EXPECT_TRUE(cache->entries.contains(avatarCacheKey(cleoUrl))) << "the download is kept for the next screen";
    EXPECT_TRUE(avatars[1]->showsPlaceholder()) << "a failed download keeps the placeholder";
}

TEST_F(AvatarTitleTest, LaterChangesFadeInAndNoAgentsBringBackThePlainTitle) {
    AvatarTitle title(screen, "Conversation", nullptr);
    title.setAgents({agent(1, "Anna")});
    window->layoutTree();
    EXPECT_FALSE(title.titleView()->isAnimating(uikit::Animation::now())) << "the first time without animation";

    title.setAgents({agent(1, "Anna"), agent(2, "Ben")});
    EXPECT_TRUE(title.titleView()->isAnimating(uikit::Animation::now()));
    time.advance(platform::seconds(1));
    title.setAgents({agent(1, "Anna"), agent(2, "Ben")});
    EXPECT_FALSE(title.titleView()->isAnimating(uikit::Animation::now())) << "the same agents again change nothing";
    EXPECT_EQ(title.titleView()->alpha(), 1);
    EXPECT_EQ(avatarsIn(*title.titleView()).size(), 2u);

    title.setAgents({});
    window->layoutTree();
    EXPECT_EQ(screen->navigationItem().titleView, nullptr);
    EXPECT_EQ(uikit::findByIdentifier(*window, "CRVavatarTitle"), nullptr);
    EXPECT_EQ(navigation->navigationBar()->titleLabel()->text(), "Conversation");

    // Once the screen is gone there is nothing to change.
    window->setRootViewController(nullptr);
    navigation.reset();
    screen.reset();
    EXPECT_EQ(title.navigationItem(), nullptr);
    title.setAgents({agent(1, "Anna")});
}

TEST_F(AvatarTitleTest, NamesThatDoNotFitAreCounted) {
    AvatarTitle title(screen, "Conversation", nullptr, nullptr, 60);
    title.setAgents({agent(1, "Anna"), agent(2, "Ben"), agent(3, "Cleo"), agent(4, "Dan")});
    window->layoutTree();
    EXPECT_LE(title.titleView()->frame().width(), 60);
    EXPECT_EQ(title.agentNamesView->text(), "Anna +3");

    AgentNamesView names;
    names.setNames({"Anna", "Ben", "Cleo"});
    EXPECT_EQ(names.textForWidth(0), "Anna, Ben, Cleo");
    EXPECT_EQ(names.textForWidth(1000), "Anna, Ben, Cleo");
    // Twelve characters of a 12-point face, 6 points each.
    EXPECT_EQ(names.textForWidth(72), "Anna, Ben +1");
    EXPECT_EQ(names.textForWidth(10), "Anna +2");
    names.setNames({"Bartholomew"});
    EXPECT_EQ(names.textForWidth(10), "Bartholomew");
}

TEST(CorvaneLogoView, ATapOpensTheReferrersLink) {
    const auto opener = std::make_shared<platform::HeadlessURLOpener>();
    const auto previous = platform::URLOpener::setShared(opener);
    CorvaneLogoView bare;
    EXPECT_TRUE(uikit::tap(bare));
    EXPECT_TRUE(opener->openedURLs().empty());
    CorvaneLogoView logo("https://example.com/?ref=help");
    logo.sizeToFit();
    EXPECT_GT(logo.frame().width(), logo.label()->sizeThatFits({0, 0}).width);
    EXPECT_TRUE(uikit::tap(logo));
    ASSERT_EQ(opener->openedURLs().size(), 1u);
    EXPECT_EQ(opener->openedURLs()[0].absoluteString(), "https://example.com/?ref=help");
    platform::URLOpener::setShared(previous);
}

} // namespace
