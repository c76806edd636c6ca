#include "belvakit/Request/queue/request_queue_middleware.hpp"

#include "belvakit/Request/queue/request_operations.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "platform/clock.hpp"
#include "platform/main_queue.hpp"

#include <typeinfo>

namespace belvakit {

std::shared_ptr<RequestQueueMiddleWare> RequestQueueMiddleWare::make(
    std::deque<std::shared_ptr<RequestOperation>> requestOperations, RequestQueueState queueState,
    RequestUiConfiguration config) {
    return std::shared_ptr<RequestQueueMiddleWare>(
        new RequestQueueMiddleWare(std::move(requestOperations), std::move(queueState), std::move(config)));
}

RequestQueueMiddleWare::RequestQueueMiddleWare(std::deque<std::shared_ptr<RequestOperation>> requestOperations,
                                               RequestQueueState queueState, RequestUiConfiguration config)
    : requestOperations_(std::move(requestOperations)), queueState_(std::move(queueState)), config_(std::move(config)) {}

const platform::SerialQueue& RequestQueueMiddleWare::requestDispatchQueue() const {
    std::call_once(queueMade_, [this] { requestDispatchQueue_.emplace("RequestQueue"); });
    return *requestDispatchQueue_;
}

RequestQueueState RequestQueueMiddleWare::queueState() const {
    std::optional<RequestQueueState> state;
    requestDispatchQueue().sync([&] { state = queueState_; });
    return *state;
}

void RequestQueueMiddleWare::onAction(const tivra::Action& action, const tivra::GetState&,
                                      const tivra::DispatchFunction& dispatch, const tivra::DispatchFunction& next) {
    namespace Q = RequestQueueActions;
    if (!dispatch_) dispatch_ = dispatch;

    // Every action of the store passes here; one type lookup keeps that cheap.
    const std::type_info& type = typeid(action);
    if (type == typeid(Q::ResetQueue)) {
        requestDispatchQueue().sync([this] { queueState_ = reset(queueState_); });
    } else if (type == typeid(Q::SetRequestId)) {
        if (const auto& id = static_cast<const Q::SetRequestId&>(action).id) {
            const auto state = RequestQueueState::ticketCreated(*id, platform::now());
            requestDispatchQueue().sync([this, &state] { queueState_ = state; });
        }
    } else if (type == typeid(Q::SetConfig)) {
        config_ = static_cast<const Q::SetConfig&>(action).config;
    } else if (type == typeid(Q::DispatchOperations)) {
        const auto& operations = static_cast<const Q::DispatchOperations&>(action).operations;
        requestOperations_.insert(requestOperations_.end(), operations.begin(), operations.end());
        process();
    } else if (type == typeid(Q::DispatchDetails)) {
        enqueueOperationsFor(static_cast<const Q::DispatchDetails&>(action));
        process();
    }
    next(action);
}

void RequestQueueMiddleWare::enqueueOperationsFor(const RequestQueueActions::DispatchDetails& details) {
    // One capture keeps the block small enough to need no allocation.
    struct {
        bool hasTicket = false;
        bool requesting = false;
    } seen;
    requestDispatchQueue().sync([this, &seen] {
        seen.hasTicket = ticketInfo(queueState_).has_value();
        seen.requesting = queueState_.isRequesting();
    });
    if (seen.hasTicket) {
        // The fetch goes first, so a comment sent after a long pause lands after what agents wrote.
        requestOperations_.push_back(std::make_shared<FetchNewCommentsOperation>());
        requestOperations_.push_back(
            std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments));
    } else if (seen.requesting) {
        // Whatever is in flight is the ticket's creation; this message will find the ticket.
        requestOperations_.push_back(
            std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments));
    } else {
        requestOperations_.push_back(
            std::make_shared<TicketRequestOperation>(details.id, details.body, details.attachments, config_));
    }
}

void RequestQueueMiddleWare::process() {
    if (requestOperations_.empty()) {
        if (dispatch_) dispatch_(RequestQueueActions::QueueCompleted{});
        return;
    }
    // The waiting list changes only on this thread, so reading the state and marking it as in
    // flight can share one visit to the queue.
    struct {
        bool requesting = false;
        std::optional<TicketInfo> ticket;
    } start;
    requestDispatchQueue().sync([this, &start] {
        start.requesting = queueState_.isRequesting();
        if (start.requesting) return;
        queueState_ = started(queueState_);
        start.ticket = ticketInfo(queueState_);
    });
    if (start.requesting) return;

    auto operation = std::move(requestOperations_.front());
    requestOperations_.pop_front();
    // A provider may answer on any thread; the waiting list belongs to the main one.
    operation->setRequestBlock([weak = weak_from_this()](const tivra::Action& result) {
        platform::MainQueue::shared().sync([&] {
            if (auto self = weak.lock()) self->complete(result);
        });
    });
    operation->execute(std::move(start.ticket));
}

void RequestQueueMiddleWare::complete(const tivra::Action& result) {
    requestDispatchQueue().sync([this, &result] { queueState_ = reduce(queueState_, result); });
    if (dispatch_) dispatch_(result);
    process();
}

} // namespace belvakit
