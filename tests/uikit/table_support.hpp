#pragma once

#include "uikit/table_view.hpp"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace uikit {
inline void PrintTo(const TableUpdate& update, std::ostream* out) {
    *out << toString(update.kind) << " batch " << update.batch << " animation " << int(update.animation);
    for (const int section : update.sections) *out << " s" << section;
    for (const auto& path : update.indexPaths) *out << " " << path.description();
    if (!update.failure.empty()) *out << " failure: " << update.failure;
}
} // namespace uikit

namespace uikit_test {

// A table's data as lists of row texts, with counters of what the table asked for.
class RowsModel : public uikit::TableViewDataSource, public uikit::TableViewDelegate {
public:
    std::vector<std::vector<std::string>> sections;
    std::vector<std::string> headerTitles;
    std::function<double(const uikit::IndexPath&)> height;  // none: the table's rowHeight
    std::function<void(uikit::TableViewCell&, const std::string&)> configure;
    int cellRequests = 0;
    int heightRequests = 0;
    std::vector<uikit::IndexPath> selected;
    std::vector<uikit::IndexPath> displayed;
    bool refuseSelection = false;

    int numberOfSections(uikit::TableView&) override { return static_cast<int>(sections.size()); }
    int numberOfRowsInSection(uikit::TableView&, int section) override {
        return static_cast<int>(sections.at(static_cast<std::size_t>(section)).size());
    }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        ++cellRequests;
        auto cell = table.dequeueReusableCell("row", path);
        const auto& text = sections.at(static_cast<std::size_t>(path.section)).at(static_cast<std::size_t>(path.row));
        if (configure)
            configure(*cell, text);
        else
            cell->textLabel()->setText(text);
        return cell;
    }
    std::optional<std::string> titleForHeader(uikit::TableView&, int section) override {
        if (static_cast<std::size_t>(section) >= headerTitles.size() || headerTitles[static_cast<std::size_t>(section)].empty())
            return std::nullopt;
        return headerTitles[static_cast<std::size_t>(section)];
    }
    double heightForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        ++heightRequests;
        return height ? height(path) : uikit::TableViewDelegate::heightForRowAt(table, path);
    }
    void willDisplay(uikit::TableView&, uikit::TableViewCell&, const uikit::IndexPath& path) override {
        displayed.push_back(path);
    }
    std::optional<uikit::IndexPath> willSelectRowAt(uikit::TableView&, const uikit::IndexPath& path) override {
        if (refuseSelection) return std::nullopt;
        return path;
    }
    void didSelectRowAt(uikit::TableView&, const uikit::IndexPath& path) override { selected.push_back(path); }
};

} // namespace uikit_test
