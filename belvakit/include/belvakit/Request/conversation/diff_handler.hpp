#pragma once

#include "belvakit/Request/conversation/message.hpp"

#include <cstddef>
#include <optional>
#include <string_view>
#include <string>
#include <utility>
#include <vector>

namespace belvakit::DiffHandler {

// How the rows of the conversation changed between two states, as a table applies it in one
// batch: deletions and reloads name old rows, insertions new rows, a move both. A row whose id is
// in both lists keeps its cell; a row of the same id whose content changed is reloaded where it
// stays, and deleted and inserted again where it moves, so every cell shows its new item.
struct RowUpdates {
    std::vector<int> deleted;                    // old rows, ascending
    std::vector<int> inserted;                   // new rows, ascending
    std::vector<std::pair<int, int>> moved;      // (old row, new row) of unchanged rows out of order
    std::vector<std::pair<int, int>> reloaded;   // (old row, new row) of changed rows in order

    bool empty() const { return deleted.empty() && inserted.empty() && moved.empty() && reloaded.empty(); }
};

// The five lists the classification reads. Rows are indices into the old or the new list.
struct Lists {
    std::vector<int> inserted;                  // new rows whose id the old list lacks
    std::vector<int> removed;                   // old rows whose id the new list lacks
    std::vector<std::pair<int, int>> changed;   // (old row, new row) of an id in both, content unequal
    std::vector<std::pair<int, int>> moved;     // (old row, new row) of an id in both, at another row
    std::size_t displaced = 0;                  // positions, walked side by side, whose ids differ
};

struct Diff {
    Lists lists;
    RowUpdates updates;
    std::vector<int> newOfOld;  // per old row, its new row, or -1 when it went
};

// Ids are the identity of a row. An id that occurs more than once is paired in order of
// occurrence, so a list with repeats still diffs to a correct update.
Diff diff(const std::vector<CellItem>& oldItems, const std::vector<CellItem>& newItems);

// Equality of two rows as the diff sees it (that of EquatableCellItem, without the wrappers).
bool sameRow(const CellItem& left, const CellItem& right);

// What the difference amounts to, in the order of the table's cases.
enum class Kind { changeCells, reloadCells, movedCells, removeCells, reloadTableAndScrollToLast, reloadTable, doNothing };

struct Action {
    Kind kind = Kind::doNothing;
    std::vector<std::pair<int, CellItem>> changeCells;  // new row and item, for `changeCells`
    std::vector<int> rows;                              // `reloadCells`, `removeCells`
    std::vector<std::pair<int, int>> movedCells;        // (from, to) with from < to, one per swap
};

Kind classify(const Lists& lists);
// The classified action with its payload.
Action action(const Diff& diff, const std::vector<CellItem>& newItems);

std::string_view name(Kind kind);

// The old rows with `updates` applied as a table applies a batch: kept rows in their order, moved
// and inserted rows at their new places. Rows that arrive or reload take their item from
// `newItems` at the row they end on; the others keep the old item. Nothing when the updates don't
// add up to the new count or name a row twice. For tests of the diff and of the table.
std::optional<std::vector<CellItem>> applied(const std::vector<CellItem>& oldItems, const RowUpdates& updates,
                                             const std::vector<CellItem>& newItems);

} // namespace belvakit::DiffHandler
