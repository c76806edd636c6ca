#include "search_fixture.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/helpcenter/article_view_controller.hpp"

#include <algorithm>
#include <random>

using namespace belvakit;
using search_testing::SearchTest;

namespace {

// The runs of a label's text as (text, bold) pairs, neighbours merged.
std::vector<std::pair<std::string, bool>> boldRuns(const uikit::Label& label) {
    std::vector<std::pair<std::string, bool>> runs;
    const auto& text = label.attributedText();
    for (const auto& run : text.runs()) {
        const auto* font = run.attributes.get<platform::Font>(platform::AttributeName::font);
        const bool bold = font && (font->symbolicTraits() & platform::FontTrait::bold);
        const std::string part = text.string().substr(run.range.location, run.range.length);
        if (!runs.empty() && runs.back().second == bold)
            runs.back().first += part;
        else
            runs.emplace_back(part, bold);
    }
    return runs;
}

std::string boldPart(const uikit::Label& label) {
    std::string bold;
    for (const auto& [text, isBold] : boldRuns(label))
        if (isBold) bold += text;
    return bold;
}

} // namespace

TEST_F(SearchTest, TypingNeverQueriesAndShowsNothingUntilTheSearchButton) {
    const auto callsBefore = desk->helpCenter()->callCount();
    type("sync");
    run(1);
    EXPECT_TRUE(searchController().isActive());
    EXPECT_FALSE(resultsShown());
    EXPECT_EQ(desk->helpCenter()->callCount(), callsBefore);

    desk->helpCenter()->setLatency(platform::seconds(1));
    type("\n");
    // Searching: an empty table with the spinner over it.
    EXPECT_TRUE(resultsShown());
    EXPECT_TRUE(results().loadingSpinner->isAnimating());
    EXPECT_FALSE(results().tableView->isHidden());
    EXPECT_TRUE(results().noResultsView->isHidden());
    EXPECT_EQ(results().tableView->numberOfRowsInSection(0), 0);
    run(1.1);
    EXPECT_FALSE(results().loadingSpinner->isAnimating());
    EXPECT_EQ(rowTitles(), deskTitles("sync"));
    EXPECT_EQ(desk->helpCenter()->callCount(), callsBefore + 1);

    // Typing after a search keeps its results and sends nothing.
    const auto callsAfter = desk->helpCenter()->callCount();
    type(" icons");
    run(1);
    EXPECT_TRUE(resultsShown());
    EXPECT_EQ(rowTitles(), deskTitles("sync"));
    EXPECT_EQ(desk->helpCenter()->callCount(), callsAfter);
}

TEST_F(SearchTest, LeavingTheSearchHidesTheResultsOfTheNextPresentationButKeepsTheirData) {
    search("sync");
    ASSERT_EQ(results().numberOfSearches, 1u);
    uikit::tap(*searchController().searchBar()->cancelButton());
    run(0.1);
    EXPECT_FALSE(searchController().isActive());
    EXPECT_EQ(results().numberOfSearches, 0u);

    type("widget");
    run(0.1);
    EXPECT_FALSE(resultsShown());
    EXPECT_EQ(results().searchTerm, "sync");
    EXPECT_EQ(results().data.size(), deskTitles("sync").size());
    type("\n");
    run(0.1);
    EXPECT_TRUE(resultsShown());
    EXPECT_EQ(rowTitles(), deskTitles("widget"));
}

TEST_F(SearchTest, RowsMarkTheFirstMatchOfTheTermInTitleAndParentsKeepingTheirCase) {
    search("PLAN");
    const auto titles = rowTitles();
    ASSERT_EQ(titles, deskTitles("plan"));
    const int count = static_cast<int>(titles.size());
    for (int row = 0; row < count; ++row) {
        auto* cell = cellAt(row);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->accessibilityIdentifier(), "CRVsearchResultsCell" + std::to_string(row));
        // The last row's separator runs the full width; the others keep the standard inset.
        EXPECT_EQ(cell->separatorInset.left, row + 1 == count ? 0 : 15) << row;
    }
    const auto find = [&](const std::string& title) {
        const auto at = std::find(titles.begin(), titles.end(), title);
        return cellAt(static_cast<int>(at - titles.begin()));
    };
    // Case kept; only the first match is bold.
    auto* sync = find("Plans don't sync between devices");
    EXPECT_EQ(boldRuns(*sync->articleTitle),
              (std::vector<std::pair<std::string, bool>>{{"Plan", true}, {"s don't sync between devices", false}}));
    EXPECT_EQ(boldPart(*sync->categoryAndSectionTitle), "");
    // Found in the body: the title has no bold, the parents do.
    auto* marking = find("Marking steps as done");
    EXPECT_EQ(boldPart(*marking->articleTitle), "");
    EXPECT_EQ(marking->articleTitle->font(), CRVLegacyTheme::currentAppliedTheme()->subHeaderFont);
    EXPECT_EQ(boldPart(*marking->categoryAndSectionTitle), "plan");
    EXPECT_EQ(marking->categoryAndSectionTitle->text(), "Getting started > Your first plan");
    // Self-sizing rows: each is as high as its two lines need.
    EXPECT_GT(results().tableView->rectForRow({0, 0}).height(), 30);
}

TEST_F(SearchTest, OverlappingSearchesLeaveTheLaterAnswerOnShowWithTheBarsTextAtArrival) {
    desk->helpCenter()->setLatency(platform::seconds(2));
    search("plan", 0);
    desk->helpCenter()->setLatency(platform::milliseconds(500));
    search("password", 0);
    EXPECT_EQ(results().numberOfSearches, 2u);
    run(0.6);
    // The second search answered first and stopped the one spinner.
    EXPECT_FALSE(results().loadingSpinner->isAnimating());
    EXPECT_EQ(rowTitles(), deskTitles("password"));
    run(1.5);
    // The first answers last and takes the table, highlighted by the text now in the bar.
    EXPECT_EQ(rowTitles(), deskTitles("plan"));
    EXPECT_EQ(results().searchTerm, "password");
    EXPECT_EQ(boldPart(*cellAt(0)->articleTitle), "");
}

TEST_F(SearchTest, TextChangedWhileSearchingNamesTheEmptyResult) {
    desk->helpCenter()->setLatency(platform::seconds(1));
    search("qqq", 0);
    type("zz");
    run(1.1);
    EXPECT_TRUE(results().tableView->isHidden());
    EXPECT_FALSE(results().noResultsView->isHidden());
    EXPECT_EQ(results().noResultsLabel->text(), localized(LocalizedKey::helpCenterSearchNoResultsTitle) + " \"qqqzz\"");
}

TEST_F(SearchTest, NoResultsShowsTheTermInBoldAndTheContactButtonThatReachesTheOverview) {
    search("sync");
    search("qqzzx");
    EXPECT_TRUE(results().tableView->isHidden());
    EXPECT_FALSE(results().noResultsView->isHidden());
    EXPECT_TRUE(uikit::isShown(*results().noResultsLabel));
    const double size = CRVLegacyTheme::currentAppliedTheme()->subHeaderFont.pointSize();
    const auto runs = results().noResultsLabel->attributedText().runs();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(*runs[0].attributes.get<platform::Font>(platform::AttributeName::font), platform::Font::systemFont(size));
    EXPECT_EQ(*runs[1].attributes.get<platform::Font>(platform::AttributeName::font), platform::Font::boldSystemFont(size));
    EXPECT_EQ(results().noResultsLabel->text(), "No results \"qqzzx\"");

    auto& button = *results().contactSupportButton;
    ASSERT_TRUE(uikit::isShown(button));
    EXPECT_EQ(button.currentTitle(), localized(LocalizedKey::helpCenterSupportContactSupport));
    EXPECT_TRUE(uikit::tap(button));
    EXPECT_EQ(contacts, std::vector<bool>{true});
    // Nothing failed, so no toast.
    EXPECT_FALSE(results().toastWrapper->isShowingError);

    // Whether the button shows is read each time the results appear.
    uikit::tap(*searchController().searchBar()->cancelButton());
    run(0.1);
    configuration->showContactOptionsOnEmptySearch = false;
    search("qqzzx");
    EXPECT_FALSE(results().noResultsView->isHidden());
    EXPECT_FALSE(uikit::isShown(*results().contactSupportButton));

    // An empty term is sent too, and ends the same way.
    const auto calls = desk->helpCenter()->callCount();
    search("");
    EXPECT_EQ(desk->helpCenter()->callCount(), calls + 1);
    EXPECT_FALSE(results().noResultsView->isHidden());
    EXPECT_EQ(results().noResultsLabel->text(), "No results \"\"");
}

TEST_F(SearchTest, EachOpenedResultShowsAboveTheSearchRecordsOneViewAndTellsTheOverview) {
    search("plus");
    const auto data = results().data;
    ASSERT_GE(data.size(), 2u);
    ASSERT_TRUE(uikit::tap(*cellAt(1)));
    run(0.5);
    EXPECT_EQ(opened, std::vector<std::int64_t>{data[1].identifier});
    EXPECT_EQ(desk->helpCenter()->recordedArticleViews(), std::vector<std::int64_t>{data[1].identifier});
    EXPECT_FALSE(results().tableView->indexPathForSelectedRow().has_value());
    ASSERT_EQ(navigation->viewControllers().size(), 2u);
    auto* article = uikit::findByIdentifier(*window, "ArticleStandIn");
    ASSERT_NE(article, nullptr);
    EXPECT_FALSE(navigation->isNavigationBarHidden());
    EXPECT_TRUE(onTop(*article)) << "something of the search lies over the article";

    // Back from the article, the search and its results are as they were.
    navigation->popViewController(false);
    run(0.5);
    EXPECT_TRUE(searchController().isActive());
    EXPECT_TRUE(resultsShown());
    EXPECT_EQ(rowTitles(), deskTitles("plus"));

    // Opening it again is another view; a view the server fails to record changes nothing on screen.
    uikit::tap(*cellAt(1));
    desk->helpCenter()->failNext(1);
    uikit::tap(*cellAt(0));
    run(0.1);
    EXPECT_EQ(opened, (std::vector<std::int64_t>{data[1].identifier, data[1].identifier, data[0].identifier}));
    EXPECT_EQ(desk->helpCenter()->recordedArticleViews(),
              (std::vector<std::int64_t>{data[1].identifier, data[1].identifier}));
    EXPECT_FALSE(results().toastWrapper->isShowingError);
}

TEST_F(SearchTest, OfflineOrFailingSearchesShowAsNoResultsWithoutAToast) {
    search("sync");
    desk->helpCenter()->setOffline(true);
    search("sync");
    EXPECT_FALSE(results().loadingSpinner->isAnimating());
    EXPECT_TRUE(results().tableView->isHidden());
    EXPECT_FALSE(results().noResultsView->isHidden());
    EXPECT_EQ(results().noResultsLabel->text(), "No results \"sync\"");
    EXPECT_FALSE(results().toastWrapper->isShowingError);

    desk->helpCenter()->setOffline(false);
    desk->helpCenter()->failNext(1);
    search("widget");
    EXPECT_FALSE(results().noResultsView->isHidden());
    search("widget");
    EXPECT_EQ(rowTitles(), deskTitles("widget"));
    EXPECT_TRUE(results().noResultsView->isHidden());
}

// The first case-insensitive match is bold, the rest in the theme's sub-header font; no match (or no
// term) leaves the string without attributes. Checked against a folding of its own over an
// alphabet of cased and uncased letters, one and two bytes long.
TEST(SearchHighlighting, EveryStringMarksExactlyItsFirstMatch) {
    const std::vector<std::string> alphabet{"a", "A", "b", "B", "é", "É", "ש", " ", ">", "ß"};
    const auto fold = [](const std::string& letter) {
        if (letter == "A") return std::string("a");
        if (letter == "B") return std::string("b");
        if (letter == "É") return std::string("é");
        return letter;
    };
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
        std::vector<std::string> text(random() % 12), term(random() % 4);
        for (auto& letter : text) letter = alphabet[pick(random)];
        for (auto& letter : term) letter = alphabet[pick(random)];
        std::string string, boldText;
        for (const auto& letter : text) string += letter;
        for (const auto& letter : term) boldText += letter;

        // Expected: the first letter index where the folded term matches.
        std::optional<std::pair<std::size_t, std::size_t>> expected;  // byte offset, byte length
        if (!term.empty())
            for (std::size_t start = 0; start + term.size() <= text.size() && !expected; ++start) {
                bool match = true;
                for (std::size_t i = 0; i < term.size() && match; ++i) match = fold(text[start + i]) == fold(term[i]);
                if (!match) continue;
                std::size_t offset = 0, length = 0;
                for (std::size_t i = 0; i < start; ++i) offset += text[i].size();
                for (std::size_t i = 0; i < term.size(); ++i) length += text[start + i].size();
                expected = {offset, length};
            }

        const auto result =
            CRVHelpCenterSearchResultTableViewCell::attributedStringWithString(string, boldText, platform::Font::systemFont(40));
        ASSERT_EQ(result.string(), string) << "seed " << seed;
        if (!expected) {
            for (const auto& run : result.runs()) ASSERT_TRUE(run.attributes.empty()) << "seed " << seed;
            continue;
        }
        for (std::size_t at = 0; at < string.size(); ++at) {
            const auto* font = result.attributesAt(at).get<platform::Font>(platform::AttributeName::font);
            ASSERT_NE(font, nullptr) << "seed " << seed;
            const bool inside = at >= expected->first && at < expected->first + expected->second;
            ASSERT_EQ(*font, inside ? theme->boldSubHeaderFont : theme->subHeaderFont)
                << "seed " << seed << " text \"" << string << "\" term \"" << boldText << "\" byte " << at;
        }
    }
}

TEST_F(SearchTest, TheContactButtonUnderAnEmptyResultReachesTheRequestFlowAboveTheSearch) {
    belvakit::CRVHelpCenterOverviewRoutes::shared().contactUs = nullptr;
    search("qqzzx");
    ASSERT_TRUE(uikit::tap(*results().contactSupportButton));
    run(0.5);
    EXPECT_TRUE(log.contains(platform::LogLevel::debug, "Presenting Request List UI"));
    ASSERT_EQ(navigation->viewControllers().size(), 2u);
    EXPECT_TRUE(onTop(*navigation->viewControllers().back()->view()));
}

TEST_F(SearchTest, AnOpenedResultIsTheLibrarysArticleScreenForThatArticle) {
    // No route installed: the overview makes the article screen itself.
    belvakit::CRVHelpCenterOverviewRoutes::shared().articleWithArticle = nullptr;
    search("refund");
    ASSERT_EQ(results().data.size(), 1u);
    ASSERT_TRUE(uikit::tap(*cellAt(0)));
    run(1);
    ASSERT_EQ(navigation->viewControllers().size(), 2u);
    auto* article = dynamic_cast<belvakit::CRVArticleViewController*>(navigation->viewControllers().back().get());
    ASSERT_NE(article, nullptr);
    EXPECT_TRUE(onTop(*article->view()));
    EXPECT_EQ(desk->helpCenter()->recordedArticleViews(), std::vector<std::int64_t>{results().data[0].identifier});
}
