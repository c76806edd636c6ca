#pragma once

#include "uikit/index_path.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/table_view_cell.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace uikit {

class TableView;

enum class TableViewStyle { plain = 0, grouped = 1 };
// As the platform numbers them: fade 0, right 1, left 2, top 3, bottom 4, none 5, middle 6.
enum class TableViewRowAnimation { fade = 0, right = 1, left = 2, top = 3, bottom = 4, none = 5, middle = 6, automatic = 100 };
enum class TableViewScrollPosition { none = 0, top = 1, middle = 2, bottom = 3 };
enum class TableViewCellSeparatorStyle { none = 0, singleLine = 1 };

// Where a table's rows come from. Only the row count and the cell are required.
class TableViewDataSource {
public:
    virtual ~TableViewDataSource() = default;
    virtual int numberOfSections(TableView&) { return 1; }
    virtual int numberOfRowsInSection(TableView& table, int section) = 0;
    // Usually a cell from `dequeueReusableCell`, filled in for the row.
    virtual std::shared_ptr<TableViewCell> cellForRowAt(TableView& table, const IndexPath& indexPath) = 0;
    virtual std::optional<std::string> titleForHeader(TableView&, int) { return std::nullopt; }
    virtual std::optional<std::string> titleForFooter(TableView&, int) { return std::nullopt; }
};

// What a table asks of and tells its owner about sizes, display and selection. Every call has a
// default; heights default to the table's own properties.
class TableViewDelegate {
public:
    virtual ~TableViewDelegate() = default;
    // `automaticDimension` makes the row as high as its cell's content.
    virtual double heightForRowAt(TableView& table, const IndexPath& indexPath);
    // Used for rows not yet shown, so that long tables lay out without measuring every row.
    virtual double estimatedHeightForRowAt(TableView& table, const IndexPath& indexPath);
    virtual double heightForHeader(TableView& table, int section);
    virtual double heightForFooter(TableView& table, int section);
    virtual std::shared_ptr<View> viewForHeader(TableView&, int) { return nullptr; }
    virtual std::shared_ptr<View> viewForFooter(TableView&, int) { return nullptr; }
    virtual void willDisplay(TableView&, TableViewCell&, const IndexPath&) {}
    virtual void didEndDisplaying(TableView&, TableViewCell&, const IndexPath&) {}
    // None keeps the row from being selected.
    virtual std::optional<IndexPath> willSelectRowAt(TableView&, const IndexPath& indexPath) { return indexPath; }
    virtual void didSelectRowAt(TableView&, const IndexPath&) {}
    virtual void didDeselectRowAt(TableView&, const IndexPath&) {}
};

// One change a table applied, as tests read it back. A move holds its source and destination
// in `indexPaths`; changes applied together share a batch number.
struct TableUpdate {
    enum class Kind { reloadData, insertSections, deleteSections, reloadSections, insertRows, deleteRows, reloadRows, moveRow };
    Kind kind = Kind::reloadData;
    std::vector<int> sections;
    std::vector<IndexPath> indexPaths;
    TableViewRowAnimation animation = TableViewRowAnimation::none;
    int batch = 0;
    // Why the table reloaded instead of applying a batch that did not add up.
    std::string failure;
    bool operator==(const TableUpdate&) const = default;
};
std::string_view toString(TableUpdate::Kind kind);

// Rows in sections, laid out one under the other. Only the rows in view have cells; those that
// scroll out go back to a pool per reuse identifier. Heights of rows not yet shown are estimates,
// so the cost of a layout follows what is in view, not the length of the table.
class TableView : public ScrollView {
public:
    explicit TableView(Rect frame = {}, TableViewStyle style = TableViewStyle::plain);
    ~TableView() override;
    std::string_view className() const override { return "UITableView"; }
    TableViewStyle style() const { return style_; }

    // Held weakly, as on the platform.
    void setDataSource(const std::shared_ptr<TableViewDataSource>& dataSource);
    void setDelegate(const std::shared_ptr<TableViewDelegate>& delegate);
    std::shared_ptr<TableViewDataSource> dataSource() const { return dataSource_.lock(); }
    std::shared_ptr<TableViewDelegate> delegate() const { return delegate_.lock(); }

    // Reuse.
    using CellFactory = std::function<std::shared_ptr<TableViewCell>()>;
    void registerCell(const std::string& identifier, CellFactory factory);
    template <class Cell>
    void registerCell(const std::string& identifier) {
        registerCell(identifier, [identifier] { return std::make_shared<Cell>(TableViewCellStyle::defaultStyle, identifier); });
    }
    // A pooled cell, or a new one from the registered factory. An identifier nobody registered
    // gets a plain cell and an error in the log.
    std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& identifier, const IndexPath& indexPath);
    // A pooled or registered cell, or none.
    std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& identifier);

    // Sizes.
    double rowHeight = automaticDimension;
    // Automatic: the row height when it is fixed, else 44. Zero asks every row's height up front.
    double estimatedRowHeight = automaticDimension;
    double sectionHeaderHeight = automaticDimension;
    double sectionFooterHeight = automaticDimension;

    // Looks.
    TableViewCellSeparatorStyle separatorStyle = TableViewCellSeparatorStyle::singleLine;
    std::optional<platform::Color> separatorColor = platform::Color{0.78, 0.78, 0.8, 1};
    const std::shared_ptr<View>& tableHeaderView() const { return tableHeaderView_; }
    void setTableHeaderView(std::shared_ptr<View> view);
    const std::shared_ptr<View>& tableFooterView() const { return tableFooterView_; }
    void setTableFooterView(std::shared_ptr<View> view);
    // Fills the table behind the rows and does not scroll.
    const std::shared_ptr<View>& backgroundView() const { return backgroundView_; }
    void setBackgroundView(std::shared_ptr<View> view);

    // Data.
    void reloadData();
    int numberOfSections();
    int numberOfRowsInSection(int section);

    // Batch updates: deletions and reloads name rows as they were, insertions and move
    // destinations as they will be. Outside a batch each call is a batch of its own. A batch
    // that does not match the data source's new counts is logged and becomes a reload.
    void beginUpdates();
    void endUpdates();
    void performBatchUpdates(const std::function<void()>& updates, std::function<void(bool)> completion = {});
    void insertRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation = TableViewRowAnimation::automatic);
    void deleteRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation = TableViewRowAnimation::automatic);
    void reloadRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation = TableViewRowAnimation::automatic);
    void moveRow(const IndexPath& from, const IndexPath& to);
    void insertSections(const std::vector<int>& sections, TableViewRowAnimation animation = TableViewRowAnimation::automatic);
    void deleteSections(const std::vector<int>& sections, TableViewRowAnimation animation = TableViewRowAnimation::automatic);
    void reloadSections(const std::vector<int>& sections, TableViewRowAnimation animation = TableViewRowAnimation::automatic);

    // What the table applied, in order, until a test clears it.
    const std::vector<TableUpdate>& appliedUpdates() const { return applied_; }
    void clearAppliedUpdates() { applied_.clear(); }

    // Rows in view. These lay the table out first if it asked for it.
    std::shared_ptr<TableViewCell> cellForRow(const IndexPath& indexPath);
    std::vector<std::shared_ptr<TableViewCell>> visibleCells();
    std::vector<IndexPath> indexPathsForVisibleRows();
    std::optional<IndexPath> indexPathForCell(const TableViewCell& cell) const;

    // Geometry, in content coordinates.
    Rect rectForRow(const IndexPath& indexPath);
    Rect rectForHeader(int section);
    Rect rectForSection(int section);
    std::optional<IndexPath> indexPathForRow(Point point);
    // Scrolls so the row shows where asked; `none` scrolls only as far as needed.
    void scrollToRow(const IndexPath& indexPath, TableViewScrollPosition position, bool animated);

    // Selection.
    bool allowsSelection = true;
    std::optional<IndexPath> indexPathForSelectedRow() const { return selected_; }
    void selectRow(const std::optional<IndexPath>& indexPath, bool animated, TableViewScrollPosition position);
    void deselectRow(const IndexPath& indexPath, bool animated);
    // What a tap on a row's cell does: select it and tell the delegate.
    bool didTapCell(TableViewCell& cell);

    // Cells waiting in the reuse pools; for tests and benchmarks.
    std::size_t cellsInPool() const;

    void layoutSubviews() override;
    Size sizeThatFits(Size size) const override;

private:
    struct Layout;
    struct Pending;
    void ensureLoaded();
    void load();
    void applyBatch();
    void record(TableUpdate update);
    void enqueue(const std::shared_ptr<TableViewCell>& cell);
    void recycleVisible(const IndexPath& indexPath, const std::shared_ptr<TableViewCell>& cell);
    std::shared_ptr<TableViewCell> cellFromDataSource(const IndexPath& indexPath);
    double measureRow(const IndexPath& indexPath, std::shared_ptr<TableViewCell>& cell);
    bool ensureRowHeight(const IndexPath& indexPath, std::shared_ptr<TableViewCell>* keep);
    std::shared_ptr<View> sectionView(int section, bool header);
    double sectionHeight(int section, bool header, std::shared_ptr<View>& view);
    double estimateRow(const IndexPath& indexPath);
    double askRowHeight(const IndexPath& indexPath);
    void updateContentSize();
    void layoutRows();
    bool validIndexPath(const IndexPath& indexPath);
    double contentTop() const;
    void configureSeparator(TableViewCell& cell, const IndexPath& indexPath);

    TableViewStyle style_;
    std::weak_ptr<TableViewDataSource> dataSource_;
    std::weak_ptr<TableViewDelegate> delegate_;
    std::map<std::string, CellFactory> factories_;
    std::map<std::string, std::vector<std::shared_ptr<TableViewCell>>> pool_;
    std::map<IndexPath, std::shared_ptr<TableViewCell>> visible_;
    std::unique_ptr<Layout> layout_;
    std::unique_ptr<Pending> pending_;
    std::vector<TableUpdate> applied_;
    std::shared_ptr<View> tableHeaderView_;
    std::shared_ptr<View> tableFooterView_;
    std::shared_ptr<View> backgroundView_;
    std::optional<IndexPath> selected_;
    bool loaded_ = false;
    bool inLayout_ = false;
    int updateDepth_ = 0;
    int batchCount_ = 0;
    unsigned generation_ = 0;
    double measuredWidth_ = -1;
};

} // namespace uikit
