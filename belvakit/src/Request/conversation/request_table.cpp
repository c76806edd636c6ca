#include "belvakit/Request/conversation/request_table.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "corvane/core_logger.hpp"
#include "platform/main_queue.hpp"
#include "tivra/state_key.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

using corvane::CoreLogger;

const RequestTableState& emptyState() {
    static const RequestTableState empty;
    return empty;
}

bool sameMessages(const std::vector<Message>& left, const std::vector<Message>& right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (!rowsEqual(left[i], right[i])) return false;
    return true;
}

std::optional<std::string_view> logLine(DiffHandler::Kind kind) {
    switch (kind) {
    case DiffHandler::Kind::changeCells: return "Changing cells";
    case DiffHandler::Kind::reloadCells: return "Reloading cells";
    case DiffHandler::Kind::movedCells: return "Moved cells";
    case DiffHandler::Kind::reloadTableAndScrollToLast: return "Reloading table and scroll to last";
    case DiffHandler::Kind::reloadTable: return "Reloading table";
    case DiffHandler::Kind::removeCells:
    case DiffHandler::Kind::doNothing: return std::nullopt;
    }
    return std::nullopt;
}

// A row the user sent just now, still on its way.
bool isOwnFreshText(const CellItem& item) {
    const auto* message = std::get_if<Message>(&item);
    const auto* text = message ? message->getIf<UserMessage>() : nullptr;
    return text && text->status == DeliveryStatus::notDelivered;
}

std::vector<uikit::IndexPath> paths(const std::vector<int>& rows) {
    std::vector<uikit::IndexPath> out;
    out.reserve(rows.size());
    for (const int row : rows) out.push_back({0, row});
    return out;
}

// What the user is looking at before an update: the top row in view and how far into it.
struct Reading {
    std::optional<int> row;
    double into = 0;
    bool atBottom = false;
    std::map<int, std::shared_ptr<uikit::TableViewCell>> cells;  // old rows in view
};

} // namespace

std::string_view reuseIdentifier(EventType type) {
    switch (type) {
    case EventType::userMessage: return "userMessage";
    case EventType::agentMessage: return "agentMessage";
    case EventType::userImage: return "userImage";
    case EventType::agentImage: return "agentImage";
    case EventType::userFile: return "userFile";
    case EventType::agentFile: return "agentFile";
    case EventType::date: return "date";
    case EventType::systemMessage: return "systemMessage";
    }
    return "systemMessage";
}

void TableCellFactory::registerCells(uikit::TableView& tableView) {
    tableView.registerCell<TextCell>("userMessage");
    tableView.registerCell<TextCell>("agentMessage");
    tableView.registerCell<ImageCell>("userImage");
    tableView.registerCell<ImageCell>("agentImage");
    tableView.registerCell<FileCell>("userFile");
    tableView.registerCell<FileCell>("agentFile");
    tableView.registerCell<SystemMessageCell>("date");
    tableView.registerCell<SystemMessageCell>("systemMessage");
}

std::shared_ptr<uikit::TableViewCell> TableCellFactory::cell(uikit::TableView& tableView,
                                                             const uikit::IndexPath& indexPath,
                                                             const CellItem& item) const {
    auto cell = tableView.dequeueReusableCell(std::string(reuseIdentifier(type(item))), indexPath);
    cell->setAccessibilityIdentifier("CRVCellID" + std::to_string(indexPath.row));
    if (auto* system = dynamic_cast<SystemMessageCell*>(cell.get())) {
        system->item = item;
        system->configure();
    }
    const auto* message = std::get_if<Message>(&item);
    if (auto* messageCell = dynamic_cast<MessageCell*>(cell.get()); message && messageCell)
        messageCell->setMessage(*message);
    if (auto* image = dynamic_cast<ImageCell*>(cell.get()); image && !image->width) {
        if (const auto* parent = tableView.superview()) {
            const auto* window = tableView.window();
            const auto orientation = window ? window->environment().orientation : uikit::InterfaceOrientation::portrait;
            const bool landscape = orientation == uikit::InterfaceOrientation::landscapeLeft ||
                                   orientation == uikit::InterfaceOrientation::landscapeRight;
            image->width = landscape ? parent->frame().height() : parent->frame().width();
        }
    }
    return cell;
}

std::shared_ptr<RequestTable> RequestTable::make(std::shared_ptr<uikit::TableView> tableView,
                                                 std::shared_ptr<AttachmentFetcher> attachmentFetcher) {
    std::shared_ptr<RequestTable> table(new RequestTable(std::move(tableView), std::move(attachmentFetcher)));
    table->setUp();
    return table;
}

RequestTable::RequestTable(std::shared_ptr<uikit::TableView> tableView, std::shared_ptr<AttachmentFetcher> attachmentFetcher)
    : tableView_(std::move(tableView)), attachmentFetcher_(std::move(attachmentFetcher)) {}

void RequestTable::setUp() {
    auto& table = *tableView_;
    table.setDataSource(shared_from_this());
    table.setDelegate(shared_from_this());
    TableCellFactory::registerCells(table);
    table.rowHeight = uikit::automaticDimension;
    table.allowsSelection = false;
    table.separatorStyle = uikit::TableViewCellSeparatorStyle::none;
    table.contentInset.bottom = 8.0;
    table.setAccessibilityIdentifier("CRVconversationTable");
    if (attachmentFetcher_)
        attachmentFetcher_->setCallback([weak = weak_from_this()](const Message& message) {
            if (auto self = weak.lock(); self && self->attachmentFetched) self->attachmentFetched(message);
        });
}

const RequestTableState& RequestTable::state() const { return state_ ? *state_ : emptyState(); }

void RequestTable::update(RequestTableState state) {
    update(tivra::State{{tivra::stateKeyOf<RequestTableState>(), std::any(std::move(state))}});
}

void RequestTable::update(const tivra::State& state) {
    const auto* next = state.value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    if (!next) return;
    // The old state stays alive in `previous` while the table moves to the new one.
    tivra::State previous = std::move(snapshot_);
    const RequestTableState& old = state_ ? *state_ : emptyState();
    snapshot_ = state;
    state_ = snapshot_.value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    // The old rows stay on show until the update is applied.
    const RequestTableState* shown = state_;
    state_ = &old;
    apply(old, *shown);
    state_ = shown;
    if (messagesChanged && !sameMessages(old.tableData, state_->tableData)) messagesChanged(state_->tableData);
}

void RequestTable::apply(const RequestTableState& old, const RequestTableState& next) {
    if (next.lastActionType == ActionTypes::reset) {
        CoreLogger::debug("Restting table and scroll to last");
        state_ = &next;
        reloadAndScrollToLast();
        return;
    }
    if (old.cellItems.empty()) {
        // Nothing was on show: the whole conversation arrives, read from its end.
        lastAction_ = DiffHandler::Action{next.cellItems.empty() ? DiffHandler::Kind::doNothing
                                                                  : DiffHandler::Kind::reloadTableAndScrollToLast};
        state_ = &next;
        if (!next.cellItems.empty()) {
            CoreLogger::debug("Reloading table and scroll to last");
            reloadAndScrollToLast();
        }
        return;
    }
    auto diff = DiffHandler::diff(old.cellItems, next.cellItems);
    lastAction_ = DiffHandler::action(diff, next.cellItems);
    CoreLogger::debug("New state " + std::string(DiffHandler::name(lastAction_->kind)) + ": " +
                      std::to_string(diff.lists.inserted.size()) + " inserted, " +
                      std::to_string(diff.lists.removed.size()) + " removed, " +
                      std::to_string(diff.lists.changed.size()) + " changed, " +
                      std::to_string(diff.lists.moved.size()) + " moved");
    if (const auto line = logLine(lastAction_->kind)) CoreLogger::debug(*line);
    if (lastAction_->kind == DiffHandler::Kind::doNothing) {
        state_ = &next;
        return;
    }
    applyBatch(next, diff);
}

bool RequestTable::isAtBottom() const {
    const auto& table = *tableView_;
    const double visible = table.frame().height() - table.contentInset.bottom;
    return table.contentOffset().y + visible >= table.contentSize().height - 1.0;
}

void RequestTable::applyBatch(const RequestTableState& next, const DiffHandler::Diff& diff) {
    auto& table = *tableView_;
    const auto& newRows = next.cellItems;
    const auto& updates = diff.updates;

    // Taken while the old rows are on show.
    Reading reading;
    for (const auto& path : table.indexPathsForVisibleRows()) {
        if (auto cell = table.cellForRow(path)) reading.cells[path.row] = cell;
        if (!reading.row || path.row < *reading.row) reading.row = path.row;
    }
    if (reading.row) reading.into = table.contentOffset().y - table.rectForRow({0, *reading.row}).minY();
    reading.atBottom = isAtBottom();

    std::vector<std::pair<std::shared_ptr<ImageCell>, Message>> refreshInPlace;
    std::vector<int> reloads;
    for (const auto& [from, to] : updates.reloaded) {
        const auto shown = reading.cells.find(from);
        if (shown == reading.cells.end()) continue;  // built from the new rows when it shows
        const auto* message = std::get_if<Message>(&newRows[static_cast<std::size_t>(to)]);
        auto image = std::dynamic_pointer_cast<ImageCell>(shown->second);
        const bool stillImage = message && (type(*message) == EventType::userImage || type(*message) == EventType::agentImage);
        if (image && stillImage && image->message() && id(*image->message()) == id(*message))
            refreshInPlace.emplace_back(std::move(image), *message);
        else
            reloads.push_back(from);
    }
    state_ = &next;
    table.beginUpdates();
    if (!updates.deleted.empty()) table.deleteRows(paths(updates.deleted), uikit::TableViewRowAnimation::right);
    if (!updates.inserted.empty()) table.insertRows(paths(updates.inserted), uikit::TableViewRowAnimation::right);
    for (const auto& [from, to] : updates.moved) table.moveRow({0, from}, {0, to});
    if (!reloads.empty()) table.reloadRows(paths(reloads), uikit::TableViewRowAnimation::none);
    table.endUpdates();
    for (const auto& [cell, message] : refreshInPlace) {
        // An image on show takes its picture without a reload, so it doesn't flash.
        if (platform::MainQueue::shared().isMainThread())
            cell->setMessage(message);
        else
            platform::MainQueue::shared().sync([&cell = cell, &message = message] { cell->setMessage(message); });
    }

    // A reader at the end stays at the end; the user's own message always comes into view.
    const bool ownSend = std::any_of(updates.inserted.begin(), updates.inserted.end(),
                                     [&](int row) { return isOwnFreshText(newRows[static_cast<std::size_t>(row)]); });
    if (!newRows.empty() && (ownSend || reading.atBottom)) {
        scrollToLast();
        return;
    }
    if (!reading.row) return;
    // The row that was on top, or the first one after it that stayed, keeps its place.
    for (int row = *reading.row; row < static_cast<int>(diff.newOfOld.size()); ++row) {
        const int now = diff.newOfOld[static_cast<std::size_t>(row)];
        if (now < 0) continue;
        const double into = row == *reading.row ? reading.into : 0.0;
        const uikit::Point offset{table.contentOffset().x, table.rectForRow({0, now}).minY() + into};
        table.setContentOffset(table.clampedOffset(offset));
        break;
    }
}

void RequestTable::reloadAndScrollToLast() {
    tableView_->reloadData();
    scrollToLast();
}

void RequestTable::scrollToLast() {
    auto& table = *tableView_;
    table.layoutIfNeeded();
    const int rows = table.numberOfRowsInSection(0);
    if (rows > 0) table.scrollToRow({0, rows - 1}, uikit::TableViewScrollPosition::bottom, false);
}

int RequestTable::numberOfRowsInSection(uikit::TableView&, int section) {
    return section == 0 ? static_cast<int>(state().cellItems.size()) : 0;
}

std::shared_ptr<uikit::TableViewCell> RequestTable::cellForRowAt(uikit::TableView& table, const uikit::IndexPath& indexPath) {
    const auto& rows = state().cellItems;
    if (indexPath.row < 0 || static_cast<std::size_t>(indexPath.row) >= rows.size())
        return std::make_shared<uikit::TableViewCell>();
    const auto& item = rows[static_cast<std::size_t>(indexPath.row)];
    auto cell = factory_.cell(table, indexPath, item);
    wire(*cell);
    if (const auto* message = std::get_if<Message>(&item); message && hasAttachment(*message) && attachmentFetcher_)
        attachmentFetcher_->fetchAttachments({*message});
    return cell;
}

void RequestTable::wire(uikit::TableViewCell& cell) {
    std::weak_ptr<RequestTable> weak = weak_from_this();
    auto* messageCell = dynamic_cast<MessageCell*>(&cell);
    if (!messageCell) return;
    messageCell->cellTapHandler = [weak](const Message& message) {
        if (auto self = weak.lock(); self && self->didTapCell) self->didTapCell(message);
    };
    messageCell->errorButtonTapHandler = [weak](const Message& message) {
        if (auto self = weak.lock(); self && self->didTapOnErrorButton) self->didTapOnErrorButton(message);
    };
    if (auto* text = dynamic_cast<TextCell*>(&cell))
        text->openHelpCenterWithArticleId = [weak](std::shared_ptr<corvane::ActionHandler> handler, const platform::URL& url) {
            if (auto self = weak.lock(); self && self->openHCArticleID) self->openHCArticleID(std::move(handler), url);
        };
}

double RequestTable::estimatedHeightForRowAt(uikit::TableView&, const uikit::IndexPath& indexPath) {
    const auto found = estimatedHeightCache.find(indexPath.row);
    return found == estimatedHeightCache.end() ? 44.0 : found->second;
}

void RequestTable::willDisplay(uikit::TableView&, uikit::TableViewCell& cell, const uikit::IndexPath& indexPath) {
    estimatedHeightCache[indexPath.row] = cell.frame().height();
}

} // namespace belvakit
