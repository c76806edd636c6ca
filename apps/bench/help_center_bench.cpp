// `hc_overview`: the rows of a Help Center overview of 50 categories x 10 sections x 5 articles
// (sections reporting more articles than they hold, so each has a See all row): the lookups built
// from the tree, then every row's kind, model and title read as the table asks for them, against
// one walk over the same tree copying each title.
#include "harness.hpp"

#include "belvakit/helpcenter/help_center_table_view_model.hpp"

#include <string>
#include <vector>

namespace {

using belvakit::CRVHelpCenterCategories;

CRVHelpCenterCategories tree() {
    CRVHelpCenterCategories categories;
    std::int64_t id = 1;
    for (int c = 0; c < 50; ++c) {
        dastrel::CRVHelpCenterCategoryViewModel category{id++, "Category number " + std::to_string(c), {}};
        for (int s = 0; s < 10; ++s) {
            dastrel::CRVHelpCenterSectionViewModel section{id++, "Section " + std::to_string(s) + " of the category", "See all 8 articles", {}, 8};
            for (int a = 0; a < 5; ++a)
                section.articles.push_back({id++, "How to do thing number " + std::to_string(a) + " without trouble"});
            category.sections.push_back(std::move(section));
        }
        categories.push_back(std::move(category));
    }
    return categories;
}

void rows(benchmark::State& run) {
    belvakit::CRVHelpCenterTableViewModel model;
    model.updateWithCategories(tree());
    std::vector<std::string> titles;
    for (auto _ : run) {
        model.rebuildLookup();
        titles.clear();
        for (int section = 0; section < model.numberOfTableSecitons(); ++section) {
            titles.push_back(model.titleForTableSection(section));
            for (int row = 0; row < model.numberOfRowsInTableSection(section); ++row) {
                const uikit::IndexPath path{section, row};
                const int kind = model.cellTypeForIndexPath(path);
                if (kind == belvakit::CRVHelpCenterCellTypeArticle) {
                    titles.push_back(model.articleAtIndexPath(path)->name);
                } else if (kind == belvakit::CRVHelpCenterCellTypeSeeAll) {
                    titles.push_back(model.sectionAtIndexPath(path)->detailTitle);
                } else if (kind == belvakit::CRVHelpCenterCellTypeSection) {
                    titles.push_back(model.sectionAtIndexPath(path)->name);
                }
            }
        }
        benchmark::DoNotOptimize(titles.data());
    }
}

void walk(benchmark::State& run) {
    const auto categories = tree();
    std::vector<std::string> titles;
    for (auto _ : run) {
        titles.clear();
        for (const auto& category : categories) {
            titles.push_back(category.name);
            for (const auto& section : category.sections) {
                titles.push_back(section.name);
                for (const auto& article : section.articles) titles.push_back(article.name);
            }
        }
        benchmark::DoNotOptimize(titles.data());
    }
}

std::vector<bench::Fact> facts() {
    const belvakit::CRVHelpCenterTableViewModel model(tree());
    double rowCount = 0;
    for (int section = 0; section < model.numberOfTableSecitons(); ++section) rowCount += model.numberOfRowsInTableSection(section);
    return {{"hc_overview rows of 50 x 10 x 5", rowCount, "rows"}};
}

} // namespace

namespace bench {

std::vector<Metric> helpCenterMetrics() {
    return {{"hc_overview", 3, rows, walk, facts}};
}

} // namespace bench
