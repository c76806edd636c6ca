#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/Request/queue/request_queue_state.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "platform/serial_queue.hpp"
#include "tivra/middleware.hpp"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace belvakit {

namespace RequestQueueActions {
struct DispatchDetails;
}

// Runs the network operations of conversations one at a time, in the order asked for, each
// knowing the ticket that the ones before it created. An operation belongs to the conversation
// it was queued for: when the screen moves on to another conversation, the waiting ones still
// go to their own ticket, and their outcomes are kept with that conversation instead of reaching
// the one now shown. Results go back through the store.
class RequestQueueMiddleWare final : public tivra::Middleware,
                                     public std::enable_shared_from_this<RequestQueueMiddleWare> {
public:
    static std::shared_ptr<RequestQueueMiddleWare> make(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                                                        RequestQueueState queueState, RequestUiConfiguration config);

    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;

    // Starts the next waiting operation unless one is in flight; reports `QueueCompleted` when
    // none is waiting and none is in flight.
    void process();

    // The state of the conversation now shown.
    RequestQueueState queueState() const;
    // Waiting operations of every conversation, oldest first.
    const std::deque<std::shared_ptr<RequestOperation>>& requestOperations() const { return requestOperations_; }
    const RequestUiConfiguration& config() const { return config_; }

private:
    struct Conversation;

    RequestQueueMiddleWare(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                           RequestQueueState queueState, RequestUiConfiguration config);

    void enqueueOperationsFor(const RequestQueueActions::DispatchDetails& details);
    // Owned by the conversation shown unless `owner` says otherwise.
    void enqueue(std::shared_ptr<RequestOperation> operation, std::shared_ptr<Conversation> owner = nullptr);
    bool hasWork(const Conversation& conversation) const;
    // The ticket of `conversation`, or of the visit whose ticket it waits for.
    static std::optional<TicketInfo> ticketOf(const Conversation& conversation);
    // A ticket for `conversation` is being created, or waits to be.
    bool awaitsTicket(const Conversation& conversation) const;
    // The latest left visit, with work still to do, of the conversation that `details` is sent in.
    std::shared_ptr<Conversation> earlierVisit(const RequestQueueActions::DispatchDetails& details) const;
    // The shown conversation's work goes on without a screen; what comes next belongs to a new
    // conversation in `state`.
    void moveOn(const tivra::GetState& getState, const RequestQueueState& state);
    void processNext(bool reportCompletion);
    void complete(std::uint64_t run, const tivra::Action& result);
    void keepForLeftConversation(Conversation& conversation, const tivra::Action& result);
    const platform::SerialQueue& requestDispatchQueue() const;

    std::deque<std::shared_ptr<RequestOperation>> requestOperations_;
    std::deque<std::shared_ptr<Conversation>> owners_;  // the conversation of each waiting operation
    // Sends still being prepared, by id, with the conversation shown when they were made.
    std::unordered_map<std::string, std::shared_ptr<Conversation>> announced_;
    std::shared_ptr<Conversation> shown_;
    std::shared_ptr<Conversation> running_;  // owner of the operation in flight, if any
    // Tickets that left conversations made while the screen shown held them under a key of its
    // own, by the left conversation's key: shown again, that conversation still talks to its
    // ticket, even before its saved file says so.
    std::unordered_map<std::string, TicketInfo> ticketsTakenElsewhere_;
    bool runningCreatesTicket_ = false;
    std::uint64_t runs_ = 0;                 // numbers each start, so a stray second report is known
    RequestUiConfiguration config_;
    mutable std::once_flag queueMade_;
    mutable std::optional<platform::SerialQueue> requestDispatchQueue_;
    // The store's, holding it weakly.
    tivra::DispatchFunction dispatch_;
    tivra::GetState getState_;
};

} // namespace belvakit
