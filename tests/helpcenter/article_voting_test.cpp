#include "article_fixture.hpp"

#include "belvakit/helpcenter/article_voting.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "belvakit/toolkit/theme.hpp"

#include <boost/json.hpp>

#include <random>

using namespace belvakit;
using article_testing::ArticleTest;

namespace {

constexpr int up = dastrel::CRV_Article_Up_Vote_Number;
constexpr int down = dastrel::CRV_Article_Down_Vote_Number;
constexpr int none = dastrel::CRV_Article_Even_Vote_Number;

// The vote view as the handler sees it: the last index it was told.
class RecordingState final : public CRVHelpCenterArticleRatingStateProtocol {
public:
    void updateButtonStatesForButtonAtIndexSelected(int index) override { shown.push_back(index); }
    std::vector<int> shown;
};

// Answers every vote with the list it is given and fails every removal.
class ScriptedVotes final : public article_testing::ForwardingProvider {
public:
    void upVoteArticleWithId(const std::string&, Votes c) override { answerVote(std::move(c)); }
    void downVoteArticleWithId(const std::string&, Votes c) override { answerVote(std::move(c)); }
    void removeVoteWithId(const std::string&, dastrel::CRVCallback<dastrel::CRVHelpCenterArticleVote> c) override {
        ++requests;
        c(std::nullopt, dastrel::ProviderError{"test", 1, "unused"});
    }
    std::vector<dastrel::CRVHelpCenterArticleVote> answer;
    int requests = 0;

private:
    void answerVote(Votes c) {
        ++requests;
        c(answer, std::nullopt);
    }
};

class VotingTest : public ArticleTest {
protected:
    std::shared_ptr<corvane::SessionStore> session() const { return core->storeModule().sessionStore; }
    std::optional<boost::json::value> stored() const { return session()->value(CRVArticleVotingStoreKey); }
    void store(boost::json::value value) const { session()->setValue(CRVArticleVotingStoreKey, std::move(value)); }
    // The help desk's vote on the article, as (id, value).
    std::optional<std::pair<std::string, std::string>> deskVote(std::int64_t article) const {
        for (const auto& vote : desk->votes())
            if (vote.article_id == article) return std::pair{std::to_string(vote.identifier), vote.value.value_or("")};
        return std::nullopt;
    }
    // What the device remembers for the article, as (id, value).
    std::optional<std::pair<std::string, std::string>> deviceVote(const std::string& article) const {
        const auto all = stored();
        const auto* entry = all && all->is_object() ? all->as_object().if_contains(article) : nullptr;
        if (!entry) return std::nullopt;
        const auto text = [&](const char* key) {
            const auto* value = entry->as_object().if_contains(key);
            return value && value->is_string() ? std::string(value->as_string()) : std::string("-");
        };
        return std::pair{text("vote_id"), text("vote_value")};
    }
    std::shared_ptr<HelpCenterArticleVotingHandler> handlerFor(const std::string& article) const {
        return HelpCenterArticleVotingHandler::initWithArticleId(article, "en-us");
    }
    static bool showsSelected(const uikit::Button& button) {
        return button.backgroundColor() == CRVLegacyTheme::currentAppliedTheme()->primaryTextColor &&
               button.tintColor() == platform::Color::white();
    }
};

} // namespace

TEST_F(VotingTest, AVoteOnTheScreenIsRememberedAcrossARestartAndShownWhenTheArticleReopens) {
    auto screen = push(CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360005"));
    auto* upButton = uikit::findByIdentifier<uikit::Button>(*window, "CRVarticleUpVoteButton");
    auto* downButton = uikit::findByIdentifier<uikit::Button>(*window, "CRVarticleDownVoteButton");
    ASSERT_TRUE(upButton && downButton);
    EXPECT_FALSE(showsSelected(*upButton) || showsSelected(*downButton));
    EXPECT_EQ(upButton->accessibilityLabel(), "Yes, this article was helpful");
    EXPECT_EQ(uikit::findByIdentifier<uikit::Label>(*window, "CRVarticleVotingLabel")->text(), "Was this article helpful?");

    ASSERT_TRUE(uikit::tap(*upButton));
    EXPECT_TRUE(showsSelected(*upButton));  // before the answer
    settle();
    const auto vote = deskVote(360005);
    ASSERT_TRUE(vote);
    EXPECT_EQ(deviceVote("360005"), (std::pair<std::string, std::string>{vote->first, "1"}));

    // A new run of the app: a new core reads the session store back from disk.
    navigation->popViewController(false);
    screen.reset();
    settle();
    corvane::Corvane::reset();
    startCore();
    EXPECT_EQ(handlerFor("360005")->currentArticleVote(), up);
    screen = push(CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360005"));
    upButton = uikit::findByIdentifier<uikit::Button>(*window, "CRVarticleUpVoteButton");
    ASSERT_TRUE(upButton);
    EXPECT_TRUE(showsSelected(*upButton));

    // The other button changes the vote in one request.
    ASSERT_TRUE(uikit::tap(*uikit::findByIdentifier(*window, "CRVarticleDownVoteButton")));
    settle();
    ASSERT_TRUE(deskVote(360005));
    EXPECT_EQ(deskVote(360005)->second, "-1");
    EXPECT_EQ(deviceVote("360005"), deskVote(360005));
}

TEST_F(VotingTest, ASecondTapTakesTheVoteBackByTheServersVoteId) {
    const auto handler = handlerFor("360007");
    RecordingState view;
    handler->articleRatingVoteSelected(view, down);
    settle();
    const auto vote = deskVote(360007);
    ASSERT_TRUE(vote);
    EXPECT_EQ(handler->currentArticleVote(), down);

    handler->articleRatingVoteSelected(view, down);
    EXPECT_EQ(view.shown, (std::vector<int>{dastrel::CRV_Article_Down_Vote_Button_Index, 999}));
    settle();
    EXPECT_FALSE(deskVote(360007));
    EXPECT_FALSE(deviceVote("360007"));
    EXPECT_EQ(handler->currentArticleVote(), none);

    // A removal that fails keeps the entry, so the vote shows again on reopening.
    handler->articleRatingVoteSelected(view, up);
    settle();
    desk->failNext(1);
    handler->articleRatingVoteSelected(view, up);
    settle();
    EXPECT_EQ(view.shown.back(), 999);
    EXPECT_TRUE(deviceVote("360007"));
    EXPECT_EQ(handlerFor("360007")->currentArticleVote(), up);
}

TEST_F(VotingTest, AVoteFinishesAndIsRememberedAfterTheScreenClosed) {
    desk->setLatency(platform::seconds(3));
    auto screen = CRVHelpCenterUi::buildHelpCenterArticleWithArticleId("360008");
    navigation->pushViewController(screen, false);
    settle(10);
    ASSERT_TRUE(uikit::tap(*uikit::findByIdentifier(*window, "CRVarticleUpVoteButton")));
    navigation->popViewController(false);
    std::weak_ptr<CRVArticleViewController> gone = screen;
    screen.reset();
    settle(0.5);
    EXPECT_TRUE(gone.expired());
    EXPECT_FALSE(deviceVote("360008"));
    settle(4);
    ASSERT_TRUE(deskVote(360008));
    EXPECT_EQ(deviceVote("360008"), deskVote(360008));
}

TEST_F(VotingTest, StoredEntriesThatMakeNoVoteReadAsNone) {
    const auto handler = handlerFor("360009");
    RecordingState view;
    store(boost::json::parse(R"({"360009": {"vote_id": "5", "vote_value": "abc"}, "other": 1})"));
    EXPECT_EQ(handler->currentArticleVote(), none);
    for (const char* entry : {R"({"360009": {"vote_id": "5"}})", R"({"360009": {"vote_id": "5", "vote_value": "7"}})",
                              R"({"360009": {"vote_id": 5, "vote_value": "1"}})", R"({"360009": ["1"]})", R"("text")"}) {
        store(boost::json::parse(entry));
        EXPECT_EQ(handler->currentArticleVote(), none) << entry;
    }
    store(boost::json::parse(R"({"360009": {"vote_id": "5", "vote_value": " 1"}})"));
    EXPECT_EQ(handler->currentArticleVote(), none);

    // "abc" reads as none, so a tap votes.
    store(boost::json::parse(R"({"360009": {"vote_id": "5", "vote_value": "abc"}})"));
    handler->articleRatingVoteSelected(view, up);
    settle();
    EXPECT_EQ(handler->currentArticleVote(), up);

    // A valid vote without its id: a second tap on the same button does nothing at all.
    store(boost::json::parse(R"({"360009": {"vote_value": "-1"}})"));
    view.shown.clear();
    const auto calls = desk->callCount();
    handler->articleRatingVoteSelected(view, down);
    settle();
    EXPECT_TRUE(view.shown.empty());
    EXPECT_EQ(desk->callCount(), calls);

    // A dictionary of another type is replaced whole by the next vote.
    store(boost::json::parse(R"(["not", "a", "dictionary"])"));
    handler->articleRatingVoteSelected(view, down);
    settle();
    const auto all = stored();
    ASSERT_TRUE(all && all->is_object());
    EXPECT_EQ(all->as_object().size(), 1u);
    EXPECT_EQ(handler->currentArticleVote(), down);
}

TEST_F(VotingTest, EmptyAnswersStoreNothingAndWithoutACoreNothingIsReadOrKept) {
    const auto handler = handlerFor("360010");
    auto scripted = std::make_shared<ScriptedVotes>();
    handler->hcProvider = scripted;
    RecordingState view;
    handler->articleRatingVoteSelected(view, up);
    EXPECT_EQ(view.shown, std::vector<int>{dastrel::CRV_Article_Up_Vote_Button_Index});
    EXPECT_FALSE(deviceVote("360010"));
    scripted->answer = {{71, 360010, std::nullopt}};
    handler->articleRatingVoteSelected(view, up);
    EXPECT_EQ(deviceVote("360010"), (std::pair<std::string, std::string>{"71", "-"}));
    EXPECT_EQ(handler->currentArticleVote(), none);  // no value: no vote

    corvane::Corvane::reset();
    const auto orphan = handlerFor("360010");
    EXPECT_FALSE(orphan->sessionStore);
    orphan->hcProvider = scripted;
    scripted->answer = {{72, 360010, "1"}};
    orphan->articleRatingVoteSelected(view, up);
    EXPECT_EQ(view.shown.back(), dastrel::CRV_Article_Up_Vote_Button_Index);
    EXPECT_EQ(orphan->currentArticleVote(), none);
    EXPECT_EQ(scripted->requests, 3);
}

TEST_F(VotingTest, WhateverTheTapsAndTheirTimingTheDeviceRemembersTheServersVote) {
    desk->setLatency(platform::milliseconds(100));
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        const std::string article = std::to_string(360011 + seed % 20);
        const auto handler = handlerFor(article);
        RecordingState view;
        const bool failures = seed % 3 == 0;
        // Taps that overlap their answers act on what the device remembered so far.
        const bool overlapping = seed % 2 == 0;
        for (int tap = 0; tap < 8; ++tap) {
            if (failures && random() % 4 == 0) desk->failNext(1);
            handler->articleRatingVoteSelected(view, random() % 2 ? up : down);
            if (!overlapping || random() % 2) settle(0.2);
        }
        settle(0.5);
        desk->failNext(0);
        const auto onServer = deskVote(std::stoll(article));
        ASSERT_EQ(deviceVote(article), onServer) << "seed " << seed;
        // The buttons show the last tap, which is what the server has when nothing failed or overlapped.
        if (!failures && !overlapping) {
            const int expectedIndex = !onServer                ? 999
                                      : onServer->second == "1" ? dastrel::CRV_Article_Up_Vote_Button_Index
                                                                : dastrel::CRV_Article_Down_Vote_Button_Index;
            ASSERT_EQ(view.shown.back(), expectedIndex) << "seed " << seed;
        }
    }
}
