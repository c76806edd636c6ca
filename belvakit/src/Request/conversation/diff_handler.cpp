#include "belvakit/Request/conversation/diff_handler.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"

#include <boost/container_hash/hash.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>

namespace belvakit::DiffHandler {

namespace {

// The old rows of an id, as a chain through `next`: `head` is the first not yet paired.
struct Occurrences {
    int head = -1;
    int tail = -1;
};

using IdIndex = boost::unordered_flat_map<std::string_view, Occurrences, boost::hash<std::string_view>>;

// Which entries of `sequence` (values >= 0; -1 is skipped) form a longest increasing subsequence.
std::vector<char> longestIncreasing(const std::vector<int>& sequence) {
    std::vector<char> kept(sequence.size(), 0);
    // Rows usually keep their order: then every one is kept, found in one pass.
    int last = -1;
    bool increasing = true;
    for (const int value : sequence) {
        if (value < 0) continue;
        if (value < last) {
            increasing = false;
            break;
        }
        last = value;
    }
    if (increasing) {
        for (std::size_t i = 0; i < sequence.size(); ++i) kept[i] = sequence[i] >= 0;
        return kept;
    }
    std::vector<int> tails;        // position in `sequence` of the smallest tail of each length
    std::vector<int> before(sequence.size(), -1);
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        const int value = sequence[i];
        if (value < 0) continue;
        const auto at = std::lower_bound(tails.begin(), tails.end(), value,
                                         [&](int position, int wanted) { return sequence[static_cast<std::size_t>(position)] < wanted; });
        if (at != tails.begin()) before[i] = *(at - 1);
        if (at == tails.end())
            tails.push_back(static_cast<int>(i));
        else
            *at = static_cast<int>(i);
    }
    for (int i = tails.empty() ? -1 : tails.back(); i >= 0; i = before[static_cast<std::size_t>(i)])
        kept[static_cast<std::size_t>(i)] = 1;
    return kept;
}

} // namespace

bool sameRow(const CellItem& left, const CellItem& right) {
    if (left.index() != right.index()) return false;
    if (const auto* message = std::get_if<Message>(&left)) return rowsEqual(*message, std::get<Message>(right));
    if (const auto* date = std::get_if<DateItem>(&left)) {
        const auto& other = std::get<DateItem>(right);
        return date->id == other.id && date->date == other.date;
    }
    const auto& notice = std::get<SystemMessage>(left);
    const auto& other = std::get<SystemMessage>(right);
    return notice.id == other.id && notice.message == other.message;
}

Diff diff(const std::vector<CellItem>& oldItems, const std::vector<CellItem>& newItems) {
    const int oldCount = static_cast<int>(oldItems.size());
    const int newCount = static_cast<int>(newItems.size());
    Diff result;
    Lists& lists = result.lists;
    RowUpdates& updates = result.updates;

    // One index of the old ids; the new list is looked up in it. Views into the items: both lists
    // outlive the diff.
    IdIndex index;
    index.reserve(oldItems.size());
    std::vector<int> next(oldItems.size(), -1);
    for (int row = 0; row < oldCount; ++row) {
        const auto [entry, fresh] = index.try_emplace(id(oldItems[static_cast<std::size_t>(row)]), Occurrences{row, row});
        if (!fresh) {
            next[static_cast<std::size_t>(entry->second.tail)] = row;
            entry->second.tail = row;
        }
    }
    std::vector<int> oldOfNew(newItems.size(), -1);
    std::vector<int>& newOfOld = result.newOfOld;
    newOfOld.assign(oldItems.size(), -1);
    for (int row = 0; row < newCount; ++row) {
        const auto found = index.find(id(newItems[static_cast<std::size_t>(row)]));
        if (found == index.end() || found->second.head < 0) continue;
        const int from = found->second.head;
        found->second.head = next[static_cast<std::size_t>(from)];
        oldOfNew[static_cast<std::size_t>(row)] = from;
        newOfOld[static_cast<std::size_t>(from)] = row;
    }

    for (int row = 0; row < oldCount; ++row)
        if (newOfOld[static_cast<std::size_t>(row)] < 0) lists.removed.push_back(row);
    const auto inOrder = longestIncreasing(oldOfNew);
    for (int row = 0; row < newCount; ++row) {
        const int from = oldOfNew[static_cast<std::size_t>(row)];
        if (from < 0) {
            lists.inserted.push_back(row);
            continue;
        }
        const bool same = sameRow(oldItems[static_cast<std::size_t>(from)], newItems[static_cast<std::size_t>(row)]);
        if (!same) lists.changed.emplace_back(from, row);
        if (from != row) lists.moved.emplace_back(from, row);
        if (inOrder[static_cast<std::size_t>(row)]) {
            if (!same) updates.reloaded.emplace_back(from, row);
        } else if (same) {
            updates.moved.emplace_back(from, row);
        } else {
            // A moved cell keeps what it showed: a changed row that moves arrives anew.
            updates.deleted.push_back(from);
            updates.inserted.push_back(row);
        }
    }
    // Displaced: a position where the ids differ because a row came or went there, not because
    // rows traded places.
    const int common = std::min(oldCount, newCount);
    for (int row = 0; row < common; ++row) {
        const bool arrivedOrLeft = newOfOld[static_cast<std::size_t>(row)] < 0 || oldOfNew[static_cast<std::size_t>(row)] < 0;
        if (arrivedOrLeft && id(oldItems[static_cast<std::size_t>(row)]) != id(newItems[static_cast<std::size_t>(row)]))
            ++lists.displaced;
    }

    updates.deleted.insert(updates.deleted.end(), lists.removed.begin(), lists.removed.end());
    updates.inserted.insert(updates.inserted.end(), lists.inserted.begin(), lists.inserted.end());
    std::sort(updates.deleted.begin(), updates.deleted.end());
    std::sort(updates.inserted.begin(), updates.inserted.end());
    return result;
}

Kind classify(const Lists& lists) {
    const bool inserted = !lists.inserted.empty();
    const bool removed = !lists.removed.empty();
    const bool changed = !lists.changed.empty();
    const bool moved = !lists.moved.empty();
    const bool displaced = lists.displaced > 0;
    if (!inserted && !removed && !changed && !moved) return Kind::doNothing;
    if (!inserted && !removed && changed && moved) return Kind::movedCells;
    if (displaced) return Kind::reloadTableAndScrollToLast;
    if (!inserted && removed && !changed && !moved) return Kind::removeCells;
    if (!inserted && !removed && changed && !moved) return Kind::changeCells;
    if (!inserted && !removed && !changed && moved) return Kind::movedCells;
    if (inserted && !removed && !changed && !moved) return Kind::reloadTableAndScrollToLast;
    return Kind::reloadTable;
}

Action action(const Diff& diff, const std::vector<CellItem>& newItems) {
    Action result;
    result.kind = classify(diff.lists);
    switch (result.kind) {
    case Kind::changeCells:
        for (const auto& [from, to] : diff.lists.changed)
            result.changeCells.emplace_back(to, newItems[static_cast<std::size_t>(to)]);
        break;
    case Kind::removeCells: result.rows = diff.lists.removed; break;
    case Kind::movedCells:
        for (const auto& [from, to] : diff.lists.moved)
            if (from < to) result.movedCells.emplace_back(from, to);
        break;
    default: break;
    }
    return result;
}

std::string_view name(Kind kind) {
    switch (kind) {
    case Kind::changeCells: return "changeCells";
    case Kind::reloadCells: return "reloadCells";
    case Kind::movedCells: return "movedCells";
    case Kind::removeCells: return "removeCells";
    case Kind::reloadTableAndScrollToLast: return "reloadTableAndScrollToLast";
    case Kind::reloadTable: return "reloadTable";
    case Kind::doNothing: return "doNothing";
    }
    return "";
}

std::optional<std::vector<CellItem>> applied(const std::vector<CellItem>& oldItems, const RowUpdates& updates,
                                             const std::vector<CellItem>& newItems) {
    enum State : char { kept, gone, reloaded };
    const auto oldCount = static_cast<int>(oldItems.size());
    const auto newCount = static_cast<int>(newItems.size());
    std::vector<State> states(oldItems.size(), kept);
    const auto take = [&](int row, State state) {
        if (row < 0 || row >= oldCount || states[static_cast<std::size_t>(row)] != kept) return false;
        states[static_cast<std::size_t>(row)] = state;
        return true;
    };
    for (const int row : updates.deleted)
        if (!take(row, gone)) return std::nullopt;
    for (const auto& [from, to] : updates.moved)
        if (!take(from, gone)) return std::nullopt;
    for (const auto& [from, to] : updates.reloaded)
        if (!take(from, reloaded)) return std::nullopt;

    // An entry is an old row, or -1 for a row that takes the new item where it ends up.
    struct Entry {
        int old = -1;
        bool fresh = false;
    };
    std::vector<Entry> rows;
    for (int row = 0; row < oldCount; ++row) {
        const State state = states[static_cast<std::size_t>(row)];
        if (state != gone) rows.push_back({row, state == reloaded});
    }
    std::vector<std::pair<int, Entry>> arriving;
    for (const int row : updates.inserted) arriving.push_back({row, Entry{-1, true}});
    for (const auto& [from, to] : updates.moved) arriving.push_back({to, Entry{from, false}});
    std::sort(arriving.begin(), arriving.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < arriving.size(); ++i) {
        const int at = arriving[i].first;
        if ((i > 0 && arriving[i - 1].first == at) || at < 0 || static_cast<std::size_t>(at) > rows.size())
            return std::nullopt;
        rows.insert(rows.begin() + at, arriving[i].second);
    }
    if (static_cast<int>(rows.size()) != newCount) return std::nullopt;
    // A reload names the row it must end on.
    for (const auto& [from, to] : updates.reloaded)
        if (to < 0 || to >= newCount || rows[static_cast<std::size_t>(to)].old != from) return std::nullopt;

    std::vector<CellItem> result;
    result.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row)
        result.push_back(rows[row].fresh ? newItems[row] : oldItems[static_cast<std::size_t>(rows[row].old)]);
    return result;
}

} // namespace belvakit::DiffHandler
