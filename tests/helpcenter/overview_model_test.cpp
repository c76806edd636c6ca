#include "belvakit/helpcenter/help_center_data_source.hpp"
#include "belvakit/helpcenter/help_center_error_handler_utils.hpp"
#include "belvakit/helpcenter/help_center_overview_table_handler.hpp"
#include "belvakit/helpcenter/help_center_table_view_model.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace belvakit;
using dastrel::CRVHelpCenterArticleViewModel;
using dastrel::CRVHelpCenterCategoryViewModel;
using dastrel::CRVHelpCenterSectionViewModel;

namespace {

CRVHelpCenterSectionViewModel section(std::int64_t id, int loaded, std::int64_t count) {
    CRVHelpCenterSectionViewModel model{id, "S" + std::to_string(id), "See all", {}, count};
    for (int index = 0; index < loaded; ++index) model.articles.push_back({id * 100 + index, "A" + std::to_string(index)});
    return model;
}

std::vector<int> kinds(const CRVHelpCenterTableViewModel& model, int tableSection) {
    std::vector<int> out;
    for (int row = 0; row < model.numberOfRowsInTableSection(tableSection); ++row)
        out.push_back(model.cellTypeForIndexPath({tableSection, row}));
    return out;
}

} // namespace

TEST(HelpCenterOverviewModel, RowsAreTitleArticlesSeeAllAndSpacersExceptAfterTheLastSection) {
    const CRVHelpCenterTableViewModel model({
        {1, "One", {section(10, 2, 2), section(11, 1, 4), section(12, 1, 1)}},
        {2, "Two", {section(20, 0, 0)}},
    });
    // A has no See all (all loaded), B has one, C is last: spacers after A and B only.
    EXPECT_EQ(kinds(model, 0), (std::vector<int>{0, 1, 1, 4, 0, 1, 3, 4, 0, 1}));
    EXPECT_EQ(kinds(model, 1), (std::vector<int>{0}));
    EXPECT_EQ(model.cellTypes().entryCount(), 11u);
    EXPECT_EQ(model.titleForTableSection(1), "Two");
    EXPECT_EQ(model.numberOfTableSecitons(), 2);

    EXPECT_EQ(model.sectionAtIndexPath({0, 6})->id, 11);  // the See all row holds its section
    EXPECT_EQ(model.sectionAtIndexPath({0, 7})->id, 11);  // and so does the spacer under it
    EXPECT_EQ(model.articleAtIndexPath({0, 5})->id, 1100);
    EXPECT_EQ(model.articleAtIndexPath({0, 4}), nullptr);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(model.modelForIndexPath({0, 99})));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(model.modelForIndexPath({5, 0})));
    EXPECT_EQ(model.cellTypeForIndexPath({7, 7}), 0);
    EXPECT_EQ(model.categoryForSection(-1), nullptr);
}

TEST(HelpCenterOverviewModel, ASectionWithOnlyACountWritesItsSeeAllAtRowOneAndEqualSectionsShareTheSpacerRule) {
    // The second section has three articles on the server and none loaded.
    const CRVHelpCenterTableViewModel odd({{1, "C", {section(10, 2, 2), section(11, 0, 3)}}});
    EXPECT_EQ(kinds(odd, 0), (std::vector<int>{0, 3, 1, 4, 0, 0}));
    EXPECT_EQ(odd.sectionAtIndexPath({0, 5})->id, 11);  // its own See all row reads as a title
    EXPECT_EQ(odd.cellTypes().entryCount(), 5u);

    // In first place the same section is right.
    const CRVHelpCenterTableViewModel first({{1, "C", {section(11, 0, 3)}}});
    EXPECT_EQ(kinds(first, 0), (std::vector<int>{0, 3}));

    // A section equal to the last one is taken for it: no spacer under either.
    const auto twin = section(10, 1, 1);
    const CRVHelpCenterTableViewModel twins({{1, "C", {twin, twin}}});
    EXPECT_EQ(kinds(twins, 0), (std::vector<int>{0, 1, 0, 1}));
    EXPECT_FALSE(CRVHelpCenterOverviewUtil::shouldAddSpacerToSection(twin, {1, "C", {twin, twin}}));
}

TEST(HelpCenterOverviewModel, SeeAllBecomesLoadingAndTheFullListReplacesItWhileOtherLoadingRowsReturn) {
    CRVHelpCenterTableViewModel model({{1, "C", {section(10, 1, 3), section(11, 1, 2)}}, {2, "D", {section(20, 1, 1)}}});
    EXPECT_EQ(kinds(model, 0), (std::vector<int>{0, 1, 3, 4, 0, 1, 3}));
    model.didSelectSeeAllAtIndexPath({0, 2});
    model.didSelectSeeAllAtIndexPath({0, 6});
    EXPECT_EQ(kinds(model, 0), (std::vector<int>{0, 1, 2, 4, 0, 1, 2}));

    const auto before = model.categories();
    model.updateSection(*model.sectionAtIndexPath({0, 2}), {{1000, "x"}, {1001, "y"}, {1002, "z"}}, {0, 2});
    EXPECT_EQ(kinds(model, 0), (std::vector<int>{0, 1, 1, 1, 4, 0, 1, 3}));
    EXPECT_EQ(model.categories()[1], before[1]);
    EXPECT_EQ(model.articleAtIndexPath({0, 3})->name, "z");

    // A path outside the table changes nothing.
    model.updateSection(section(99, 0, 0), {}, {9, 0});
    EXPECT_EQ(model.numberOfRowsInTableSection(0), 8);
}

TEST(HelpCenterOverviewModel, ForEveryTreeEachRowHasOneKindThatMatchesItsModel) {
    for (unsigned seed : {11u, 12u, 13u}) {
        std::mt19937 random(seed);
        for (int round = 0; round < 1000; ++round) {
            CRVHelpCenterCategories categories;
            std::int64_t nextId = 1;
            const int categoryCount = std::uniform_int_distribution<int>(0, 4)(random);
            for (int c = 0; c < categoryCount; ++c) {
                CRVHelpCenterCategoryViewModel category{c + 1, "C", {}};
                const int sectionCount = std::uniform_int_distribution<int>(1, 4)(random);
                for (int s = 0; s < sectionCount; ++s) {
                    // Ordinary sections: at least one article loaded, the count at least that.
                    const int loaded = std::uniform_int_distribution<int>(1, 6)(random);
                    category.sections.push_back(section(nextId++, loaded, loaded + std::uniform_int_distribution<int>(0, 3)(random)));
                }
                categories.push_back(category);
            }
            const CRVHelpCenterTableViewModel model(categories);
            std::size_t rows = 0;
            for (int t = 0; t < model.numberOfTableSecitons(); ++t) {
                for (int row = 0; row < model.numberOfRowsInTableSection(t); ++row) {
                    const uikit::IndexPath path{t, row};
                    ASSERT_TRUE(model.cellTypes().entry(path)) << "seed " << seed << " round " << round << " " << path.description();
                    const bool isArticle = model.cellTypeForIndexPath(path) == CRVHelpCenterCellTypeArticle;
                    ASSERT_EQ(isArticle, model.articleAtIndexPath(path) != nullptr) << "seed " << seed << " round " << round;
                    ASSERT_EQ(!isArticle, model.sectionAtIndexPath(path) != nullptr) << "seed " << seed << " round " << round;
                }
                rows += static_cast<std::size_t>(model.numberOfRowsInTableSection(t));
            }
            ASSERT_EQ(model.cellTypes().entryCount(), rows) << "seed " << seed << " round " << round;
        }
    }
}

TEST(HelpCenterOverviewModel, AnEmptyAnswerBecomesTheErrorOfItsGrouping) {
    using Group = dastrel::CRVHelpCenterOverviewGroupType;
    struct Case {
        Group group;
        std::optional<std::vector<std::string>> labels;
        long code;
        const char* text;
    };
    const Case cases[] = {
        {Group::none, std::vector<std::string>{"a"}, 102, "Unable to load articles with labels"},
        {Group::none, std::vector<std::string>{}, 103, "No help center content available"},
        {Group::none, std::nullopt, 103, "No help center content available"},
        {Group::section, std::vector<std::string>{"a"}, 101, "Unable to load sections"},
        {Group::category, std::nullopt, 100, "Unable to load categories"},
        {static_cast<Group>(7), std::nullopt, 103, "No help center content available"},
    };
    for (const auto& c : cases) {
        dastrel::CRVHelpCenterOverviewContentModel model;
        model.groupType = c.group;
        model.labels = c.labels;
        const auto error = CRVHelpCenterErrorHandlerUtils::buildErrorForEmptyReturnForHelpCenterModel(model);
        EXPECT_EQ(error.domain, "com.corvane.help.center");
        EXPECT_EQ(error.code, c.code);
        EXPECT_EQ(error.localizedDescription, c.text);
    }
    EXPECT_TRUE(CRVHelpCenterOverviewTableHandler::newRowsFromIndexPath({2, 5}, 0).empty());
    EXPECT_TRUE(CRVHelpCenterOverviewTableHandler::newRowsFromIndexPath({2, 5}, -1).empty());
    EXPECT_EQ(CRVHelpCenterOverviewTableHandler::newRowsFromIndexPath({2, 5}, 2),
              (std::vector<uikit::IndexPath>{{2, 5}, {2, 6}}));
}

namespace {

// The lookup as a map, built the plain way: each section's own lookup merged in, its entry count
// moving the row on.
std::map<uikit::IndexPath, int> referenceLookup(const CRVHelpCenterCategories& categories) {
    std::map<uikit::IndexPath, int> result;
    for (int s = 0; s < static_cast<int>(categories.size()); ++s) {
        int row = 0;
        const auto& category = categories[static_cast<std::size_t>(s)];
        for (const auto& part : category.sections) {
            std::map<uikit::IndexPath, int> own{{{s, row}, 0}};
            int counter = 0;
            for (int i = 0; i < static_cast<int>(part.articles.size()); ++i) own[{s, counter = row + 1 + i}] = 1;
            if (part.article_count > static_cast<std::int64_t>(part.articles.size())) own[{s, ++counter}] = 3;
            for (const auto& [path, kind] : own) result[path] = kind;
            row += static_cast<int>(own.size());
            if (!(part == category.sections.back())) result[{s, row++}] = 4;
        }
    }
    return result;
}

} // namespace

TEST(HelpCenterOverviewModel, TheLookupWrittenInPlaceEqualsMergingEachSectionsOwnIncludingOddSections) {
    for (unsigned seed : {21u, 22u}) {
        std::mt19937 random(seed);
        for (int round = 0; round < 1500; ++round) {
            CRVHelpCenterCategories categories;
            std::int64_t nextId = 1;
            for (int c = std::uniform_int_distribution<int>(0, 3)(random); c > 0; --c) {
                CRVHelpCenterCategoryViewModel category{c, "C", {}};
                for (int s = std::uniform_int_distribution<int>(1, 4)(random); s > 0; --s) {
                    const int loaded = std::uniform_int_distribution<int>(0, 3)(random);
                    category.sections.push_back(section(nextId++, loaded, loaded + std::uniform_int_distribution<int>(0, 2)(random)));
                }
                categories.push_back(category);
            }
            const auto lookup = CRVHelpCenterOverviewUtil::buildLookupForCellTypes(categories);
            const auto expected = referenceLookup(categories);
            ASSERT_EQ(lookup.entryCount(), expected.size()) << "seed " << seed << " round " << round;
            for (const auto& [path, kind] : expected)
                ASSERT_EQ(lookup.entry(path), kind) << "seed " << seed << " round " << round << " " << path.description();
        }
    }
}

TEST(HelpCenterDataSource, TheBaseKeepsWhatItsCallbackIsGivenAndMakesNoCells) {
    const auto source = belvakit::CRVHelpCenterDataSource::create<belvakit::CRVHelpCenterDataSource>();
    source->callback(std::vector<std::any>{std::string("a"), std::string("b")}, std::nullopt);
    EXPECT_TRUE(source->hasItems);
    EXPECT_EQ(source->itemCount(), 2u);
    EXPECT_EQ(std::any_cast<std::string>(source->itemAtIndexPath({0, 1})), "b");
    EXPECT_FALSE(source->itemAtIndexPath({0, 2}).has_value());
    EXPECT_EQ(source->cellIdentifierForDataSource(), "CRVSupportTableViewCell");

    const auto table = uikit::make<uikit::TableView>();
    EXPECT_EQ(source->numberOfRowsInSection(*table, 0), 2);
    EXPECT_EQ(source->cellForRowAt(*table, {0, 0}), nullptr);

    // A failure keeps the list; an empty one clears it.
    source->callback(std::nullopt, std::nullopt);
    EXPECT_EQ(source->itemCount(), 2u);
    source->callback(std::vector<std::any>{}, std::nullopt);
    EXPECT_FALSE(source->hasItems);
    EXPECT_EQ(source->itemCount(), 0u);
}
