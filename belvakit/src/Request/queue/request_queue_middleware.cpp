#include "belvakit/Request/queue/request_queue_middleware.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/conversation_recorder.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_operations.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/attachments/cache.hpp"
#include "corvane/core_logger.hpp"
#include "platform/clock.hpp"
#include "platform/main_queue.hpp"
#include "tivra/state.hpp"
#include "tivra/state_key.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <typeinfo>

namespace belvakit {

// The operations of one conversation, and where their outcomes go.
struct RequestQueueMiddleWare::Conversation {
    RequestQueueState state = RequestQueueState::initial();  // touched on requestDispatchQueue only
    // Set once no screen shows the conversation: its table as the screen left it, which takes
    // the outcomes from then on (nothing when the store had no conversation table).
    // Every visit that left work behind shares one table per conversation, so no visit's outcome
    // writes back a copy that lacks another's messages.
    bool left = false;
    std::shared_ptr<RequestTableState> table;
    // Shown again while an earlier visit's ticket was still being created: that visit, whose
    // ticket this one's messages go to.
    std::shared_ptr<Conversation> joins;
};

namespace {

std::optional<RequestTableState> shownTable(const tivra::GetState& getState) {
    if (!getState) return std::nullopt;
    const tivra::State state = getState();
    const auto* table = state.value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    return table ? std::optional(*table) : std::nullopt;
}

// A new conversation has no id until its ticket's outcome gives it one; its screen and its saved
// file know it by its first message's id, so a left one takes that name at once. Shown again
// before the outcome, it is then known as the same conversation.
void nameNewConversation(RequestTableState& table) {
    if (!table.localId && !table.remoteId && !table.tableData.empty()) table.localId = id(table.tableData.front());
}

// The id a conversation is kept under: a new one's is its first message's until the ticket names it.
std::optional<std::string> keyOf(const RequestTableState& table) {
    if (table.localId) return table.localId;
    if (!table.tableData.empty()) return std::string(id(table.tableData.front()));
    return std::nullopt;
}

bool sameConversation(const RequestTableState& shown, const RequestTableState& left) {
    return (left.localId && shown.localId == left.localId) || (left.remoteId && shown.remoteId == left.remoteId);
}

// Takes what `shown` knows into `kept`, losing nothing either holds: a message in both keeps the
// shown version unless only the kept one has its outcome yet.
void absorb(RequestTableState& kept, const RequestTableState& shown) {
    // The index views the ids of these copies, which stay while `kept` takes other messages.
    const std::vector<Message> before = kept.tableData;
    std::unordered_map<std::string_view, std::size_t> index;
    index.reserve(before.size());
    for (std::size_t i = 0; i < before.size(); ++i) index.emplace(id(before[i]), i);
    std::vector<Message> added;
    for (const auto& message : shown.tableData) {
        const auto found = index.find(id(message));
        if (found == index.end()) {
            added.push_back(message);
            continue;
        }
        Message& known = kept.tableData[found->second];
        if (status(message) != DeliveryStatus::notDelivered || status(known) == DeliveryStatus::notDelivered)
            known = message;
    }
    kept.tableData.insert(kept.tableData.end(), std::make_move_iterator(added.begin()),
                          std::make_move_iterator(added.end()));
    for (const auto& [localId, remoteId] : shown.mapLocalToRemote) kept.mapLocalToRemote[localId] = remoteId;
    if (!kept.localId) kept.localId = shown.localId;
    if (!kept.remoteId) kept.remoteId = shown.remoteId;
    kept.ticketClosed = kept.ticketClosed || shown.ticketClosed;
}

// The local message whose send an outcome reports; nothing for fetches.
const std::string* reportedMessageId(const tivra::Action& result) {
    if (const auto* a = tivra::actionAs<Actions::TicketCreated>(result)) return &a->localId;
    if (const auto* b = tivra::actionAs<Actions::CommentCreated>(result)) return &b->localId;
    if (const auto* c = tivra::actionAs<Actions::TicketCreationError>(result)) return &c->id;
    if (const auto* d = tivra::actionAs<Actions::CommentCreationError>(result)) return &d->id;
    if (const auto* e = tivra::actionAs<Actions::AttachmentsUploadError>(result)) return &e->id;
    return nullptr;
}

// A message of the send whose id is `sent`: its text, or a file sent with it.
bool ofSend(const Message& message, const std::string& sent) {
    const std::string* parent = parentIdOf(message);
    return id(message) == sent || (parent && *parent == sent);
}

// The messages of the send that `result` reports which `into` lacks.
std::vector<Message> missingMessagesOfSend(const RequestTableState& from, const RequestTableState& into,
                                           const tivra::Action& result) {
    std::vector<Message> missing;
    const std::string* sent = reportedMessageId(result);
    if (!sent) return missing;
    for (const auto& message : from.tableData) {
        if (!ofSend(message, *sent)) continue;
        const bool present = std::ranges::any_of(
            into.tableData, [&](const Message& shown) { return id(shown) == id(message); });
        if (!present) missing.push_back(message);
    }
    return missing;
}

// What an outcome changed in a left conversation's copy, and the messages of the send it reports
// whatever their state there: the copy may be older than a retry made on a later visit.
ConversationChanges changesOfOutcome(const std::vector<Message>& before, const std::vector<Message>& after,
                                     const tivra::Action& result) {
    auto changes = changesBetween(before, after);
    if (const std::string* sent = reportedMessageId(result))
        for (const auto& message : after)
            if (ofSend(message, *sent)) changes.changed.insert(id(message));
    return changes;
}

} // namespace

std::shared_ptr<RequestQueueMiddleWare> RequestQueueMiddleWare::make(
    std::deque<std::shared_ptr<RequestOperation>> requestOperations, RequestQueueState queueState,
    RequestUiConfiguration config) {
    return std::shared_ptr<RequestQueueMiddleWare>(
        new RequestQueueMiddleWare(std::move(requestOperations), std::move(queueState), std::move(config)));
}

RequestQueueMiddleWare::RequestQueueMiddleWare(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                                               RequestQueueState queueState, RequestUiConfiguration config)
    : requestOperations_(std::move(requestOperations)),
      shown_(std::make_shared<Conversation>(Conversation{std::move(queueState)})), config_(std::move(config)) {
    owners_.assign(requestOperations_.size(), shown_);
}

const platform::SerialQueue& RequestQueueMiddleWare::requestDispatchQueue() const {
    std::call_once(queueMade_, [this] { requestDispatchQueue_.emplace("RequestQueue"); });
    return *requestDispatchQueue_;
}

RequestQueueState RequestQueueMiddleWare::queueState() const {
    std::optional<RequestQueueState> state;
    requestDispatchQueue().sync([&] { state = shown_->state; });
    return *state;
}

void RequestQueueMiddleWare::onAction(const tivra::Action& action, const tivra::GetState& getState,
                                      const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    namespace Q = RequestQueueActions;
    if (!dispatch_) dispatch_ = dispatch;
    if (!getState_) getState_ = getState;

    // Every action of the store passes here; one type lookup keeps that cheap.
    const std::type_info& type = typeid(action);
    if (type == typeid(Q::ResetQueue)) {
        moveOn(getState, reset(queueState()));
    } else if (type == typeid(Actions::InitializeRequestControllerState)) {
        // The table is about to show another conversation; work still queued keeps the one it had.
        if (hasWork(*shown_)) {
            const auto ticket = ticketInfo(queueState());
            moveOn(getState, ticket ? RequestQueueState::ticketCreated(ticket->first, ticket->second)
                                    : RequestQueueState::dirty());
        }
    } else if (type == typeid(Q::SetRequestId)) {
        if (const auto& id = static_cast<const Q::SetRequestId&>(action).id) {
            const auto ticket = ticketInfo(queueState());
            const auto state = RequestQueueState::ticketCreated(*id, platform::now());
            if (ticket && ticket->first == *id)
                requestDispatchQueue().sync([this, &state] { shown_->state = state; });
            else
                moveOn(getState, state);
        }
    } else if (type == typeid(Q::SendComing)) {
        announced_[static_cast<const Q::SendComing&>(action).id] = shown_;
    } else if (type == typeid(Q::SetConfig)) {
        config_ = static_cast<const Q::SetConfig&>(action).config;
    } else if (type == typeid(Q::DispatchOperations)) {
        for (const auto& operation : static_cast<const Q::DispatchOperations&>(action).operations) enqueue(operation);
        process();
    } else if (type == typeid(Q::DispatchDetails)) {
        enqueueOperationsFor(static_cast<const Q::DispatchDetails&>(action));
        process();
    }
    next(action);
}

bool RequestQueueMiddleWare::hasWork(const Conversation& conversation) const {
    return running_.get() == &conversation ||
           std::ranges::any_of(owners_, [&](const auto& owner) { return owner.get() == &conversation; }) ||
           std::ranges::any_of(announced_, [&](const auto& entry) { return entry.second.get() == &conversation; });
}

std::optional<TicketInfo> RequestQueueMiddleWare::ticketOf(const Conversation& conversation) {
    if (auto ticket = ticketInfo(conversation.state)) return ticket;
    return conversation.joins ? ticketOf(*conversation.joins) : std::nullopt;
}

bool RequestQueueMiddleWare::awaitsTicket(const Conversation& conversation) const {
    if (running_.get() == &conversation && runningCreatesTicket_) return true;
    for (std::size_t i = 0; i < requestOperations_.size(); ++i)
        if (owners_[i].get() == &conversation && dynamic_cast<const TicketRequestOperation*>(requestOperations_[i].get()))
            return true;
    return conversation.joins && awaitsTicket(*conversation.joins);
}

std::shared_ptr<RequestQueueMiddleWare::Conversation> RequestQueueMiddleWare::earlierVisit(
    const RequestQueueActions::DispatchDetails& details) const {
    auto key = details.conversation;
    if (!key)
        if (const auto shown = shownTable(getState_)) key = shown->localId;
    if (!key) return nullptr;
    const auto visitOf = [&](const std::shared_ptr<Conversation>& visit) {
        return visit && visit != shown_ && visit->left && visit->table &&
               (keyOf(*visit->table) == key || visit->table->remoteId == key);
    };
    for (auto owner = owners_.rbegin(); owner != owners_.rend(); ++owner)
        if (visitOf(*owner)) return *owner;
    return visitOf(running_) ? running_ : nullptr;
}

void RequestQueueMiddleWare::moveOn(const tivra::GetState& getState, const RequestQueueState& state) {
    auto table = shownTable(getState);
    std::shared_ptr<RequestTableState> kept;
    if (table) {
        nameNewConversation(*table);
        auto keptFor = [&](const std::shared_ptr<Conversation>& owner) {
            if (!kept && owner && owner->left && owner->table && sameConversation(*table, *owner->table))
                kept = owner->table;
        };
        keptFor(running_);
        for (const auto& owner : owners_) keptFor(owner);
        if (kept) absorb(*kept, *table);
    }
    if (hasWork(*shown_)) {
        shown_->left = true;
        shown_->table = kept ? kept : table ? std::make_shared<RequestTableState>(std::move(*table)) : nullptr;
        shown_ = std::make_shared<Conversation>();
    }
    requestDispatchQueue().sync([this, &state] { shown_->state = state; });
}

void RequestQueueMiddleWare::enqueue(std::shared_ptr<RequestOperation> operation,
                                     std::shared_ptr<Conversation> owner) {
    requestOperations_.push_back(std::move(operation));
    owners_.push_back(owner ? std::move(owner) : shown_);
}

void RequestQueueMiddleWare::enqueueOperationsFor(const RequestQueueActions::DispatchDetails& details) {
    // A send announced while another conversation was shown belongs to that one.
    std::shared_ptr<Conversation> owner = shown_;
    if (const auto announced = announced_.find(details.id); announced != announced_.end()) {
        owner = std::move(announced->second);
        announced_.erase(announced);
    }
    // One capture keeps the block small enough to need no allocation.
    struct {
        bool hasTicket = false;
        bool requesting = false;
    } seen;
    requestDispatchQueue().sync([&owner, &seen] {
        seen.hasTicket = ticketInfo(owner->state).has_value();
        seen.requesting = owner->state.isRequesting();
    });
    // The ticket's creation may also wait behind another conversation's work.
    bool creationQueued = false;
    for (std::size_t i = 0; i < requestOperations_.size() && !creationQueued; ++i)
        creationQueued = owners_[i] == owner && dynamic_cast<const TicketRequestOperation*>(requestOperations_[i].get());
    if (owner == shown_ && !seen.hasTicket && !seen.requesting && !creationQueued) {
        // Shown again before an earlier visit's ticket came: the message follows that ticket's
        // creation instead of making a second ticket. A creation that failed leaves none to follow.
        if (!shown_->joins) shown_->joins = earlierVisit(details);
        if (shown_->joins) {
            std::optional<TicketInfo> ticket;
            requestDispatchQueue().sync([this, &ticket] {
                ticket = ticketOf(*shown_->joins);
                if (ticket) shown_->state = RequestQueueState::ticketCreated(ticket->first, ticket->second);
            });
            if (ticket || !awaitsTicket(*shown_->joins)) shown_->joins.reset();
            seen.hasTicket = ticket.has_value();
            creationQueued = shown_->joins != nullptr;
        }
    }
    if (owner == shown_ && !seen.hasTicket && !seen.requesting && !creationQueued && details.conversation)
        if (const auto taken = ticketsTakenElsewhere_.find(*details.conversation); taken != ticketsTakenElsewhere_.end()) {
            const TicketInfo ticket = taken->second;
            requestDispatchQueue().sync([this, &ticket] { shown_->state = RequestQueueState::ticketCreated(ticket.first, ticket.second); });
            seen.hasTicket = true;
            // The table learns it too, or it would keep the conversation as the device's alone.
            Actions::SetRemoteId known;
            known.remoteRequestID = ticket.first;
            known.localId = *details.conversation;
            if (dispatch_) dispatch_(known);
        }
    if (seen.hasTicket) {
        // The fetch goes first, so a comment sent after a long pause lands after what agents wrote.
        enqueue(std::make_shared<FetchNewCommentsOperation>(), owner);
        enqueue(std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments), owner);
    } else if (seen.requesting || creationQueued) {
        // Whatever is in flight or waiting for this conversation is its ticket's creation; this
        // message will find the ticket.
        enqueue(std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments), owner);
    } else {
        enqueue(std::make_shared<TicketRequestOperation>(details.id, details.body, details.attachments, config_), owner);
    }
}

void RequestQueueMiddleWare::process() { processNext(true); }

void RequestQueueMiddleWare::processNext(bool reportCompletion) {
    if (running_) return;  // its completion runs this again
    if (requestOperations_.empty()) {
        if (reportCompletion && dispatch_) dispatch_(RequestQueueActions::QueueCompleted{});
        return;
    }
    auto operation = std::move(requestOperations_.front());
    requestOperations_.pop_front();
    running_ = std::move(owners_.front());
    owners_.pop_front();
    runningCreatesTicket_ = dynamic_cast<const TicketRequestOperation*>(operation.get()) != nullptr;

    std::optional<TicketInfo> ticket;
    requestDispatchQueue().sync([this, &ticket] {
        // The visit this one joined has run before it, and made the ticket if it could.
        if (running_->joins && !running_->state.isRequesting() && !ticketInfo(running_->state))
            if (const auto joined = ticketOf(*running_->joins))
                running_->state = RequestQueueState::ticketCreated(joined->first, joined->second);
        running_->state = started(running_->state);
        ticket = ticketInfo(running_->state);
    });
    if (ticket) running_->joins.reset();
    // A provider may answer on any thread; the waiting list belongs to the main one.
    operation->setRequestBlock([weak = weak_from_this(), run = ++runs_](const tivra::Action& result) {
        platform::MainQueue::shared().sync([&] {
            if (auto self = weak.lock()) self->complete(run, result);
        });
    });
    operation->execute(std::move(ticket));
}

void RequestQueueMiddleWare::complete(std::uint64_t run, const tivra::Action& result) {
    if (run != runs_ || !running_) {
        corvane::CoreLogger::error("An operation of the send queue reported its outcome twice");
        return;
    }
    auto owner = std::move(running_);
    runningCreatesTicket_ = false;
    requestDispatchQueue().sync([&owner, &result] { owner->state = reduce(owner->state, result); });
    const auto startsBefore = runs_;
    if (!owner->left) {
        if (dispatch_) dispatch_(result);
    } else {
        keepForLeftConversation(*owner, result);
    }
    // A listener that sent meanwhile started the next operation, and its end reports the end.
    if (runs_ != startsBefore) return;
    // The end of a left conversation's work is no end of what the screen shown now sends.
    processNext(!owner->left);
}

void RequestQueueMiddleWare::keepForLeftConversation(Conversation& conversation, const tivra::Action& result) {
    if (!dispatch_) return;
    const auto tellSender = [this, &result] {
        const std::string* sent = reportedMessageId(result);
        if (!sent) return;
        RequestQueueActions::SendOutcomeKept kept;
        kept.id = *sent;
        kept.delivered = tivra::actionAs<Actions::TicketCreated>(result) || tivra::actionAs<Actions::CommentCreated>(result);
        dispatch_(kept);
    };
    if (!conversation.table) return tellSender();  // the store holds no conversation to keep it in
    RequestTableState& table = *conversation.table;
    const auto before = table.tableData;
    if (auto next = RequestTableReducer().reduce(table, result)) table = std::move(*next);
    const auto shown = shownTable(getState_);
    if (shown && sameConversation(*shown, table)) {
        // The ticket this work made is the shown conversation's, which may not know it yet.
        std::optional<TicketInfo> ticket;
        requestDispatchQueue().sync([this, &conversation, &ticket] {
            ticket = ticketInfo(conversation.state);
            if (ticket && !ticketInfo(shown_->state) && !hasWork(*shown_))
                shown_->state = RequestQueueState::ticketCreated(ticket->first, ticket->second);
        });
        // Shown under a key of its own (opened by its ticket id), the ticket takes this
        // conversation's key, so that both are kept as one.
        const bool underAnotherKey = table.localId && shown->localId != table.localId;
        if (underAnotherKey) {
            Actions::NameConversation adopted;
            adopted.localId = *table.localId;
            adopted.replacing = true;
            dispatch_(adopted);
        }
        // Opened again meanwhile: the table on screen takes the outcome, with the messages it
        // concerns if the screen never saw them.
        auto missing = missingMessagesOfSend(table, *shown, result);
        if (!missing.empty()) {
            Actions::NewMessages messages;
            messages.messages = std::move(missing);
            dispatch_(messages);
        }
        dispatch_(result);
        // Shown under a key of its own (opened by its ticket id), the ticket is still this
        // conversation's too: it and its file learn the outcome, or it would make a second ticket.
        if (underAnotherKey) {
            if (ticket) ticketsTakenElsewhere_[*table.localId] = *ticket;
            persistChangesOver(table.tableData, changesOfOutcome(before, table.tableData, result), table.localId,
                               table.remoteId, table.mapLocalToRemote, MessageList::currentVersion, table.ticketClosed,
                               ConcreteCache::named(ConcreteCache::ticketsDirectory));
        }
        return;
    }
    LocalIDStore idStore;
    // The saved file may have moved on since this copy was taken, on a screen shown again
    // meanwhile: only what this outcome concerns is written over it.
    recordConversation(table, idStore, RequestsWithFailedMessagesIdStore{},
                       ConcreteCache::named(ConcreteCache::ticketsDirectory), dispatch_,
                       {.onlyChanges = changesOfOutcome(before, table.tableData, result)});
    tellSender();
}

} // namespace belvakit
