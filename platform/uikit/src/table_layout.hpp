#pragma once

#include "uikit/table_view.hpp"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>
#include <vector>

namespace uikit {

// The table's rows as one list of items (each section: header, rows, footer) with their heights
// in a Fenwick tree, so that finding the row at an offset and the offset of a row cost a
// logarithm of the length, however many rows there are and however many were measured.
struct TableView::Layout {
    static constexpr long long maximumRows = 5'000'000;
    enum class Kind { header, row, footer };
    struct Section {
        int rows = 0;
        int first = 0;  // the header's item
        std::shared_ptr<View> header;
        std::shared_ptr<View> footer;
    };
    struct Place {
        int section = 0;
        Kind kind = Kind::row;
        int row = 0;
    };

    std::vector<Section> sections;
    std::vector<double> heights;
    std::vector<char> exact;  // measured, not estimated
    std::vector<double> tree;

    int itemCount() const { return static_cast<int>(heights.size()); }

    Section& addSection(int rows) {
        sections.push_back({rows, itemCount(), nullptr, nullptr});
        heights.resize(heights.size() + static_cast<std::size_t>(rows) + 2, 0);
        exact.resize(heights.size(), 0);
        return sections.back();
    }

    void build() {
        const std::size_t n = heights.size();
        tree.assign(n + 1, 0);
        for (std::size_t i = 1; i <= n; ++i) tree[i] = heights[i - 1];
        for (std::size_t i = 1; i <= n; ++i) {
            const std::size_t parent = i + (i & (~i + 1));
            if (parent <= n) tree[parent] += tree[i];
        }
    }

    void setHeight(int item, double height, bool measured) {
        const auto index = static_cast<std::size_t>(item);
        const double delta = height - heights[index];
        heights[index] = height;
        exact[index] = measured;
        if (tree.empty() || delta == 0) return;
        for (std::size_t i = index + 1; i < tree.size(); i += i & (~i + 1)) tree[i] += delta;
    }

    // The sum of the heights of the items before `item`.
    double prefix(int item) const {
        double sum = 0;
        for (auto i = static_cast<std::size_t>(std::clamp(item, 0, itemCount())); i > 0; i -= i & (~i + 1)) sum += tree[i];
        return sum;
    }
    double total() const { return prefix(itemCount()); }

    // The first item that ends below `y`; the item count when none does.
    int itemAt(double y) const {
        if (y < 0 || tree.size() <= 1) return 0;
        const std::size_t n = tree.size() - 1;
        std::size_t position = 0;
        double rest = y;
        for (std::size_t step = std::bit_floor(n); step > 0; step >>= 1) {
            if (position + step <= n && tree[position + step] <= rest) {
                position += step;
                rest -= tree[position];
            }
        }
        return static_cast<int>(position);
    }

    Place decode(int item) const {
        const auto after = std::upper_bound(sections.begin(), sections.end(), item,
                                            [](int at, const Section& section) { return at < section.first; });
        const auto section = static_cast<int>(after - sections.begin()) - 1;
        const Section& entry = sections[static_cast<std::size_t>(section)];
        const int offset = item - entry.first;
        if (offset == 0) return {section, Kind::header, 0};
        if (offset == entry.rows + 1) return {section, Kind::footer, 0};
        return {section, Kind::row, offset - 1};
    }

    int rowItem(const IndexPath& path) const { return sections[static_cast<std::size_t>(path.section)].first + 1 + path.row; }

    // Rows are measured again as they show; their last heights stay as estimates.
    void forgetRowHeights() {
        for (const auto& section : sections)
            for (int row = 0; row < section.rows; ++row) exact[static_cast<std::size_t>(section.first + 1 + row)] = 0;
    }
};

// The changes named since `beginUpdates`, applied together at `endUpdates`.
struct TableView::Pending {
    std::vector<int> deleteSections, insertSections, reloadSections;
    std::vector<IndexPath> deleteRows, insertRows, reloadRows;
    std::vector<std::pair<IndexPath, IndexPath>> moves;
    std::vector<TableUpdate> records;
    std::vector<std::function<void(bool)>> completions;
};

} // namespace uikit
