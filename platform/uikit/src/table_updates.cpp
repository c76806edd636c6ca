#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "table_layout.hpp"

#include <algorithm>
#include <set>

namespace uikit {


void TableView::beginUpdates() {
    if (!pending_) pending_ = std::make_unique<Pending>();
    ++updateDepth_;
}

void TableView::endUpdates() {
    if (updateDepth_ == 0) return;
    if (--updateDepth_ == 0) applyBatch();
}

void TableView::performBatchUpdates(const std::function<void()>& updates, std::function<void(bool)> completion) {
    beginUpdates();
    if (updates) updates();
    if (completion) pending_->completions.push_back(std::move(completion));
    endUpdates();
}

void TableView::record(TableUpdate update) {
    const bool alone = updateDepth_ == 0;
    if (alone) beginUpdates();
    pending_->records.push_back(std::move(update));
    if (alone) endUpdates();
}

void TableView::insertRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->insertRows.insert(pending_->insertRows.end(), indexPaths.begin(), indexPaths.end());
    record({TableUpdate::Kind::insertRows, {}, indexPaths, animation, 0, {}});
}

void TableView::deleteRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->deleteRows.insert(pending_->deleteRows.end(), indexPaths.begin(), indexPaths.end());
    record({TableUpdate::Kind::deleteRows, {}, indexPaths, animation, 0, {}});
}

void TableView::reloadRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->reloadRows.insert(pending_->reloadRows.end(), indexPaths.begin(), indexPaths.end());
    record({TableUpdate::Kind::reloadRows, {}, indexPaths, animation, 0, {}});
}

void TableView::moveRow(const IndexPath& from, const IndexPath& to) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->moves.emplace_back(from, to);
    record({TableUpdate::Kind::moveRow, {}, {from, to}, TableViewRowAnimation::none, 0, {}});
}

void TableView::insertSections(const std::vector<int>& sections, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->insertSections.insert(pending_->insertSections.end(), sections.begin(), sections.end());
    record({TableUpdate::Kind::insertSections, sections, {}, animation, 0, {}});
}

void TableView::deleteSections(const std::vector<int>& sections, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->deleteSections.insert(pending_->deleteSections.end(), sections.begin(), sections.end());
    record({TableUpdate::Kind::deleteSections, sections, {}, animation, 0, {}});
}

void TableView::reloadSections(const std::vector<int>& sections, TableViewRowAnimation animation) {
    if (!pending_) pending_ = std::make_unique<Pending>();
    pending_->reloadSections.insert(pending_->reloadSections.end(), sections.begin(), sections.end());
    record({TableUpdate::Kind::reloadSections, sections, {}, animation, 0, {}});
}

namespace {

// Where a row after the update comes from: an old row (kept, or reloaded), or nowhere (new).
struct Origin {
    int section = -1;
    int row = -1;
    bool reload = false;
};

enum RowState : char { kept = 0, deleted = 1, movedOut = 2, reloaded = 3 };

std::string count(std::size_t n, const char* what) { return std::to_string(n) + " " + what; }

} // namespace

void TableView::applyBatch() {
    auto batch = std::move(pending_);
    if (!batch) return;
    const int number = ++batchCount_;
    const auto finish = [&](bool applied) {
        for (auto& update : batch->records) update.batch = number;
        if (applied) applied_.insert(applied_.end(), batch->records.begin(), batch->records.end());
        const bool animated = std::any_of(batch->records.begin(), batch->records.end(), [](const TableUpdate& update) {
            return update.animation != TableViewRowAnimation::none;
        });
        for (auto& completion : batch->completions) {
            auto& main = platform::MainQueue::shared();
            main.asyncAfter(platform::seconds(animated ? 0.3 : 0), [done = std::move(completion)] { done(true); });
        }
    };
    if (!loaded_) {
        // Nothing was shown yet: the data source's present counts are the table's.
        load();
        finish(true);
        return;
    }
    const auto& old = *layout_;
    const auto source = dataSource();
    const int oldSections = static_cast<int>(old.sections.size());
    const int newSections = source ? std::max(0, source->numberOfSections(*this)) : 0;
    std::string failure;
    const auto fail = [&](const std::string& why) {
        if (failure.empty()) failure = "Invalid update: " + why;
    };

    // Sections: deletions and reloads by old index, insertions by new.
    std::vector<char> sectionDeleted(static_cast<std::size_t>(oldSections), 0);
    std::vector<char> sectionReloaded(static_cast<std::size_t>(oldSections), 0);
    std::vector<char> sectionInserted(static_cast<std::size_t>(newSections), 0);
    for (const int section : batch->deleteSections) {
        if (section < 0 || section >= oldSections)
            fail("attempt to delete section " + std::to_string(section) + ", but there are only " +
                 std::to_string(oldSections) + " sections before the update");
        else
            sectionDeleted[static_cast<std::size_t>(section)] = 1;
    }
    for (const int section : batch->reloadSections) {
        if (section < 0 || section >= oldSections)
            fail("attempt to reload section " + std::to_string(section) + ", but there are only " +
                 std::to_string(oldSections) + " sections before the update");
        else if (sectionDeleted[static_cast<std::size_t>(section)])
            fail("attempt to delete and reload the same section " + std::to_string(section));
        else
            sectionReloaded[static_cast<std::size_t>(section)] = 1;
    }
    for (const int section : batch->insertSections) {
        if (section < 0 || section >= newSections)
            fail("attempt to insert section " + std::to_string(section) + " but there are only " +
                 std::to_string(newSections) + " sections after the update");
        else
            sectionInserted[static_cast<std::size_t>(section)] = 1;
    }
    const auto deletedCount = static_cast<int>(std::count(sectionDeleted.begin(), sectionDeleted.end(), 1));
    const auto insertedCount = static_cast<int>(std::count(sectionInserted.begin(), sectionInserted.end(), 1));
    if (failure.empty() && oldSections - deletedCount + insertedCount != newSections)
        fail("invalid number of sections. The number of sections contained in the table view after the update (" +
             std::to_string(newSections) + ") must be equal to the number of sections contained in the table view "
             "before the update (" + std::to_string(oldSections) + "), plus or minus the number of sections inserted "
             "or deleted (" + count(std::size_t(insertedCount), "inserted") + ", " +
             count(std::size_t(deletedCount), "deleted") + ").");

    std::vector<int> oldOf(static_cast<std::size_t>(newSections), -1);
    std::vector<std::vector<char>> rowState(static_cast<std::size_t>(oldSections));
    std::vector<std::vector<std::pair<int, Origin>>> incoming(static_cast<std::size_t>(newSections));
    if (failure.empty()) {
        int next = 0;
        for (int section = 0; section < newSections; ++section) {
            if (sectionInserted[static_cast<std::size_t>(section)]) continue;
            while (sectionDeleted[static_cast<std::size_t>(next)]) ++next;
            oldOf[static_cast<std::size_t>(section)] = next++;
        }
        for (int section = 0; section < oldSections; ++section)
            rowState[static_cast<std::size_t>(section)].assign(static_cast<std::size_t>(old.sections[static_cast<std::size_t>(section)].rows), kept);
        const auto oldRowValid = [&](const IndexPath& path) {
            return path.section >= 0 && path.section < oldSections && path.row >= 0 &&
                   path.row < old.sections[static_cast<std::size_t>(path.section)].rows;
        };
        const auto wholeSectionGoes = [&](int section) {
            return sectionDeleted[static_cast<std::size_t>(section)] || sectionReloaded[static_cast<std::size_t>(section)];
        };
        const auto rowsBefore = [&](int section) {
            return section >= 0 && section < oldSections ? old.sections[static_cast<std::size_t>(section)].rows : 0;
        };
        for (const auto& path : batch->deleteRows) {
            if (!oldRowValid(path)) {
                fail("attempt to delete row " + std::to_string(path.row) + " from section " + std::to_string(path.section) +
                     " which only contains " + std::to_string(rowsBefore(path.section)) + " rows before the update");
            } else if (!wholeSectionGoes(path.section)) {
                rowState[static_cast<std::size_t>(path.section)][static_cast<std::size_t>(path.row)] = deleted;
            }
        }
        for (const auto& path : batch->reloadRows) {
            if (!oldRowValid(path)) {
                fail("attempt to reload row " + std::to_string(path.row) + " from section " + std::to_string(path.section) +
                     " which only contains " + std::to_string(rowsBefore(path.section)) + " rows before the update");
            } else if (!wholeSectionGoes(path.section)) {
                auto& state = rowState[static_cast<std::size_t>(path.section)][static_cast<std::size_t>(path.row)];
                if (state == deleted) fail("attempt to delete and reload the same index path " + path.description());
                state = reloaded;
            }
        }
        for (const auto& [from, to] : batch->moves) {
            if (!oldRowValid(from)) {
                fail("attempt to move index path " + from.description() + " that does not exist - there are only " +
                     std::to_string(rowsBefore(from.section)) + " rows in section " + std::to_string(from.section) +
                     " before the update");
                continue;
            }
            if (wholeSectionGoes(from.section)) {
                fail("attempt to move index path " + from.description() + " out of a deleted or reloaded section");
                continue;
            }
            auto& state = rowState[static_cast<std::size_t>(from.section)][static_cast<std::size_t>(from.row)];
            if (state != kept) fail("attempt to move index path " + from.description() + " that is also deleted, moved or reloaded");
            state = movedOut;
            if (to.section < 0 || to.section >= newSections || to.row < 0) {
                fail("attempt to move index path " + from.description() + " to index path " + to.description() +
                     " that does not exist after the update");
            } else if (sectionInserted[static_cast<std::size_t>(to.section)] ||
                       sectionReloaded[static_cast<std::size_t>(oldOf[static_cast<std::size_t>(to.section)])]) {
                fail("attempt to move index path " + from.description() + " into inserted or reloaded section " +
                     std::to_string(to.section));
            } else {
                incoming[static_cast<std::size_t>(to.section)].push_back({to.row, Origin{from.section, from.row, false}});
            }
        }
        for (const auto& path : batch->insertRows) {
            if (path.section < 0 || path.section >= newSections || path.row < 0) {
                fail("attempt to insert row " + std::to_string(path.row) + " into section " + std::to_string(path.section) +
                     ", but there are only " + std::to_string(newSections) + " sections after the update");
            } else if (!sectionInserted[static_cast<std::size_t>(path.section)] &&
                       !sectionReloaded[static_cast<std::size_t>(oldOf[static_cast<std::size_t>(path.section)])]) {
                incoming[static_cast<std::size_t>(path.section)].push_back({path.row, Origin{}});
            }
        }
    }

    // Each new section's rows: the kept ones in their old order, the arriving ones at their places.
    std::vector<std::vector<Origin>> rows(static_cast<std::size_t>(newSections));
    for (int section = 0; failure.empty() && section < newSections; ++section) {
        const int expected = std::max(0, source->numberOfRowsInSection(*this, section));
        auto& list = rows[static_cast<std::size_t>(section)];
        const int from = oldOf[static_cast<std::size_t>(section)];
        if (from < 0 || sectionReloaded[static_cast<std::size_t>(from)]) {
            list.assign(static_cast<std::size_t>(expected), Origin{});
            continue;
        }
        const auto& states = rowState[static_cast<std::size_t>(from)];
        std::size_t deletedRows = 0;
        std::size_t movedOutRows = 0;
        for (std::size_t row = 0; row < states.size(); ++row) {
            if (states[row] == kept || states[row] == reloaded)
                list.push_back({from, static_cast<int>(row), states[row] == reloaded});
            deletedRows += states[row] == deleted;
            movedOutRows += states[row] == movedOut;
        }
        auto& arriving = incoming[static_cast<std::size_t>(section)];
        std::stable_sort(arriving.begin(), arriving.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        std::size_t insertedRows = 0;
        std::size_t movedInRows = 0;
        for (std::size_t i = 0; i < arriving.size(); ++i) {
            const auto& [row, origin] = arriving[i];
            if (i > 0 && arriving[i - 1].first == row) {
                fail("attempt to insert or move two rows to the same index path " + IndexPath{section, row}.description());
                break;
            }
            if (static_cast<std::size_t>(row) > list.size()) {
                fail("attempt to insert row " + std::to_string(row) + " into section " + std::to_string(section) +
                     ", but there are only " + std::to_string(expected) + " rows in section " + std::to_string(section) +
                     " after the update");
                break;
            }
            list.insert(list.begin() + row, origin);
            (origin.section < 0 ? insertedRows : movedInRows) += 1;
        }
        if (failure.empty() && list.size() != static_cast<std::size_t>(expected))
            fail("invalid number of rows in section " + std::to_string(section) +
                 ". The number of rows contained in an existing section after the update (" + std::to_string(expected) +
                 ") must be equal to the number of rows contained in that section before the update (" +
                 std::to_string(states.size()) + "), plus or minus the number of rows inserted or deleted from that "
                 "section (" + count(insertedRows, "inserted") + ", " + count(deletedRows, "deleted") +
                 ") and plus or minus the number of rows moved into or out of that section (" +
                 count(movedInRows, "moved in") + ", " + count(movedOutRows, "moved out") + ").");
    }

    if (!failure.empty()) {
        platform::log::write(platform::LogLevel::error, "UITableView: " + failure + " The table reloads instead.");
        load();
        applied_.push_back({TableUpdate::Kind::reloadData, {}, {}, TableViewRowAnimation::none, number, failure});
        batch->records.clear();
        finish(false);
        return;
    }

    // The new layout, keeping the heights of kept rows as estimates to measure again.
    auto next = std::make_unique<Layout>();
    std::map<std::pair<int, int>, IndexPath> moved;  // old row -> new place, for shown and selected rows
    for (int section = 0; section < newSections; ++section) {
        const auto& list = rows[static_cast<std::size_t>(section)];
        auto& added = next->addSection(static_cast<int>(list.size()));
        for (int row = 0; row < added.rows; ++row) {
            const Origin& origin = list[static_cast<std::size_t>(row)];
            const int item = added.first + 1 + row;
            if (origin.section >= 0 && !origin.reload) {
                next->setHeight(item, old.heights[static_cast<std::size_t>(old.rowItem({origin.section, origin.row}))], false);
                const std::pair<int, int> key{origin.section, origin.row};
                if (visible_.contains({origin.section, origin.row}) || selected_ == IndexPath{origin.section, origin.row})
                    moved[key] = {section, row};
            } else {
                next->setHeight(item, estimateRow({section, row}), false);
            }
        }
    }
    for (auto& section : layout_->sections)
        for (auto* view : {&section.header, &section.footer})
            if (*view) (*view)->removeFromSuperview();
    auto shown = std::move(visible_);
    visible_.clear();
    const auto oldSelection = selected_;
    selected_.reset();
    if (oldSelection)
        if (const auto found = moved.find({oldSelection->section, oldSelection->row}); found != moved.end())
            selected_ = found->second;
    std::vector<std::pair<IndexPath, std::shared_ptr<TableViewCell>>> leaving;
    for (auto& [path, cell] : shown) {
        if (const auto found = moved.find({path.section, path.row}); found != moved.end())
            visible_[found->second] = cell;
        else
            leaving.emplace_back(path, cell);
    }
    layout_ = std::move(next);
    // Headers and footers take their new sections' sizes.
    for (int section = 0; section < newSections; ++section) {
        auto& entry = layout_->sections[static_cast<std::size_t>(section)];
        layout_->setHeight(entry.first, sectionHeight(section, true, entry.header), true);
        layout_->setHeight(entry.first + entry.rows + 1, sectionHeight(section, false, entry.footer), true);
    }
    layout_->build();
    ++generation_;
    for (const auto& [path, cell] : leaving) recycleVisible(path, cell);
    updateContentSize();
    setNeedsLayout();
    finish(true);
}

} // namespace uikit
