#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/Request/queue/request_queue_state.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "platform/serial_queue.hpp"
#include "tivra/middleware.hpp"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace belvakit {

namespace RequestQueueActions {
struct DispatchDetails;
}

// Runs the network operations of a conversation one at a time, in the order asked for, each
// knowing the ticket that the ones before it created. Results go back through the store.
class RequestQueueMiddleWare final : public tivra::Middleware,
                                     public std::enable_shared_from_this<RequestQueueMiddleWare> {
public:
    static std::shared_ptr<RequestQueueMiddleWare> make(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                                                        RequestQueueState queueState, RequestUiConfiguration config);

    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;

    // Starts the next waiting operation unless one is in flight; reports `QueueCompleted` when
    // none is waiting.
    void process();

    RequestQueueState queueState() const;
    const std::deque<std::shared_ptr<RequestOperation>>& requestOperations() const { return requestOperations_; }
    const RequestUiConfiguration& config() const { return config_; }

private:
    RequestQueueMiddleWare(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                           RequestQueueState queueState, RequestUiConfiguration config);

    void enqueueOperationsFor(const RequestQueueActions::DispatchDetails& details);
    void complete(const tivra::Action& result);
    const platform::SerialQueue& requestDispatchQueue() const;

    std::deque<std::shared_ptr<RequestOperation>> requestOperations_;
    RequestQueueState queueState_;  // touched on requestDispatchQueue only
    RequestUiConfiguration config_;
    mutable std::once_flag queueMade_;
    mutable std::optional<platform::SerialQueue> requestDispatchQueue_;
    tivra::DispatchFunction dispatch_;  // the store's, holding it weakly
};

} // namespace belvakit
