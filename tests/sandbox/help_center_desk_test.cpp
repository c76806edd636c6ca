#include "corvane/reachability.hpp"
#include "dastrel/help_center_provider.hpp"
#include "dastrel/support.hpp"
#include "platform/notification_center.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <algorithm>

using namespace sandbox;
using dastrel::CRVHelpCenterOverviewContentModel;
using dastrel::CRVHelpCenterOverviewGroupType;

namespace {

template <class T>
struct Answer {
    bool arrived = false;
    std::optional<T> value;
    std::optional<dastrel::ProviderError> error;
    auto callback() {
        return [this](std::optional<T> v, std::optional<dastrel::ProviderError> e) {
            arrived = true;
            value = std::move(v);
            error = std::move(e);
        };
    }
};

// Makes the call with a callback that keeps the answer, and runs the main queue once.
template <class T>
Answer<T> ask(const std::function<void(dastrel::CRVCallback<T>)>& call) {
    Answer<T> answer;
    call(answer.callback());
    platform::MainQueue::shared().runPending();
    return answer;
}

using Categories = std::vector<dastrel::CRVHelpCenterCategoryViewModel>;
using Articles = std::vector<dastrel::CRVHelpCenterArticle>;

class HelpCenterDeskTest : public testing::Test {
protected:
    void SetUp() override {
        helpDesk_ = HelpDesk::make({.storageDirectory = dir_.path()});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous("Ann", "ann@example.com"));
        desk_ = helpDesk_->helpCenter();
        provider_ = dastrel::CRVHelpCenterProvider::make();
    }
    void TearDown() override { corvane::Corvane::reset(); }

    Answer<Categories> overview(CRVHelpCenterOverviewContentModel model = {}) {
        return ask<Categories>([&](auto done) { provider_->getHelpCenterOverviewWithHelpCenterOverviewModel(model, done); });
    }
    Answer<Articles> search(const std::string& query, CRVHelpCenterOverviewContentModel scope = {}) {
        dastrel::CRVHelpCenterSearch request;
        request.setQuery(query);
        request.addSearchContentScope(scope);
        return ask<Articles>([&](auto done) { provider_->searchArticles(request, done); });
    }
    static std::vector<std::string> titles(const Articles& articles) {
        std::vector<std::string> out;
        for (const auto& article : articles) out.push_back(article.title);
        return out;
    }

    testing_support::TemporaryDirectory dir_;
    std::shared_ptr<HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
    std::shared_ptr<HelpCenterDesk> desk_;
    std::shared_ptr<dastrel::CRVHelpCenterProvider> provider_;
};

const dastrel::CRVHelpCenterSectionViewModel* findSection(const Categories& categories, const std::string& name) {
    for (const auto& category : categories)
        for (const auto& section : category.sections)
            if (section.name == name) return &section;
    return nullptr;
}

} // namespace

TEST_F(HelpCenterDeskTest, TheSampleContentLoadsWithItsSettingsAuthorsAndLinks) {
    EXPECT_EQ(desk_->content().settings.locale, "en-us");
    const auto article = ask<Articles>([&](auto done) { provider_->getArticleWithId("360001", done); });
    ASSERT_TRUE(article.value);
    ASSERT_EQ(article.value->size(), 1u);
    const auto& first = article.value->front();
    EXPECT_EQ(first.html_url, "https://belva.example.com/hc/en-us/articles/360001-installing-orbit-planner");
    // Bodies link to other articles under the serving account, not a placeholder.
    EXPECT_NE(first.body.find("https://belva.example.com/hc/en-us/articles/360002-creating-your-account"), std::string::npos);
    EXPECT_EQ(first.body.find("{{account}}"), std::string::npos);

    for (const auto& id : {"abc", "", "-4", "999999"}) {
        const auto missing = ask<Articles>([&](auto done) { provider_->getArticleWithId(id, done); });
        EXPECT_FALSE(missing.value) << id;
        ASSERT_TRUE(missing.error) << id;
        EXPECT_EQ(missing.error->code, std::string(id) == "999999" ? 404 : 400) << id;
    }
}

TEST_F(HelpCenterDeskTest, SeeAllExistsExactlyWhereASectionHasMoreThanItsFirstArticles) {
    const auto all = overview();
    ASSERT_TRUE(all.value);
    ASSERT_EQ(all.value->size(), 4u);
    std::size_t sections = 0, articles = 0;
    for (const auto& category : *all.value)
        for (const auto& section : category.sections) {
            ++sections;
            articles += static_cast<std::size_t>(section.article_count);
            EXPECT_LE(section.articles.size(), 5u);
            EXPECT_EQ(section.detailTitle, "See all " + std::to_string(section.article_count) + " articles");
        }
    EXPECT_EQ(sections, 10u);
    EXPECT_EQ(articles, 40u);
    const auto* payments = findSection(*all.value, "Plans and payments");
    ASSERT_TRUE(payments);
    EXPECT_EQ(payments->articles.size(), 5u);
    EXPECT_EQ(payments->article_count, 7);

    CRVHelpCenterOverviewContentModel two;
    two.initialNumberOfArticles = 2;
    const auto few = overview(two);
    ASSERT_TRUE(few.value);
    const auto* setup = findSection(*few.value, "Setting up");
    ASSERT_TRUE(setup);
    EXPECT_EQ(setup->articles.size(), 2u);
    EXPECT_EQ(setup->article_count, 4);
    EXPECT_EQ(setup->articles[0].name, "Installing Orbit Planner");

    // The rest of a section comes whole.
    const auto rest = ask<Articles>([&](auto done) { provider_->getArticlesWithSectionId(payments->id, std::nullopt, done); });
    ASSERT_TRUE(rest.value);
    EXPECT_EQ(rest.value->size(), 7u);
    const auto unknown = ask<Articles>([&](auto done) { provider_->getArticlesWithSectionId(42, std::nullopt, done); });
    ASSERT_TRUE(unknown.error);
    EXPECT_EQ(unknown.error->code, 404);
}

TEST_F(HelpCenterDeskTest, TheOverviewKeepsToTheGroupsAndLabelsOfTheContentModel) {
    CRVHelpCenterOverviewContentModel bySection;
    bySection.groupType = CRVHelpCenterOverviewGroupType::section;
    bySection.groupIds = {300007, 300004};
    const auto sections = overview(bySection);
    ASSERT_TRUE(sections.value);
    ASSERT_EQ(sections.value->size(), 2u);  // content order: account first, then troubleshooting
    EXPECT_EQ(sections.value->at(0).sections.at(0).name, "Signing in");
    EXPECT_EQ(sections.value->at(1).sections.at(0).name, "Sync problems");

    CRVHelpCenterOverviewContentModel byCategory;
    byCategory.groupType = CRVHelpCenterOverviewGroupType::category;
    byCategory.groupIds = {200003};
    const auto category = overview(byCategory);
    ASSERT_TRUE(category.value);
    ASSERT_EQ(category.value->size(), 1u);
    EXPECT_EQ(category.value->at(0).name, "Troubleshooting");
    EXPECT_EQ(category.value->at(0).sections.size(), 3u);

    CRVHelpCenterOverviewContentModel labelled;
    labelled.labels = std::vector<std::string>{"sync"};
    const auto sync = overview(labelled);
    ASSERT_TRUE(sync.value);
    ASSERT_EQ(sync.value->size(), 1u);
    EXPECT_EQ(findSection(*sync.value, "Sync problems")->article_count, 5);

    labelled.labels = std::vector<std::string>{"no-such-label"};
    const auto nothing = overview(labelled);
    ASSERT_TRUE(nothing.value);
    EXPECT_TRUE(nothing.value->empty());
    EXPECT_FALSE(nothing.error);
}

TEST_F(HelpCenterDeskTest, SwitchesGiveEachErrorAndAnnounceFailures) {
    testing_support::VirtualTime time;
    int requestErrors = 0;
    auto token = platform::NotificationCenter::defaultCenter().addObserver(dastrel::CR_HC_RequestError, nullptr,
                                                                            [&](const auto&) { ++requestErrors; });
    const std::pair<long, const char*> codes[] = {{100, "Unable to load categories"},
                                                  {101, "Unable to load sections"},
                                                  {102, "Unable to load articles with labels"},
                                                  {103, "No help center content available"}};
    for (const auto& [code, text] : codes) {
        desk_->setOverviewErrorCode(code);
        const auto failed = overview();
        EXPECT_FALSE(failed.value);
        ASSERT_TRUE(failed.error);
        EXPECT_EQ(failed.error->domain, "com.corvane.help.center");
        EXPECT_EQ(failed.error->code, code);
        EXPECT_EQ(failed.error->localizedDescription, text);
    }
    EXPECT_EQ(requestErrors, 4);
    desk_->setOverviewErrorCode(std::nullopt);

    desk_->setEmptyAnswers(true);
    const auto empty = overview();
    ASSERT_TRUE(empty.value);
    EXPECT_TRUE(empty.value->empty());
    EXPECT_FALSE(empty.error);
    EXPECT_TRUE(search("plan").value->empty());
    desk_->setEmptyAnswers(false);

    desk_->failNext(1);
    EXPECT_EQ(overview().error->code, 500);
    EXPECT_TRUE(overview().value);

    desk_->setOffline(true);
    EXPECT_EQ(corvane::NetworkMonitor::shared().status(), corvane::NotReachable);
    EXPECT_EQ(overview().error->code, -1009);
    std::optional<dastrel::CRVHelpCenterSettings> settings{dastrel::CRVHelpCenterSettings{}};
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback([&](auto s) { settings = s; });
    platform::MainQueue::shared().runPending();
    EXPECT_FALSE(settings);
    desk_->setOffline(false);
    EXPECT_NE(corvane::NetworkMonitor::shared().status(), corvane::NotReachable);
    EXPECT_EQ(requestErrors, 6);

    // Latency runs on the scheduler: nothing arrives before it has passed.
    desk_->setLatency(platform::milliseconds(300));
    Answer<Categories> late;
    provider_->getHelpCenterOverviewWithHelpCenterOverviewModel({}, late.callback());
    platform::MainQueue::shared().runPending();
    time.advance(platform::milliseconds(299));
    EXPECT_FALSE(late.arrived);
    time.advance(platform::milliseconds(1));
    EXPECT_TRUE(late.arrived);
}

TEST_F(HelpCenterDeskTest, SearchIgnoresCaseKeepsToItsScopeAndNamesTheParents) {
    const auto resetting = search("RESETTING");
    ASSERT_TRUE(resetting.value);
    // Matches in the title come before matches in the body.
    const auto found = titles(*resetting.value);
    ASSERT_GE(found.size(), 2u);
    EXPECT_EQ(found[0], "Resetting your password");
    EXPECT_EQ(found[1], "Resetting the local copy");
    EXPECT_EQ(resetting.value->at(0).articleParents, "Account and billing > Signing in");

    // Body text is searched without its markup; a tag name is not content.
    EXPECT_EQ(titles(*search("authenticator").value), std::vector<std::string>{"Two-step verification"});
    EXPECT_TRUE(search("strong").value->empty());
    EXPECT_EQ(titles(*search("hardware keyboard").value), std::vector<std::string>{"Keyboard shortcuts"});
    // Right-to-left text is found as written.
    EXPECT_EQ(titles(*search("עברית").value), std::vector<std::string>{"שינוי שפת האפליקציה"});
    // A phrase across words, in another case.
    EXPECT_EQ(titles(*search("ORBIT PLANNER FOLLOWS").value), std::vector<std::string>{"Changing the app's language"});

    CRVHelpCenterOverviewContentModel syncOnly;
    syncOnly.groupType = CRVHelpCenterOverviewGroupType::section;
    syncOnly.groupIds = {300007};
    const auto inSync = search("the", syncOnly);
    EXPECT_FALSE(inSync.value->empty());
    for (const auto& article : *inSync.value) EXPECT_EQ(article.section_id, 300007);
    CRVHelpCenterOverviewContentModel billing;
    billing.labels = std::vector<std::string>{"billing"};
    const auto inBilling = search("a", billing);
    EXPECT_EQ(inBilling.value->size(), 8u);
    for (const auto& article : *inBilling.value)
        EXPECT_NE(std::find(article.label_names.begin(), article.label_names.end(), "billing"), article.label_names.end());

    EXPECT_TRUE(search("").value->empty());
    EXPECT_TRUE(search("   ").value->empty());
    EXPECT_TRUE(search("zebra crossing").value->empty());
}

TEST_F(HelpCenterDeskTest, VotesAreKeptOnePerArticleAndRemovedOnlyByTheirId) {
    using Votes = std::vector<dastrel::CRVHelpCenterArticleVote>;
    using Vote = dastrel::CRVHelpCenterArticleVote;
    const auto up = ask<Votes>([&](auto done) { provider_->upVoteArticleWithId("360005", done); });
    ASSERT_TRUE(up.value);
    ASSERT_EQ(up.value->size(), 1u);
    const auto upVote = up.value->front();
    EXPECT_EQ(upVote.value, "1");
    EXPECT_EQ(upVote.article_id, 360005);

    // Changing one's mind replaces the vote in one request.
    const auto down = ask<Votes>([&](auto done) { provider_->downVoteArticleWithId("360005", done); });
    const auto downVote = down.value->front();
    EXPECT_EQ(downVote.value, "-1");
    EXPECT_NE(downVote.identifier, upVote.identifier);
    EXPECT_EQ(desk_->votes(), std::vector<dastrel::CRVHelpCenterArticleVote>{downVote});

    const auto stale = ask<Vote>([&](auto done) { provider_->removeVoteWithId(std::to_string(upVote.identifier), done); });
    EXPECT_FALSE(stale.value);
    EXPECT_EQ(stale.error->code, 404);

    const auto removed = ask<Vote>([&](auto done) { provider_->removeVoteWithId(std::to_string(downVote.identifier), done); });
    EXPECT_EQ(removed.value, downVote);
    EXPECT_TRUE(desk_->votes().empty());

    EXPECT_EQ(ask<Votes>([&](auto done) { provider_->upVoteArticleWithId("1", done); }).error->code, 404);
}

TEST_F(HelpCenterDeskTest, AttachmentsAnnounceTheirFetchAndServeTheirBytes) {
    std::vector<std::string> heard;
    auto& center = platform::NotificationCenter::defaultCenter();
    std::vector<platform::ObservationToken> tokens;
    for (const auto* name : {dastrel::CR_HC_AttachmentsStarting, dastrel::CR_HC_AttachmentsUpdated,
                             dastrel::CR_HC_AttachmentsErrored})
        tokens.push_back(center.addObserver(name, nullptr, [&heard](const platform::Notification& n) { heard.push_back(n.name); }));

    Answer<std::vector<dastrel::CRVHelpCenterAttachment>> files;
    provider_->getAttachmentWithArticleId("360004", [&](auto list, auto error) {
        heard.push_back("callback");
        files.callback()(std::move(list), std::move(error));
    });
    EXPECT_EQ(heard, std::vector<std::string>{"CR_HC_AttachmentsStarting"});
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(heard, (std::vector<std::string>{"CR_HC_AttachmentsStarting", "callback", "CR_HC_AttachmentsUpdated"}));
    ASSERT_TRUE(files.value);
    ASSERT_EQ(files.value->size(), 1u);
    const auto csv = files.value->front();
    EXPECT_EQ(csv.file_name, "plan-template.csv");
    EXPECT_EQ(csv.content_url, "https://belva.example.com/hc/article_attachments/500002/plan-template.csv");

    std::optional<std::string> bytes;
    core_->providerModule().provider<dastrel::CRVAttachmentProvider>()->getAttachment(
        csv.content_url, [&](auto data, auto) { bytes = data; });
    testing_support::pumpMainQueueUntil([&] { return bytes.has_value(); });
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->rfind("title,due,owner\n", 0), 0u);
    EXPECT_EQ(static_cast<std::int64_t>(bytes->size()), csv.size);

    heard.clear();
    desk_->failNext(1);
    provider_->getAttachmentWithArticleId("360004", [&](auto, auto) { heard.push_back("callback"); });
    platform::MainQueue::shared().runPending();
    EXPECT_EQ(heard, (std::vector<std::string>{"CR_HC_AttachmentsStarting", "callback", "CR_HC_AttachmentsErrored"}));
}

TEST_F(HelpCenterDeskTest, ViewsAreRecordedAndSettingsComeThroughTheClassProviders) {
    Articles read;
    read.push_back(desk_->content().articles.at(2).record);
    std::optional<dastrel::ProviderError> outcome{dastrel::ProviderError{}};
    provider_->submitRecordArticleView(read[0], [&](auto error) { outcome = error; });
    provider_->submitRecordArticleView(read[0], nullptr);
    platform::MainQueue::shared().runPending();
    EXPECT_FALSE(outcome);
    EXPECT_EQ(desk_->recordedArticleViews(), (std::vector<std::int64_t>{read[0].identifier, read[0].identifier}));

    desk_->setLocale(std::nullopt);
    desk_->setVotingEnabled(false);
    helpDesk_->conversationsSettings()->setEnabled(false);
    std::optional<dastrel::CRVHelpCenterSettings> settings;
    std::optional<dastrel::CRVConversationsSettings> conversations;
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback([&](auto s) { settings = s; });
    dastrel::CRVConversationsSettingsProvider::getConversationsSettingsWithCallback([&](auto s) { conversations = s; });
    platform::MainQueue::shared().runPending();
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->locale);
    EXPECT_FALSE(settings->helpCenterArticleVotingEnabled);
    ASSERT_TRUE(conversations);
    EXPECT_FALSE(conversations->enabled);

    desk_->setSettingsFailing(true);
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback([&](auto s) { settings = s; });
    platform::MainQueue::shared().runPending();
    EXPECT_FALSE(settings);

    // Without a core the class providers answer with nothing, and the provider fails every call.
    corvane::Corvane::reset();
    bool answered = false;
    dastrel::CRVConversationsSettingsProvider::getConversationsSettingsWithCallback([&](auto s) {
        answered = true;
        EXPECT_FALSE(s);
    });
    const auto orphan = ask<Categories>(
        [](auto done) { dastrel::CRVHelpCenterProvider::make()->getHelpCenterOverviewWithHelpCenterOverviewModel({}, done); });
    EXPECT_TRUE(answered);
    EXPECT_TRUE(orphan.error);
}

namespace {

// A minimal valid document with one change made to it.
std::string edited(const std::function<void(boost::json::object&)>& change) {
    boost::json::object root;
    root["locale"] = "en-us";
    root["authors"] = boost::json::array{boost::json::object{{"id", 1}, {"name", "Ada"}}};
    root["categories"] = boost::json::array{boost::json::object{{"id", 10}, {"name", "C"}}};
    root["sections"] = boost::json::array{boost::json::object{{"id", 20}, {"category_id", 10}, {"name", "S"}}};
    root["articles"] = boost::json::array{boost::json::object{{"id", 30},
                                                              {"section_id", 20},
                                                              {"title", "T"},
                                                              {"body", "<p>b</p>"},
                                                              {"author_id", 1},
                                                              {"created_at", "2024-02-29T23:59:59Z"}}};
    change(root);
    return boost::json::serialize(root);
}

boost::json::object& firstArticle(boost::json::object& root) { return root["articles"].as_array()[0].as_object(); }

} // namespace

TEST_F(HelpCenterDeskTest, AFaultyDocumentIsRefusedWithItsPlaceAndTheOldContentStays) {
    const auto valid = HelpCenterContent::parse(edited([](auto&) {}), "https://x.example");
    ASSERT_TRUE(valid.content) << valid.error;
    EXPECT_EQ(valid.content->articles.at(0).record.html_url, "https://x.example/hc/en-us/articles/30-t");

    const std::pair<std::function<void(boost::json::object&)>, std::string> faults[] = {
        {[](auto& r) { firstArticle(r).erase("title"); }, "articles[0]: \"title\" is missing or not a string"},
        {[](auto& r) { firstArticle(r)["title"] = 5; }, "articles[0]: \"title\" is missing or not a string"},
        {[](auto& r) { firstArticle(r)["section_id"] = 99; }, "articles[0]: \"section_id\" 99 names no section"},
        {[](auto& r) { firstArticle(r)["author_id"] = 2; }, "articles[0]: \"author_id\" 2 names no author"},
        {[](auto& r) { firstArticle(r)["created_at"] = "2023-02-29T10:00:00Z"; }, "articles[0]: \"created_at\" is not a date"},
        {[](auto& r) { firstArticle(r)["created_at"] = "yesterday"; }, "articles[0]: \"created_at\" is not a date"},
        {[](auto& r) { firstArticle(r)["id"] = -3; }, "articles[0]: \"id\" must be a positive integer"},
        {[](auto& r) { firstArticle(r)["label_names"] = boost::json::array{1}; }, "articles[0]: \"label_names\" holds"},
        {[](auto& r) {
             firstArticle(r)["attachments"] = boost::json::array{
                 boost::json::object{{"id", 5}, {"file_name", "a.png"}, {"content_type", "image/png"}, {"base64", "!!"}}};
         },
         "articles[0].attachments[0]: \"base64\" is not base64"},
        {[](auto& r) {
             firstArticle(r)["attachments"] = boost::json::array{
                 boost::json::object{{"id", 5}, {"file_name", "a.txt"}, {"content_type", "text/plain"}}};
         },
         "articles[0].attachments[0]: give the bytes as exactly one of"},
        {[](auto& r) { r["sections"].as_array()[0].as_object()["category_id"] = 11; },
         "sections[0]: \"category_id\" 11 names no category"},
        {[](auto& r) { r["categories"].as_array().push_back(boost::json::object{{"id", 10}, {"name", "Again"}}); },
         "categories[1]: the id 10 is used twice"},
        {[](auto& r) { r.erase("authors"); }, "help center content: \"authors\" is missing or not a list"},
        {[](auto& r) { r["settings"] = boost::json::object{{"article_voting_enabled", "yes"}}; },
         "settings: \"article_voting_enabled\" is not true or false"},
        {[](auto& r) { r["articles"].as_array()[0] = 7; }, "articles[0]: not an object"},
    };
    for (const auto& [change, message] : faults) {
        const auto loaded = HelpCenterContent::parse(edited(change), "https://x.example");
        EXPECT_FALSE(loaded.content) << message;
        EXPECT_EQ(loaded.error.rfind(message, 0), 0u) << loaded.error;
    }
    EXPECT_EQ(HelpCenterContent::parse("{\"locale\": ", "").error, "help center content: not a complete JSON text");
    EXPECT_EQ(HelpCenterContent::parse("[]", "").error, "help center content: not an object");

    EXPECT_TRUE(desk_->load("{}").has_value());
    EXPECT_EQ(desk_->content().articles.size(), 40u);
    EXPECT_FALSE(desk_->load(edited([](auto&) {})));
    EXPECT_EQ(desk_->content().articles.size(), 1u);
}
