#pragma once

#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "uikit/table_view.hpp"

#include <memory>

namespace belvakit {

// Told which ticket the user tapped.
class RequestListTableViewHandlerDelegate {
public:
    virtual ~RequestListTableViewHandlerDelegate() = default;
    virtual void didSelectRequest(const RequestListCellData& request) = 0;
};

// Feeds the list's table from the state it was given last.
class RequestListTableViewHandler final : public uikit::TableViewDataSource, public uikit::TableViewDelegate {
public:
    static constexpr const char* cellIdentifier = "CRVrequestCellID";

    // Registers the row's cell with the table. The table holds the handler weakly: its owner keeps it.
    explicit RequestListTableViewHandler(const std::shared_ptr<uikit::TableView>& table);

    std::weak_ptr<uikit::TableView> tableView;
    RequestListState tableData;
    std::weak_ptr<RequestListTableViewHandlerDelegate> delegate;

    int numberOfRowsInSection(uikit::TableView& table, int section) override;
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    double estimatedHeightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    void didSelectRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
};

} // namespace belvakit
