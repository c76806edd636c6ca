#include "table_support.hpp"
#include "test_support.hpp"
#include "uikit/probe.hpp"
#include "uikit/layout_constraint.hpp"
#include "uikit/text_measurer.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace uikit;
using uikit_test::RowsModel;

namespace {

class CountingCell : public TableViewCell {
public:
    using TableViewCell::TableViewCell;
    int prepared = 0;
    void prepareForReuse() override {
        TableViewCell::prepareForReuse();
        ++prepared;
    }
};

class TableViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->addSubview(table);
        table->registerCell("row", [this] {
            ++created;
            return std::make_shared<CountingCell>(TableViewCellStyle::defaultStyle, "row");
        });
        table->setDataSource(model);
        table->setDelegate(model);
    }

    void fill(int rows, int sections = 1) {
        model->sections.assign(static_cast<std::size_t>(sections), {});
        for (int s = 0; s < sections; ++s)
            for (int r = 0; r < rows; ++r)
                model->sections[static_cast<std::size_t>(s)].push_back(std::to_string(s) + ":" + std::to_string(r));
    }

    // Cells in the tree, which must be exactly the table's visible cells.
    std::size_t cellsInTree() const {
        std::size_t count = 0;
        for (const auto& child : table->subviews()) count += dynamic_cast<TableViewCell*>(child.get()) != nullptr;
        return count;
    }

    testing_support::VirtualTime time;
    std::shared_ptr<Window> window = std::make_shared<Window>();
    std::shared_ptr<TableView> table = make<TableView>(Rect{0, 0, 320, 480});
    std::shared_ptr<RowsModel> model = std::make_shared<RowsModel>();
    int created = 0;
};

TEST_F(TableViewTest, TenThousandRowsMakeCellsOnlyForTheRowsInView) {
    fill(10000);
    table->rowHeight = 44;
    table->layoutIfNeeded();
    // 480 / 44: rows 0 to 10 show.
    EXPECT_EQ(created, 11);
    EXPECT_EQ(model->cellRequests, 11);
    EXPECT_EQ(table->indexPathsForVisibleRows().size(), 11u);
    EXPECT_EQ(table->contentSize().height, 440000);
    EXPECT_LE(model->heightRequests, 12) << "only rows in view are asked for their height";

    // A jump to the middle reuses the cells that left the view.
    model->cellRequests = 0;
    model->heightRequests = 0;
    table->setContentOffset({0, 220000});
    table->layoutIfNeeded();
    const auto rows = table->indexPathsForVisibleRows();
    ASSERT_EQ(rows.size(), 11u);
    EXPECT_EQ(rows.front(), (IndexPath{0, 5000}));
    EXPECT_EQ(created, 11);
    EXPECT_EQ(model->cellRequests, 11);
    EXPECT_LE(model->heightRequests, 12);
    EXPECT_EQ(cellsInTree(), 11u);
    EXPECT_EQ(table->cellForRow({0, 5000})->textLabel()->text(), "0:5000");
    EXPECT_EQ(table->cellForRow({0, 5000})->frame(), (Rect{0, 220000, 320, 44}));
    EXPECT_EQ(table->cellForRow({0, 4999}), nullptr);
}

TEST_F(TableViewTest, ScrollingStepByStepReusesCellsAndResetsThem) {
    fill(300);
    table->rowHeight = 40;
    table->layoutIfNeeded();
    for (double y = 0; y < 6000; y += 17) {
        table->setContentOffset({0, y});
        table->layoutIfNeeded();
        for (const auto& path : table->indexPathsForVisibleRows())
            ASSERT_EQ(table->cellForRow(path)->textLabel()->text(), "0:" + std::to_string(path.row)) << "at offset " << y;
    }
    // 480 / 40 rows and one cut in two at most, never more.
    EXPECT_LE(created, 13);
    int prepared = 0;
    for (const auto& cell : table->visibleCells()) prepared += static_cast<CountingCell&>(*cell).prepared;
    EXPECT_GT(prepared, 0);
    EXPECT_EQ(cellsInTree() + table->cellsInPool(), static_cast<std::size_t>(created));
}

TEST_F(TableViewTest, AnUnregisteredIdentifierGetsAPlainCellAndAnError) {
    testing_support::CapturedLog log;
    auto cell = table->dequeueReusableCell("nobody", {0, 0});
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->reuseIdentifier(), "nobody");
    EXPECT_EQ(table->dequeueReusableCell("nobody"), nullptr);
    ASSERT_EQ(log.messages(platform::LogLevel::error).size(), 1u);
}

TEST_F(TableViewTest, SelfSizingRowsMeasureTheirContentOnlyWhenShown) {
    // A cell laid out by constraints: a wrapping label 10 points from the top and bottom.
    model->configure = [](TableViewCell& cell, const std::string& text) {
        auto* label = dynamic_cast<Label*>(findByIdentifier(*cell.contentView(), "body"));
        if (!label) {
            auto made = make<Label>();
            made->setAccessibilityIdentifier("body");
            made->setNumberOfLines(0);
            made->setTranslatesAutoresizingMaskIntoConstraints(false);
            cell.contentView()->addSubview(made);
            const std::map<std::string, std::shared_ptr<View>> views{{"label", made}};
            cell.contentView()->addConstraints(LayoutConstraint::constraintsWithVisualFormat("H:|-15-[label]-15-|", {}, views));
            cell.contentView()->addConstraints(LayoutConstraint::constraintsWithVisualFormat("V:|-10-[label]-10-|", {}, views));
            label = made.get();
        }
        label->setText(text);
    };
    const std::string longText(40 * 6, 'x');
    std::string words;
    for (int i = 0; i < 40; ++i) words += "word ";
    model->sections = {{"short", words, "short"}};
    for (int i = 0; i < 200; ++i) model->sections[0].push_back("filler");
    table->estimatedRowHeight = 50;
    table->layoutIfNeeded();

    const auto lineOf = [](const std::string& text, double width) {
        return textMeasurer().measure(platform::AttributedString(text, {{platform::AttributeName::font, platform::Font::systemFont(17)}}),
                                      width, 0).height;
    };
    EXPECT_EQ(table->rectForRow({0, 0}).height(), 20 + lineOf("short", 290));
    const double wrapped = table->rectForRow({0, 1}).height();
    EXPECT_EQ(wrapped, 20 + lineOf(words, 290));
    EXPECT_GT(wrapped, 20 + 2 * lineOf("short", 290)) << "the long row wraps at the cell's width";
    EXPECT_EQ(table->cellForRow({0, 1})->frame().height(), wrapped);
    // Rows not yet shown keep their estimates.
    EXPECT_EQ(table->rectForRow({0, 150}).height(), 50);
    EXPECT_LT(model->cellRequests, 30);

    // A narrower table measures its rows again.
    table->setFrame({0, 0, 200, 480});
    table->layoutIfNeeded();
    EXPECT_EQ(table->rectForRow({0, 1}).height(), 20 + lineOf(words, 170));
}

TEST_F(TableViewTest, BuiltInLabelsSizeDefaultCells) {
    table->registerCell("row", [] { return std::make_shared<TableViewCell>(TableViewCellStyle::subtitle, "row"); });
    model->configure = [](TableViewCell& cell, const std::string& text) {
        cell.textLabel()->setText(text);
        cell.detailTextLabel()->setText("detail");
    };
    model->sections = {{"title"}};
    table->layoutIfNeeded();
    // 17-point and 12-point lines (21 + 15) with 11 points above and below.
    EXPECT_EQ(table->rectForRow({0, 0}).height(), 58);
    const auto cell = table->cellForRow({0, 0});
    EXPECT_LT(cell->textLabel()->frame().maxY(), cell->detailTextLabel()->frame().minY() + 0.01);
}

TEST_F(TableViewTest, TapsSelectTheRowUnderThemThroughTheDelegate) {
    fill(100);
    table->rowHeight = 50;
    table->setContentOffset({0, 1000});
    window->layoutTree();
    ASSERT_TRUE(tap(*table->cellForRow({0, 21})->textLabel()));
    // A tap at a window point goes to the cell drawn there: row 20 starts at the top.
    ASSERT_TRUE(tapAt(*window, {100, 75}));
    EXPECT_EQ(model->selected, (std::vector<IndexPath>{{0, 21}, {0, 21}}));
    ASSERT_TRUE(tapAt(*window, {100, 10}));
    EXPECT_EQ(model->selected.back(), (IndexPath{0, 20}));
    EXPECT_EQ(table->indexPathForSelectedRow(), (IndexPath{0, 20}));
    EXPECT_TRUE(table->cellForRow({0, 20})->isSelected());
    EXPECT_FALSE(table->cellForRow({0, 21})->isSelected());

    model->refuseSelection = true;
    tap(*table->cellForRow({0, 22}));
    EXPECT_EQ(model->selected.size(), 3u);
    table->deselectRow({0, 20}, true);
    EXPECT_EQ(table->indexPathForSelectedRow(), std::nullopt);
}

TEST_F(TableViewTest, ScrollToRowPlacesTheRowWhereAsked) {
    fill(1000);
    model->height = [](const IndexPath& path) { return 30.0 + (path.row % 5) * 10; };
    table->estimatedRowHeight = 44;
    table->layoutIfNeeded();
    table->scrollToRow({0, 500}, TableViewScrollPosition::top, false);
    EXPECT_EQ(table->contentOffset().y, table->rectForRow({0, 500}).minY());
    ASSERT_NE(table->cellForRow({0, 500}), nullptr);
    EXPECT_EQ(table->indexPathsForVisibleRows().front(), (IndexPath{0, 500}));

    table->scrollToRow({0, 700}, TableViewScrollPosition::bottom, true);
    EXPECT_EQ(table->contentOffset().y + 480, table->rectForRow({0, 700}).maxY());
    EXPECT_EQ(table->indexPathsForVisibleRows().back(), (IndexPath{0, 700}));

    table->scrollToRow({0, 600}, TableViewScrollPosition::middle, false);
    const Rect middle = table->rectForRow({0, 600});
    EXPECT_EQ(table->contentOffset().y, middle.midY() - 240);

    // Already in view: `none` leaves the offset alone.
    const double before = table->contentOffset().y;
    table->scrollToRow({0, 601}, TableViewScrollPosition::none, false);
    EXPECT_EQ(table->contentOffset().y, before);
    // The last rows cannot be pulled to the top past the end of the content.
    table->scrollToRow({0, 999}, TableViewScrollPosition::top, false);
    EXPECT_EQ(table->contentOffset().y, table->contentSize().height - 480);

    testing_support::CapturedLog log;
    table->scrollToRow({0, 1000}, TableViewScrollPosition::top, false);
    table->scrollToRow({3, 0}, TableViewScrollPosition::top, false);
    EXPECT_EQ(log.messages(platform::LogLevel::warn).size(), 2u);
}

TEST_F(TableViewTest, SectionHeadersAndTableViewsTakeTheirPlaces) {
    fill(3, 2);
    model->headerTitles = {"First", "Second"};
    table->rowHeight = 44;
    auto header = make<View>(Rect{0, 0, 0, 100});
    table->setTableHeaderView(header);
    auto footer = make<View>(Rect{0, 0, 0, 30});
    table->setTableFooterView(footer);
    auto background = make<View>();
    table->setBackgroundView(background);
    table->setContentOffset({0, 10});
    table->layoutIfNeeded();
    EXPECT_EQ(header->frame(), (Rect{0, 0, 320, 100}));
    EXPECT_EQ(table->rectForHeader(0), (Rect{0, 100, 320, 28}));
    EXPECT_EQ(table->rectForRow({0, 0}).minY(), 128);
    EXPECT_EQ(table->rectForRow({1, 0}).minY(), 100 + 28 + 3 * 44 + 28);
    EXPECT_EQ(footer->frame().minY(), 100 + 2 * (28 + 3 * 44));
    EXPECT_EQ(table->contentSize().height, footer->frame().maxY());
    EXPECT_EQ(background->frame(), (Rect{0, 10, 320, 480}));
    EXPECT_EQ(visibleTexts(*table), (std::vector<std::string>{"First", "0:0", "0:1", "0:2", "Second", "1:0", "1:1", "1:2"}));
    EXPECT_EQ(table->indexPathForRow({5, 130}), (IndexPath{0, 0}));
    EXPECT_EQ(table->indexPathForRow({5, 110}), std::nullopt);
}

} // namespace
