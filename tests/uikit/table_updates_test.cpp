#include "table_support.hpp"
#include "test_support.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace uikit;
using uikit_test::RowsModel;
using Kind = TableUpdate::Kind;

namespace {

class TableUpdatesTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->addSubview(table);
        table->registerCell("row", [] { return std::make_shared<TableViewCell>(TableViewCellStyle::defaultStyle, "row"); });
        table->rowHeight = 40;
        table->setDataSource(model);
        table->setDelegate(model);
    }

    std::vector<std::string> shownTexts() {
        std::vector<std::string> texts;
        for (const auto& cell : table->visibleCells()) texts.push_back(cell->textLabel()->text());
        return texts;
    }

    testing_support::VirtualTime time;
    std::shared_ptr<Window> window = std::make_shared<Window>();
    std::shared_ptr<TableView> table = make<TableView>(Rect{0, 0, 320, 200});
    std::shared_ptr<RowsModel> model = std::make_shared<RowsModel>();
};

TEST_F(TableUpdatesTest, ABatchAppliesDeletionsBeforeInsertionsAndLogsWhatItApplied) {
    model->sections = {{"a", "b", "c", "d"}};
    table->layoutIfNeeded();
    table->clearAppliedUpdates();
    bool completed = false;
    // Deletions name rows as they were, insertions and destinations as they will be.
    model->sections = {{"d", "x", "a", "c"}};
    table->performBatchUpdates(
        [&] {
            table->insertRows({{0, 1}}, TableViewRowAnimation::fade);
            table->deleteRows({{0, 1}}, TableViewRowAnimation::right);
            table->moveRow({0, 3}, {0, 0});
        },
        [&](bool finished) { completed = finished; });
    EXPECT_EQ(shownTexts(), (std::vector<std::string>{"d", "x", "a", "c"}));
    const std::vector<TableUpdate> expected{
        {Kind::insertRows, {}, {{0, 1}}, TableViewRowAnimation::fade, 1, {}},
        {Kind::deleteRows, {}, {{0, 1}}, TableViewRowAnimation::right, 1, {}},
        {Kind::moveRow, {}, {{0, 3}, {0, 0}}, TableViewRowAnimation::none, 1, {}},
    };
    EXPECT_EQ(table->appliedUpdates(), expected);
    // The completion comes after the rows' animation, on the scheduler.
    EXPECT_FALSE(completed);
    time.advance(platform::seconds(0.3));
    EXPECT_TRUE(completed);

    // Single calls are batches of their own.
    table->clearAppliedUpdates();
    model->sections[0].push_back("e");
    table->insertRows({{0, 4}}, TableViewRowAnimation::none);
    model->sections[0].erase(model->sections[0].begin());
    table->deleteRows({{0, 0}});
    ASSERT_EQ(table->appliedUpdates().size(), 2u);
    EXPECT_NE(table->appliedUpdates()[0].batch, table->appliedUpdates()[1].batch);
    EXPECT_EQ(table->numberOfRowsInSection(0), 4);
    EXPECT_EQ(shownTexts(), (std::vector<std::string>{"x", "a", "c", "e"}));
}

TEST_F(TableUpdatesTest, ReloadedRowsAskForNewCellsAndKeptRowsKeepTheirs) {
    model->sections = {{"a", "b", "c"}};
    table->layoutIfNeeded();
    const auto keptCell = table->cellForRow({0, 0});
    const int requests = model->cellRequests;
    model->sections = {{"a", "B", "c"}};
    table->beginUpdates();
    table->reloadRows({{0, 1}}, TableViewRowAnimation::none);
    table->endUpdates();
    EXPECT_EQ(table->cellForRow({0, 0}), keptCell);
    EXPECT_EQ(table->cellForRow({0, 1})->textLabel()->text(), "B");
    EXPECT_EQ(shownTexts(), (std::vector<std::string>{"a", "B", "c"}));
    EXPECT_EQ(model->cellRequests, requests + 1);
}

TEST_F(TableUpdatesTest, ABatchThatDoesNotAddUpReloadsAndSaysWhy) {
    model->sections = {{"a", "b", "c"}};
    table->layoutIfNeeded();
    table->clearAppliedUpdates();
    testing_support::CapturedLog log;
    model->sections = {{"a", "b", "c", "d", "e"}};
    table->insertRows({{0, 3}});
    ASSERT_EQ(table->appliedUpdates().size(), 1u);
    const auto& reload = table->appliedUpdates()[0];
    EXPECT_EQ(reload.kind, Kind::reloadData);
    EXPECT_EQ(reload.failure,
              "Invalid update: invalid number of rows in section 0. The number of rows contained in an existing "
              "section after the update (5) must be equal to the number of rows contained in that section before the "
              "update (3), plus or minus the number of rows inserted or deleted from that section (1 inserted, 0 "
              "deleted) and plus or minus the number of rows moved into or out of that section (0 moved in, 0 moved out).");
    EXPECT_EQ(log.messages(platform::LogLevel::error).size(), 1u);
    EXPECT_EQ(shownTexts(), (std::vector<std::string>{"a", "b", "c", "d", "e"}));

    // Index paths out of range are caught the same way, never followed.
    table->clearAppliedUpdates();
    table->deleteRows({{0, 9}});
    table->deleteSections({4});
    table->moveRow({0, 0}, {2, 0});
    ASSERT_EQ(table->appliedUpdates().size(), 3u);
    EXPECT_EQ(table->appliedUpdates()[0].failure,
              "Invalid update: attempt to delete row 9 from section 0 which only contains 5 rows before the update");
    for (const auto& update : table->appliedUpdates()) EXPECT_EQ(update.kind, Kind::reloadData);
    EXPECT_EQ(shownTexts(), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
}

// A row of the randomized model: a lasting id, and a version that a reload bumps.
struct Item {
    int id;
    int version;
};
struct Section {
    int id;
    std::vector<Item> rows;
};

std::string textOf(const Item& item) { return std::to_string(item.id) + "." + std::to_string(item.version); }

// Every batch is generated as the model after it, and the calls that describe the change.
class RandomBatches {
public:
    explicit RandomBatches(unsigned seed) : random_(seed) {}

    std::vector<Section> model;
    // Rows of the last batch that went or were reloaded: a selection of them ends.
    std::vector<int> unselected;

    // Changes the model and returns the calls to make inside one batch.
    std::vector<std::function<void(TableView&)>> next() {
        const auto old = model;
        unselected.clear();
        std::vector<std::function<void(TableView&)>> calls;
        struct Placed {
            int section;  // old index, -1 for a new section
            Section content;
        };
        std::vector<Placed> sections;
        std::vector<int> deletedSections;
        std::vector<Item> moving;
        std::map<int, IndexPath> oldPlace;
        std::vector<IndexPath> deletedRows, reloadedRows;
        for (int s = 0; s < static_cast<int>(old.size()); ++s) {
            if (chance(0.08)) {
                deletedSections.push_back(s);
                for (const auto& item : old[static_cast<std::size_t>(s)].rows) unselected.push_back(item.id);
                continue;
            }
            Section kept{old[static_cast<std::size_t>(s)].id, {}};
            for (int r = 0; r < static_cast<int>(old[static_cast<std::size_t>(s)].rows.size()); ++r) {
                Item item = old[static_cast<std::size_t>(s)].rows[static_cast<std::size_t>(r)];
                oldPlace[item.id] = {s, r};
                if (chance(0.12)) {
                    deletedRows.push_back({s, r});
                    unselected.push_back(item.id);
                } else if (chance(0.1)) {
                    moving.push_back(item);
                } else {
                    if (chance(0.1)) {
                        reloadedRows.push_back({s, r});
                        unselected.push_back(item.id);
                        ++item.version;
                    }
                    kept.rows.push_back(item);
                }
            }
            sections.push_back({s, kept});
        }
        const int newSections = chance(0.1) ? 1 + pick(1) : 0;
        for (int i = 0; i < newSections; ++i) {
            Section added{nextId_++, {}};
            for (int r = pick(3); r > 0; --r) added.rows.push_back({nextId_++, 0});
            sections.insert(sections.begin() + pick(static_cast<int>(sections.size())), Placed{-1, added});
        }
        std::vector<int> survivors;
        for (int i = 0; i < static_cast<int>(sections.size()); ++i)
            if (sections[static_cast<std::size_t>(i)].section >= 0) survivors.push_back(i);
        std::vector<int> newIds;
        if (!survivors.empty()) {
            for (int n = pick(4); n > 0; --n) {
                moving.push_back({nextId_, 0});
                newIds.push_back(nextId_++);
            }
            for (const Item& item : moving) {
                auto& rows = sections[static_cast<std::size_t>(survivors[static_cast<std::size_t>(pick(static_cast<int>(survivors.size()) - 1))])].content.rows;
                rows.insert(rows.begin() + pick(static_cast<int>(rows.size())), item);
            }
        } else {
            for (const Item& item : moving) {
                deletedRows.push_back(oldPlace[item.id]);
                unselected.push_back(item.id);
            }
            moving.clear();
        }
        model.clear();
        std::vector<int> insertedSections;
        std::vector<IndexPath> insertedRows;
        std::vector<std::pair<IndexPath, IndexPath>> moves;
        for (int f = 0; f < static_cast<int>(sections.size()); ++f) {
            const auto& placed = sections[static_cast<std::size_t>(f)];
            model.push_back(placed.content);
            if (placed.section < 0) {
                insertedSections.push_back(f);
                continue;
            }
            for (int r = 0; r < static_cast<int>(placed.content.rows.size()); ++r) {
                const int id = placed.content.rows[static_cast<std::size_t>(r)].id;
                if (std::find(newIds.begin(), newIds.end(), id) != newIds.end())
                    insertedRows.push_back({f, r});
                else if (std::any_of(moving.begin(), moving.end(), [&](const Item& item) { return item.id == id; }))
                    moves.push_back({oldPlace[id], {f, r}});
            }
        }
        if (!deletedSections.empty()) calls.push_back([=](TableView& t) { t.deleteSections(deletedSections); });
        if (!insertedSections.empty()) calls.push_back([=](TableView& t) { t.insertSections(insertedSections); });
        if (!deletedRows.empty()) calls.push_back([=](TableView& t) { t.deleteRows(deletedRows); });
        if (!reloadedRows.empty()) calls.push_back([=](TableView& t) { t.reloadRows(reloadedRows); });
        if (!insertedRows.empty()) calls.push_back([=](TableView& t) { t.insertRows(insertedRows); });
        for (const auto& [from, to] : moves) calls.push_back([=](TableView& t) { t.moveRow(from, to); });
        std::shuffle(calls.begin(), calls.end(), random_);
        return calls;
    }

    void seed(int sections, int rows) {
        for (int s = 0; s < sections; ++s) {
            Section section{nextId_++, {}};
            for (int r = 0; r < rows; ++r) section.rows.push_back({nextId_++, 0});
            model.push_back(section);
        }
    }

    bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(random_) < p; }
    int pick(int most) { return std::uniform_int_distribution<int>(0, std::max(0, most))(random_); }
    std::mt19937& engine() { return random_; }

private:
    std::mt19937 random_;
    int nextId_ = 1;
};

// The table's shown rows must be exactly the rows in view, each showing its model row.
void expectMatches(TableView& table, const std::vector<Section>& model, const std::string& where) {
    ASSERT_EQ(table.numberOfSections(), static_cast<int>(model.size())) << where;
    for (std::size_t s = 0; s < model.size(); ++s)
        ASSERT_EQ(table.numberOfRowsInSection(static_cast<int>(s)), static_cast<int>(model[s].rows.size())) << where;
    const auto shown = table.indexPathsForVisibleRows();
    std::vector<IndexPath> expected;
    const Rect view = table.bounds();
    for (std::size_t s = 0; s < model.size(); ++s) {
        for (std::size_t r = 0; r < model[s].rows.size(); ++r) {
            const IndexPath path{static_cast<int>(s), static_cast<int>(r)};
            const Rect row = table.rectForRow(path);
            if (row.height() > 0 && row.maxY() > view.minY() && row.minY() < view.maxY()) expected.push_back(path);
        }
    }
    ASSERT_EQ(shown, expected) << where;
    std::size_t inTree = 0;
    for (const auto& child : table.subviews()) inTree += dynamic_cast<TableViewCell*>(child.get()) != nullptr;
    ASSERT_EQ(inTree, shown.size()) << where;
    for (const auto& path : shown) {
        const auto cell = table.cellForRow(path);
        ASSERT_EQ(cell->superview(), &table) << where;
        const Item& item = model[static_cast<std::size_t>(path.section)].rows[static_cast<std::size_t>(path.row)];
        ASSERT_EQ(cell->textLabel()->text(), textOf(item)) << where << " row " << path.description();
        ASSERT_EQ(cell->frame(), table.rectForRow(path)) << where << " row " << path.description();
        ASSERT_EQ(cell->frame().height(), 20 + item.id % 7 * 9) << where << " row " << path.description();
    }
}

TEST_F(TableUpdatesTest, RandomBatchesKeepTheShownRowsEqualToTheDataSource) {
    constexpr int seeds = 40;
    constexpr int steps = 100;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        RandomBatches batches(seed);
        batches.seed(3, 8);
        auto source = std::make_shared<RowsModel>();
        const auto sync = [&] {
            source->sections.clear();
            source->headerTitles.clear();
            for (const auto& section : batches.model) {
                source->sections.emplace_back();
                for (const auto& item : section.rows) source->sections.back().push_back(textOf(item));
                source->headerTitles.push_back(section.id % 2 ? "section " + std::to_string(section.id) : "");
            }
        };
        sync();
        // Heights follow the item, so rows that move carry their height along.
        source->height = [&](const IndexPath& path) {
            const auto& item = batches.model[static_cast<std::size_t>(path.section)].rows[static_cast<std::size_t>(path.row)];
            return 20.0 + item.id % 7 * 9;
        };
        auto subject = make<TableView>(Rect{0, 0, 320, 300});
        window->addSubview(subject);
        subject->registerCell("row", [] { return std::make_shared<TableViewCell>(TableViewCellStyle::defaultStyle, "row"); });
        subject->setDataSource(source);
        subject->setDelegate(source);
        subject->layoutIfNeeded();
        testing_support::CapturedLog quiet;  // the wrong batches' errors
        std::optional<int> selectedId;
        for (int step = 0; step < steps; ++step) {
            const std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            const auto calls = batches.next();
            // Now and then a batch is wrong on purpose: it announces a section too many.
            const bool wrong = batches.chance(0.05);
            sync();
            if (selectedId && (wrong || std::count(batches.unselected.begin(), batches.unselected.end(), *selectedId)))
                selectedId.reset();
            subject->clearAppliedUpdates();
            subject->performBatchUpdates([&] {
                for (const auto& call : calls) call(*subject);
                if (wrong) subject->insertSections({static_cast<int>(batches.model.size())});
            });
            if (wrong) {
                ASSERT_EQ(subject->appliedUpdates().back().kind, Kind::reloadData) << where;
                ASSERT_FALSE(subject->appliedUpdates().back().failure.empty()) << where;
            } else {
                for (const auto& update : subject->appliedUpdates()) ASSERT_EQ(update.failure, "") << where;
                ASSERT_EQ(subject->appliedUpdates().size(), calls.size()) << where;
            }
            subject->setContentOffset(subject->clampedOffset({0, double(batches.pick(static_cast<int>(subject->contentSize().height)))}));
            subject->layoutIfNeeded();
            expectMatches(*subject, batches.model, where);
            if (::testing::Test::HasFatalFailure()) return;
            // The selection follows its row until the row goes or is reloaded.
            const auto selected = subject->indexPathForSelectedRow();
            ASSERT_EQ(selected.has_value(), selectedId.has_value()) << where;
            if (selected) {
                const auto& item = batches.model[static_cast<std::size_t>(selected->section)].rows[static_cast<std::size_t>(selected->row)];
                ASSERT_EQ(item.id, *selectedId) << where;
            }
            const auto visible = subject->indexPathsForVisibleRows();
            if (!visible.empty() && batches.chance(0.3)) {
                const IndexPath chosen = visible[static_cast<std::size_t>(batches.pick(static_cast<int>(visible.size()) - 1))];
                subject->selectRow(chosen, false, TableViewScrollPosition::none);
                selectedId = batches.model[static_cast<std::size_t>(chosen.section)].rows[static_cast<std::size_t>(chosen.row)].id;
            }
        }
        subject->removeFromSuperview();
    }
}

} // namespace
