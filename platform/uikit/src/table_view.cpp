#include "uikit/table_view.hpp"

#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "table_layout.hpp"

#include <algorithm>
#include <cmath>

namespace uikit {

double TableViewDelegate::heightForRowAt(TableView& table, const IndexPath&) { return table.rowHeight; }
double TableViewDelegate::estimatedHeightForRowAt(TableView& table, const IndexPath&) { return table.estimatedRowHeight; }
double TableViewDelegate::heightForHeader(TableView& table, int) { return table.sectionHeaderHeight; }
double TableViewDelegate::heightForFooter(TableView& table, int) { return table.sectionFooterHeight; }

std::string_view toString(TableUpdate::Kind kind) {
    switch (kind) {
    case TableUpdate::Kind::reloadData: return "reloadData";
    case TableUpdate::Kind::insertSections: return "insertSections";
    case TableUpdate::Kind::deleteSections: return "deleteSections";
    case TableUpdate::Kind::reloadSections: return "reloadSections";
    case TableUpdate::Kind::insertRows: return "insertRows";
    case TableUpdate::Kind::deleteRows: return "deleteRows";
    case TableUpdate::Kind::reloadRows: return "reloadRows";
    case TableUpdate::Kind::moveRow: return "moveRow";
    }
    return "unknown";
}

TableView::TableView(Rect frame, TableViewStyle style)
    : ScrollView(frame), style_(style), layout_(std::make_unique<Layout>()) {
    setBackgroundColor(style == TableViewStyle::grouped ? platform::Color{0.94, 0.94, 0.96, 1}
                                                        : platform::Color::white());
}

TableView::~TableView() = default;

void TableView::setDataSource(const std::shared_ptr<TableViewDataSource>& dataSource) {
    dataSource_ = dataSource;
    loaded_ = false;
    setNeedsLayout();
}

void TableView::setDelegate(const std::shared_ptr<TableViewDelegate>& delegate) {
    delegate_ = delegate;
    loaded_ = false;
    setNeedsLayout();
}

// Reuse.

void TableView::registerCell(const std::string& identifier, CellFactory factory) {
    if (factory)
        factories_[identifier] = std::move(factory);
    else
        factories_.erase(identifier);
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& identifier) {
    if (auto pooled = pool_.find(identifier); pooled != pool_.end() && !pooled->second.empty()) {
        auto cell = std::move(pooled->second.back());
        pooled->second.pop_back();
        cell->prepareForReuse();
        return cell;
    }
    const auto factory = factories_.find(identifier);
    if (factory == factories_.end()) return nullptr;
    auto cell = factory->second();
    if (cell && cell->reuseIdentifier().empty()) cell->setReuseIdentifier(identifier);
    return cell;
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& identifier, const IndexPath& indexPath) {
    if (auto cell = dequeueReusableCell(identifier)) return cell;
    platform::log::write(platform::LogLevel::error, "UITableView: no cell registered for reuse identifier \"" + identifier +
                                                        "\" at " + indexPath.description());
    return std::make_shared<TableViewCell>(TableViewCellStyle::defaultStyle, identifier);
}

std::size_t TableView::cellsInPool() const {
    std::size_t count = 0;
    for (const auto& [identifier, cells] : pool_) count += cells.size();
    return count;
}

void TableView::enqueue(const std::shared_ptr<TableViewCell>& cell) {
    if (!cell) return;
    cell->removeFromSuperview();
    if (cell->reuseIdentifier().empty()) return;
    auto& pooled = pool_[cell->reuseIdentifier()];
    if (std::find(pooled.begin(), pooled.end(), cell) == pooled.end()) pooled.push_back(cell);
}

void TableView::recycleVisible(const IndexPath& indexPath, const std::shared_ptr<TableViewCell>& cell) {
    enqueue(cell);
    if (auto told = delegate()) told->didEndDisplaying(*this, *cell, indexPath);
}

// Looks.

void TableView::setTableHeaderView(std::shared_ptr<View> view) {
    if (tableHeaderView_) tableHeaderView_->removeFromSuperview();
    tableHeaderView_ = std::move(view);
    if (tableHeaderView_) addSubview(tableHeaderView_);
    setNeedsLayout();
}

void TableView::setTableFooterView(std::shared_ptr<View> view) {
    if (tableFooterView_) tableFooterView_->removeFromSuperview();
    tableFooterView_ = std::move(view);
    if (tableFooterView_) addSubview(tableFooterView_);
    setNeedsLayout();
}

void TableView::setBackgroundView(std::shared_ptr<View> view) {
    if (backgroundView_) backgroundView_->removeFromSuperview();
    backgroundView_ = std::move(view);
    if (backgroundView_) insertSubview(backgroundView_, 0);
    setNeedsLayout();
}

// Data.

void TableView::ensureLoaded() {
    if (!loaded_) load();
}

double TableView::askRowHeight(const IndexPath& indexPath) {
    const auto told = delegate();
    return told ? told->heightForRowAt(*this, indexPath) : rowHeight;
}

double TableView::estimateRow(const IndexPath& indexPath) {
    const auto told = delegate();
    const double estimate = told ? told->estimatedHeightForRowAt(*this, indexPath) : estimatedRowHeight;
    if (estimate > 0) return estimate;
    return rowHeight >= 0 ? rowHeight : TableViewCell::defaultHeight;
}

double TableView::sectionHeight(int section, bool header, std::shared_ptr<View>& view) {
    const auto told = delegate();
    const auto source = dataSource();
    double height = told ? (header ? told->heightForHeader(*this, section) : told->heightForFooter(*this, section))
                         : (header ? sectionHeaderHeight : sectionFooterHeight);
    if (height >= 0) return height;
    // Automatic: the delegate's view decides, else a title gets the plain header's height.
    if (told) view = header ? told->viewForHeader(*this, section) : told->viewForFooter(*this, section);
    if (view) {
        const Size size = view->sizeThatFits({frame().width(), 0});
        return size.height > 0 ? std::ceil(size.height) : view->frame().height();
    }
    const auto title = source ? (header ? source->titleForHeader(*this, section) : source->titleForFooter(*this, section))
                              : std::nullopt;
    if (!title) return 0;
    auto plain = make<TableViewHeaderFooterView>();
    plain->textLabel()->setText(*title);
    view = plain;
    return plain->sizeThatFits({frame().width(), 0}).height;
}

void TableView::load() {
    for (const auto& [path, cell] : visible_) recycleVisible(path, cell);
    visible_.clear();
    for (auto& section : layout_->sections)
        for (auto* view : {&section.header, &section.footer})
            if (*view) (*view)->removeFromSuperview();
    loaded_ = true;
    ++generation_;
    selected_.reset();
    auto next = std::make_unique<Layout>();
    const auto source = dataSource();
    const int sections = source ? std::max(0, source->numberOfSections(*this)) : 0;
    std::vector<int> counts;
    long long total = 0;
    for (int section = 0; section < sections; ++section) {
        counts.push_back(std::max(0, source->numberOfRowsInSection(*this, section)));
        total += counts.back();
        if (total > Layout::maximumRows) {
            platform::log::write(platform::LogLevel::error, "UITableView: more rows than a table holds; the rest are left out");
            counts.back() = 0;
        }
    }
    for (int section = 0; section < sections; ++section) {
        auto& added = next->addSection(counts[static_cast<std::size_t>(section)]);
        next->setHeight(added.first, sectionHeight(section, true, added.header), true);
        for (int row = 0; row < added.rows; ++row) {
            const IndexPath path{section, row};
            const double estimate = estimateRow(path);
            // Estimates switched off: every row's own height now, as the platform does.
            const double exact = estimatedRowHeight == 0 ? askRowHeight(path) : automaticDimension;
            next->setHeight(added.first + 1 + row, exact >= 0 ? exact : estimate, exact >= 0);
        }
        next->setHeight(added.first + added.rows + 1, sectionHeight(section, false, added.footer), true);
    }
    next->build();
    layout_ = std::move(next);
    measuredWidth_ = frame().width();
    updateContentSize();
    setNeedsLayout();
}

void TableView::reloadData() {
    if (pending_) pending_.reset();  // a reload during a batch supersedes it
    load();
    applied_.push_back({TableUpdate::Kind::reloadData, {}, {}, TableViewRowAnimation::none, ++batchCount_, {}});
}

int TableView::numberOfSections() {
    ensureLoaded();
    return static_cast<int>(layout_->sections.size());
}

int TableView::numberOfRowsInSection(int section) {
    ensureLoaded();
    if (section < 0 || section >= numberOfSections()) return 0;
    return layout_->sections[static_cast<std::size_t>(section)].rows;
}

bool TableView::validIndexPath(const IndexPath& indexPath) {
    return indexPath.section >= 0 && indexPath.section < numberOfSections() && indexPath.row >= 0 &&
           indexPath.row < numberOfRowsInSection(indexPath.section);
}

// Cells in view.

std::shared_ptr<TableViewCell> TableView::cellFromDataSource(const IndexPath& indexPath) {
    std::shared_ptr<TableViewCell> cell;
    if (const auto source = dataSource()) cell = source->cellForRowAt(*this, indexPath);
    if (!cell) {
        platform::log::write(platform::LogLevel::error,
                             "UITableView: the data source gave no cell for " + indexPath.description());
        cell = std::make_shared<TableViewCell>();
    }
    cell->setSelected(selected_ == indexPath);
    return cell;
}

double TableView::measureRow(const IndexPath&, std::shared_ptr<TableViewCell>& cell) {
    const double width = frame().width();
    const Rect old = cell->frame();
    cell->setFrame({old.minX(), old.minY(), width, std::max(old.height(), 1.0)});
    const Size size = cell->sizeThatFits({width, 0});
    return size.height > 0 ? std::ceil(size.height) : TableViewCell::defaultHeight;
}

bool TableView::ensureRowHeight(const IndexPath& indexPath, std::shared_ptr<TableViewCell>* keep) {
    const int item = layout_->rowItem(indexPath);
    if (layout_->exact[static_cast<std::size_t>(item)]) return false;
    const unsigned generation = generation_;
    double height = askRowHeight(indexPath);
    if (generation != generation_) return false;
    if (height < 0) {
        std::shared_ptr<TableViewCell> cell;
        if (const auto shown = visible_.find(indexPath); shown != visible_.end()) cell = shown->second;
        const bool fresh = !cell;
        if (fresh) cell = cellFromDataSource(indexPath);
        if (generation != generation_) {
            if (fresh) enqueue(cell);
            return false;
        }
        height = measureRow(indexPath, cell);
        if (keep)
            *keep = cell;
        else if (fresh)
            enqueue(cell);
    }
    const double before = layout_->heights[static_cast<std::size_t>(item)];
    layout_->setHeight(item, height, true);
    return before != height;
}

std::shared_ptr<View> TableView::sectionView(int section, bool header) {
    auto& entry = layout_->sections[static_cast<std::size_t>(section)];
    auto& view = header ? entry.header : entry.footer;
    if (!view) {
        const auto told = delegate();
        if (told) view = header ? told->viewForHeader(*this, section) : told->viewForFooter(*this, section);
        const auto source = dataSource();
        if (!view && source) {
            if (const auto title = header ? source->titleForHeader(*this, section) : source->titleForFooter(*this, section)) {
                auto plain = make<TableViewHeaderFooterView>();
                plain->textLabel()->setText(*title);
                view = plain;
            }
        }
    }
    return view;
}

double TableView::contentTop() const { return tableHeaderView_ ? tableHeaderView_->frame().height() : 0; }

void TableView::updateContentSize() {
    const double footer = tableFooterView_ ? tableFooterView_->frame().height() : 0;
    setContentSize({frame().width(), contentTop() + layout_->total() + footer});
}

void TableView::configureSeparator(TableViewCell& cell, const IndexPath&) {
    const auto& line = cell.separatorView();
    line->setHidden(separatorStyle == TableViewCellSeparatorStyle::none || !separatorColor);
    if (separatorColor) line->setBackgroundColor(separatorColor);
}

void TableView::layoutRows() {
    ensureLoaded();
    const double width = frame().width();
    if (width != measuredWidth_) {
        // Self-sized rows depend on the width: measure them again as they show.
        layout_->forgetRowHeights();
        measuredWidth_ = width;
    }
    if (tableHeaderView_) tableHeaderView_->setFrame({0, 0, width, tableHeaderView_->frame().height()});
    if (backgroundView_) backgroundView_->setFrame(bounds());
    for (int attempt = 0; attempt < 4; ++attempt) {
        const unsigned generation = generation_;
        const Rect visibleRect = bounds();
        const double top = contentTop();
        // Cells whose rows left the view go back first, so the rows arriving can reuse them.
        for (const auto& [path, cell] : std::map(visible_)) {
            const int item = layout_->rowItem(path);
            const double y = top + layout_->prefix(item);
            if (y < visibleRect.maxY() && y + layout_->heights[static_cast<std::size_t>(item)] > visibleRect.minY()) continue;
            visible_.erase(path);
            recycleVisible(path, cell);
        }
        if (generation != generation_) continue;
        std::map<IndexPath, std::shared_ptr<TableViewCell>> shown;
        std::vector<std::shared_ptr<View>> shownSectionViews;
        std::vector<View*> order;  // rows and section views as they lie, top to bottom
        std::vector<IndexPath> arrived;
        std::vector<std::shared_ptr<TableViewCell>> created;
        bool interrupted = false;
        for (int item = layout_->itemAt(visibleRect.minY() - top); item < layout_->itemCount(); ++item) {
            const double y = top + layout_->prefix(item);
            if (y >= visibleRect.maxY()) break;
            const auto place = layout_->decode(item);
            if (place.kind == Layout::Kind::row) {
                const IndexPath path{place.section, place.row};
                std::shared_ptr<TableViewCell> cell;
                if (const auto found = visible_.find(path); found != visible_.end()) cell = found->second;
                std::shared_ptr<TableViewCell> measured;
                ensureRowHeight(path, &measured);
                if (measured && measured != cell) created.push_back(measured);
                if (generation != generation_) {
                    interrupted = true;
                    break;
                }
                const double height = layout_->heights[static_cast<std::size_t>(item)];
                if (height <= 0 || y + height <= visibleRect.minY()) {
                    if (measured && measured != cell) enqueue(measured);
                    continue;
                }
                if (!cell) {
                    cell = measured ? measured : cellFromDataSource(path);
                    if (cell != measured) created.push_back(cell);
                }
                if (generation != generation_) {
                    interrupted = true;
                    break;
                }
                cell->setFrame({0, y, width, height});
                configureSeparator(*cell, path);
                order.push_back(cell.get());
                if (!visible_.contains(path)) arrived.push_back(path);
                shown[path] = cell;
            } else {
                const double height = layout_->heights[static_cast<std::size_t>(item)];
                if (height <= 0 || y + height <= visibleRect.minY()) continue;
                const bool header = place.kind == Layout::Kind::header;
                auto view = sectionView(place.section, header);
                if (generation != generation_) {
                    interrupted = true;
                    break;
                }
                if (!view) continue;
                view->setFrame({0, y, width, height});
                order.push_back(view.get());
                shownSectionViews.push_back(view);
            }
        }
        if (interrupted) {
            // A callback reloaded or updated the table: cells made in this pass go back.
            for (const auto& cell : created) enqueue(cell);
            continue;
        }
        for (const auto& [path, cell] : visible_) {
            const auto kept = shown.find(path);
            if (kept == shown.end() || kept->second != cell) recycleVisible(path, cell);
        }
        visible_ = std::move(shown);
        for (auto& section : layout_->sections)
            for (auto* view : {&section.header, &section.footer})
                if (*view && (*view)->superview() == this &&
                    std::find(shownSectionViews.begin(), shownSectionViews.end(), *view) == shownSectionViews.end())
                    (*view)->removeFromSuperview();
        // The tree holds them in the order they show, behind anything else added to the table.
        std::size_t index = backgroundView_ && backgroundView_->superview() == this ? 1 : 0;
        for (View* view : order) {
            if (index >= subviews().size() || subviews()[index].get() != view) insertSubview(view->shared_from_this(), index);
            ++index;
        }
        if (const auto told = delegate())
            for (const auto& path : arrived)
                if (const auto cell = visible_.find(path); cell != visible_.end()) told->willDisplay(*this, *cell->second, path);
        if (generation == generation_) break;
    }
    updateContentSize();
    if (tableFooterView_)
        tableFooterView_->setFrame({0, contentTop() + layout_->total(), width, tableFooterView_->frame().height()});
}

void TableView::layoutSubviews() {
    ScrollView::layoutSubviews();
    if (inLayout_) return;
    inLayout_ = true;
    layoutRows();
    inLayout_ = false;
}

Size TableView::sizeThatFits(Size size) const { return {size.width > 0 ? size.width : frame().width(), contentSize().height}; }

std::shared_ptr<TableViewCell> TableView::cellForRow(const IndexPath& indexPath) {
    layoutIfNeeded();
    const auto found = visible_.find(indexPath);
    return found == visible_.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<TableViewCell>> TableView::visibleCells() {
    layoutIfNeeded();
    std::vector<std::shared_ptr<TableViewCell>> cells;
    for (const auto& [path, cell] : visible_) cells.push_back(cell);
    return cells;
}

std::vector<IndexPath> TableView::indexPathsForVisibleRows() {
    layoutIfNeeded();
    std::vector<IndexPath> paths;
    for (const auto& [path, cell] : visible_) paths.push_back(path);
    return paths;
}

std::optional<IndexPath> TableView::indexPathForCell(const TableViewCell& cell) const {
    for (const auto& [path, shown] : visible_)
        if (shown.get() == &cell) return path;
    return std::nullopt;
}

// Geometry.

Rect TableView::rectForRow(const IndexPath& indexPath) {
    if (!validIndexPath(indexPath)) return {};
    const int item = layout_->rowItem(indexPath);
    return {0, contentTop() + layout_->prefix(item), frame().width(), layout_->heights[static_cast<std::size_t>(item)]};
}

Rect TableView::rectForHeader(int section) {
    if (section < 0 || section >= numberOfSections()) return {};
    const int item = layout_->sections[static_cast<std::size_t>(section)].first;
    return {0, contentTop() + layout_->prefix(item), frame().width(), layout_->heights[static_cast<std::size_t>(item)]};
}

Rect TableView::rectForSection(int section) {
    if (section < 0 || section >= numberOfSections()) return {};
    const auto& entry = layout_->sections[static_cast<std::size_t>(section)];
    const double top = layout_->prefix(entry.first);
    const double bottom = layout_->prefix(entry.first + entry.rows + 2);
    return {0, contentTop() + top, frame().width(), bottom - top};
}

std::optional<IndexPath> TableView::indexPathForRow(Point point) {
    ensureLoaded();
    const int item = layout_->itemAt(point.y - contentTop());
    if (item >= layout_->itemCount() || point.y < contentTop()) return std::nullopt;
    const auto place = layout_->decode(item);
    if (place.kind != Layout::Kind::row) return std::nullopt;
    return IndexPath{place.section, place.row};
}

void TableView::scrollToRow(const IndexPath& indexPath, TableViewScrollPosition position, bool animated) {
    if (!validIndexPath(indexPath)) {
        platform::log::write(platform::LogLevel::warn, "UITableView: cannot scroll to row " + indexPath.description() +
                                                           ", which the table does not have");
        return;
    }
    // Rows measured on the way in can move the target; a few rounds settle it.
    for (int round = 0; round < 4; ++round) {
        ensureRowHeight(indexPath, nullptr);
        updateContentSize();
        const Rect row = rectForRow(indexPath);
        const double height = frame().height();
        const Point offset = contentOffset();
        double y = offset.y;
        switch (position) {
        case TableViewScrollPosition::top: y = row.minY() - contentInset.top; break;
        case TableViewScrollPosition::middle: y = row.midY() - height / 2; break;
        case TableViewScrollPosition::bottom: y = row.maxY() - height + contentInset.bottom; break;
        case TableViewScrollPosition::none:
            if (row.minY() < offset.y + contentInset.top)
                y = row.minY() - contentInset.top;
            else if (row.maxY() > offset.y + height - contentInset.bottom)
                y = row.maxY() - height + contentInset.bottom;
            break;
        }
        const Point target = clampedOffset({offset.x, y});
        if (target == offset && round > 0) break;
        setContentOffset(target, animated);
        layoutIfNeeded();
    }
}

// Selection.

void TableView::selectRow(const std::optional<IndexPath>& indexPath, bool animated, TableViewScrollPosition position) {
    if (selected_) {
        if (const auto cell = visible_.find(*selected_); cell != visible_.end()) cell->second->setSelected(false, animated);
    }
    selected_.reset();
    if (!indexPath || !validIndexPath(*indexPath)) return;
    selected_ = indexPath;
    if (const auto cell = visible_.find(*indexPath); cell != visible_.end()) cell->second->setSelected(true, animated);
    if (position != TableViewScrollPosition::none) scrollToRow(*indexPath, position, animated);
}

void TableView::deselectRow(const IndexPath& indexPath, bool animated) {
    if (const auto cell = visible_.find(indexPath); cell != visible_.end()) cell->second->setSelected(false, animated);
    if (selected_ == indexPath) selected_.reset();
}

bool TableView::didTapCell(TableViewCell& cell) {
    const auto path = indexPathForCell(cell);
    if (!path || !allowsSelection) return false;
    const auto told = delegate();
    const auto chosen = told ? told->willSelectRowAt(*this, *path) : path;
    if (!chosen || !validIndexPath(*chosen)) return true;
    if (selected_ && selected_ != chosen) {
        const IndexPath previous = *selected_;
        deselectRow(previous, false);
        if (told) told->didDeselectRowAt(*this, previous);
    }
    selected_ = chosen;
    if (const auto shown = visible_.find(*chosen); shown != visible_.end()) shown->second->setSelected(true, false);
    if (told) told->didSelectRowAt(*this, *chosen);
    return true;
}

} // namespace uikit
