// `hc_search`: one Help Center search over 5,000 articles of the help desk, as the overview runs it
// (the results screen starts searching, the query with its scope goes through the provider, the
// desk matches titles and the visible text of bodies and names each result's parents, the results
// screen takes the list and the rows in view are laid out with the term in bold), against ICU's
// case-insensitive find over the same titles and bodies.
#include "harness.hpp"

#include "belvakit/helpcenter/help_center_search_result_view_controller.hpp"
#include "dastrel/help_center_provider.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "platform/text_search.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/search_controller.hpp"
#include "uikit/window.hpp"

#include <boost/json.hpp>

#include <filesystem>
#include <random>

namespace {

constexpr int articleCount = 5000;
constexpr int categoryCount = 20;
constexpr int sectionsPerCategory = 5;
constexpr const char* term = "Refund";

const char* const words[] = {"plan",    "account", "device", "sync",    "reminder", "share",   "team",   "widget",
                             "invoice", "payment", "export", "privacy", "offline",  "archive", "notify", "calendar",
                             "profile", "storage", "upload", "steps",   "settings", "browser", "tablet", "language"};

std::string sentence(std::mt19937& random, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) {
        if (i) text += ' ';
        // About one sentence in twenty-five speaks of refunds.
        text += random() % 600 == 0 ? "refunds" : words[random() % std::size(words)];
    }
    return text;
}

// The help desk's content document: 20 categories of 5 sections, 5,000 articles with bodies of
// about a kilobyte of HTML. About 4% of titles and a further 20% of bodies hold the term.
std::string contentDocument() {
    std::mt19937 random(20260101);
    boost::json::array categories, sections, articles;
    for (int c = 0; c < categoryCount; ++c) {
        categories.push_back({{"id", 100 + c}, {"name", "Category " + std::to_string(c)}, {"position", c}});
        for (int s = 0; s < sectionsPerCategory; ++s) {
            const int id = 1000 + c * sectionsPerCategory + s;
            sections.push_back({{"id", id}, {"category_id", 100 + c}, {"name", "Section " + std::to_string(id)}, {"position", s}});
        }
    }
    for (int a = 0; a < articleCount; ++a) {
        std::string title = sentence(random, 4);
        if (a % 25 == 0) title = "Refunds for " + title;
        std::string body;
        for (int p = 0; p < 5; ++p) body += "<p>" + sentence(random, 24) + " <strong>" + sentence(random, 3) + "</strong></p>";
        articles.push_back({{"id", 100000 + a},
                            {"section_id", 1000 + a % (categoryCount * sectionsPerCategory)},
                            {"title", title},
                            {"body", body},
                            {"author_id", 9001},
                            {"created_at", "2024-01-01T00:00:00Z"},
                            {"updated_at", "2024-02-01T00:00:00Z"},
                            {"label_names", boost::json::array{}},
                            {"attachments", boost::json::array{}},
                            {"position", a}});
    }
    return boost::json::serialize(boost::json::object{
        {"locale", "en-us"},
        {"settings", {{"enabled", true}, {"locale", "en-us"}, {"article_voting_enabled", true}}},
        {"authors", boost::json::array{{{"id", 9001}, {"name", "Bench Author"}}}},
        {"categories", categories},
        {"sections", sections},
        {"articles", articles}});
}

// The core on a help desk that serves the 5,000 articles.
class Backend {
public:
    Backend() : directory_(std::filesystem::temp_directory_path() / "belva-bench-hc-search") {
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = directory_});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous());
        dastrel::Support::initialize(core_);
        loadError = helpDesk_->helpCenter()->load(contentDocument());
    }
    ~Backend() {
        dastrel::Support::reset();
        corvane::Corvane::reset();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }
    sandbox::HelpCenterContent content() const { return helpDesk_->helpCenter()->content(); }
    std::optional<std::string> loadError;

private:
    std::filesystem::path directory_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
};

void measured(benchmark::State& run) {
    Backend backend;
    if (backend.loadError) return run.SkipWithError(backend.loadError->c_str());
    auto window = std::make_shared<uikit::Window>(uikit::Environment::phonePortrait());
    auto results = belvakit::CRVHelpCenterSearchResultViewController::make();
    window->setRootViewController(results);
    window->layoutTree();
    auto searchController = std::make_shared<uikit::SearchController>();
    searchController->searchBar()->setText(term);
    const auto model = dastrel::CRVHelpCenterOverviewContentModel::defaultContent();
    const auto provider = dastrel::CRVHelpCenterProvider::make();
    auto& main = platform::MainQueue::shared();
    std::size_t rows = 0;
    for (auto _ : run) {
        results->searchControllerStartedSearch(*searchController);
        dastrel::CRVHelpCenterSearch search;
        search.setQuery(term);
        search.addSearchContentScope(model);
        bool done = false;
        provider->searchArticles(search, [&](auto list, auto) {
            results->searchControllerDidUpdateWithResults(*searchController, list);
            done = true;
        });
        main.runUntil([&] { return done; });
        window->layoutTree();
        rows = results->tableView->visibleCells().size();
    }
    if (rows == 0 || results->data.empty()) run.SkipWithError("the search showed no rows");
    window->setRootViewController(nullptr);
}

// The floor: the case-insensitive find over each title, and over the body of an article whose
// title does not hold the term.
void baseline(benchmark::State& run) {
    Backend backend;
    if (backend.loadError) return run.SkipWithError(backend.loadError->c_str());
    std::vector<std::string> titles, bodies;
    for (const auto& article : backend.content().articles) {
        titles.push_back(article.record.title);
        bodies.push_back(article.record.body);
    }
    for (auto _ : run) {
        std::size_t found = 0;
        for (std::size_t i = 0; i < titles.size(); ++i)
            if (platform::rangeOfStringCaseInsensitive(titles[i], term) ||
                platform::rangeOfStringCaseInsensitive(bodies[i], term))
                ++found;
        benchmark::DoNotOptimize(found);
    }
}

std::vector<bench::Fact> facts() {
    Backend backend;
    std::size_t found = 0;
    for (const auto& article : backend.content().articles)
        if (platform::rangeOfStringCaseInsensitive(article.record.title, term) ||
            platform::rangeOfStringCaseInsensitive(article.record.body, term))
            ++found;
    return {{"hc_search results", static_cast<double>(found), "articles"}};
}

} // namespace

std::vector<bench::Metric> bench::helpCenterSearchMetrics() { return {{"hc_search", 2.0, measured, baseline, facts}}; }
