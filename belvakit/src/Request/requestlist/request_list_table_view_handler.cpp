#include "belvakit/Request/requestlist/request_list_table_view_handler.hpp"

#include "belvakit/Request/requestlist/request_list_table_view_cell.hpp"

namespace belvakit {

RequestListTableViewHandler::RequestListTableViewHandler(const std::shared_ptr<uikit::TableView>& table)
    : tableView(table) {
    if (table) table->registerCell<RequestListTableViewCell>(cellIdentifier);
}

int RequestListTableViewHandler::numberOfRowsInSection(uikit::TableView&, int section) {
    return section == 0 ? static_cast<int>(tableData.requests.size()) : 0;
}

std::shared_ptr<uikit::TableViewCell> RequestListTableViewHandler::cellForRowAt(uikit::TableView& table,
                                                                                const uikit::IndexPath& indexPath) {
    auto cell = table.dequeueReusableCell(cellIdentifier, indexPath);
    const auto row = static_cast<std::size_t>(indexPath.row);
    if (auto* requestCell = dynamic_cast<RequestListTableViewCell*>(cell.get());
        requestCell && row < tableData.requests.size())
        requestCell->configure(tableData.requests[row]);
    return cell;
}

double RequestListTableViewHandler::estimatedHeightForRowAt(uikit::TableView&, const uikit::IndexPath&) { return 80; }

void RequestListTableViewHandler::didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    table.deselectRow(indexPath, true);
    const auto row = static_cast<std::size_t>(indexPath.row);
    if (row >= tableData.requests.size()) return;
    // A copy: the delegate may replace the rows while it handles the tap.
    const RequestListCellData tapped = tableData.requests[row];
    if (auto target = delegate.lock()) target->didSelectRequest(tapped);
}

} // namespace belvakit
