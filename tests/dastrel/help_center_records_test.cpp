#include "dastrel/help_center.hpp"

#include <gtest/gtest.h>

using namespace dastrel;

TEST(HelpCenterRecords, ReplacingASectionOrItsArticlesLeavesTheOriginalAlone) {
    const CRVHelpCenterSectionViewModel a{1, "A", "See all 3 articles", {{11, "one"}}, 3};
    const CRVHelpCenterSectionViewModel b{2, "B", "", {{21, "two"}}, 1};
    const CRVHelpCenterCategoryViewModel category{7, "Cat", {a, b}};

    const auto full = a.sectionByReplacingWithArticles({{11, "one"}, {12, "x"}, {13, "y"}});
    EXPECT_EQ(a.articles.size(), 1u);
    EXPECT_EQ(full.articles.size(), 3u);
    EXPECT_EQ(full.article_count, 3);

    const auto updated = category.updateWithSection(full);
    EXPECT_EQ(category.sections[0], a);
    EXPECT_EQ(updated.sections[0], full);
    EXPECT_EQ(updated.sections[1], b);
    // A section the category does not hold changes nothing.
    EXPECT_EQ(category.updateWithSection({99, "Z", "", {}, 0}), category);

    CRVHelpCenterArticle article;
    article.identifier = 5;
    article.title = "Five";
    EXPECT_EQ(CRVHelpCenterArticleViewModel::convertWithArticles({article}),
              (std::vector<CRVHelpCenterArticleViewModel>{{5, "Five"}}));
}

TEST(HelpCenterRecords, FileSizesReadAsAPhoneShowsThem) {
    const std::pair<std::int64_t, const char*> cases[] = {{0, "0 bytes"},      {999, "999 bytes"}, {1000, "1 KB"},
                                                          {12'499, "12 KB"},   {999'499, "999 KB"},
                                                          {1'500'000, "1.5 MB"}, {2'000'000'000, "2.0 GB"},
                                                          {-5, "0 bytes"}};
    for (const auto& [size, text] : cases) {
        CRVHelpCenterAttachment file;
        file.size = size;
        EXPECT_EQ(file.humanReadableFileSize(), text) << size;
    }
}

TEST(HelpCenterRecords, ASearchTakesItsScopeFromTheContentModel) {
    CRVHelpCenterOverviewContentModel model;
    model.groupType = CRVHelpCenterOverviewGroupType::section;
    model.groupIds = {4, 5};
    model.labels = std::vector<std::string>{"x"};
    CRVHelpCenterSearch search;
    search.setQuery("q");
    search.addSearchContentScope(model);
    EXPECT_EQ(search.sectionIds, (std::vector<std::int64_t>{4, 5}));
    EXPECT_TRUE(search.categoryIds.empty());
    EXPECT_EQ(search.labels, model.labels);

    model.groupType = CRVHelpCenterOverviewGroupType::category;
    model.labels.reset();
    search.addSearchContentScope(model);
    EXPECT_EQ(search.categoryIds, (std::vector<std::int64_t>{4, 5}));
    EXPECT_TRUE(search.sectionIds.empty());
    EXPECT_FALSE(search.labels);
    EXPECT_EQ(search.query, "q");
}
