#pragma once

#include "belvakit/Request/conversation/diff_handler.hpp"
#include "belvakit/Request/conversation/message_cells.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/attachments/file_fetcher.hpp"
#include "tivra/state.hpp"
#include "uikit/table_view.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace belvakit {

// The reuse identifier of a row, by its event type.
std::string_view reuseIdentifier(EventType type);

// Turns a row into a configured cell.
class TableCellFactory {
public:
    // Registers the eight message identifiers with their cell classes.
    static void registerCells(uikit::TableView& tableView);
    std::shared_ptr<uikit::TableViewCell> cell(uikit::TableView& tableView, const uikit::IndexPath& indexPath,
                                               const CellItem& item) const;
};

// Between a conversation's state and its table: the table's data source and delegate. On every new
// state it works out the smallest update and applies it in one batch, so that rows arriving,
// leaving or changing never move what the user is reading.
class RequestTable final : public uikit::TableViewDataSource,
                           public uikit::TableViewDelegate,
                           public std::enable_shared_from_this<RequestTable> {
public:
    static std::shared_ptr<RequestTable> make(std::shared_ptr<uikit::TableView> tableView,
                                              std::shared_ptr<AttachmentFetcher> attachmentFetcher);

    const std::shared_ptr<uikit::TableView>& tableView() const { return tableView_; }
    const std::shared_ptr<AttachmentFetcher>& attachmentFetcher() const { return attachmentFetcher_; }
    // The state on show.
    const RequestTableState& state() const;

    // Heights seen, by row: estimates for rows not yet shown.
    std::map<int, double> estimatedHeightCache;

    MessageHandler didTapCell;
    MessageHandler didTapOnErrorButton;
    LinkHandler openHCArticleID;
    std::function<void(const std::vector<Message>&)> messagesChanged;
    // Filled-in attachments, for the store.
    MessageHandler attachmentFetched;

    // Shows the RequestTableState of `state`, which is shared rather than copied.
    void update(const tivra::State& state);
    // The same for a state held apart from a store.
    void update(RequestTableState state);

    // Whether the reader is at the end of the conversation.
    bool isAtBottom() const;
    // Shows the last row at the bottom, when there is one.
    void scrollToLast();

    // What the latest update did: its classification and the batch applied.
    const std::optional<DiffHandler::Action>& lastAction() const { return lastAction_; }

    // Data source.
    int numberOfRowsInSection(uikit::TableView& table, int section) override;
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    // Delegate.
    double estimatedHeightForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) override;
    void willDisplay(uikit::TableView& table, uikit::TableViewCell& cell, const uikit::IndexPath& indexPath) override;
    std::optional<uikit::IndexPath> willSelectRowAt(uikit::TableView&, const uikit::IndexPath&) override {
        return std::nullopt;
    }

private:
    RequestTable(std::shared_ptr<uikit::TableView> tableView, std::shared_ptr<AttachmentFetcher> attachmentFetcher);
    void setUp();
    void apply(const RequestTableState& old, const RequestTableState& next);
    void applyBatch(const RequestTableState& next, const DiffHandler::Diff& diff);
    void reloadAndScrollToLast();
    void wire(uikit::TableViewCell& cell);

    std::shared_ptr<uikit::TableView> tableView_;
    std::shared_ptr<AttachmentFetcher> attachmentFetcher_;
    TableCellFactory factory_;
    // The store's state, shared: holds the slice on show without a copy of it.
    tivra::State snapshot_;
    const RequestTableState* state_ = nullptr;
    std::optional<DiffHandler::Action> lastAction_;
};

} // namespace belvakit
