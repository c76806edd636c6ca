#include "belvakit/Request/queue/request_queue_middleware.hpp"

#include "belvakit/Request/queue/request_operations.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "dastrel/support.hpp"
#include "platform/clock.hpp"
#include "platform/uuid.hpp"

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

    if (tivra::actionAs<Q::ResetQueue>(action)) {
        requestDispatchQueue().sync([this] { queueState_ = reset(queueState_); });
    } else if (const auto* setId = tivra::actionAs<Q::SetRequestId>(action)) {
        if (setId->id) {
            const auto state = RequestQueueState::ticketCreated(*setId->id, platform::now());
            requestDispatchQueue().sync([this, &state] { queueState_ = state; });
        }
    } else if (const auto* setConfig = tivra::actionAs<Q::SetConfig>(action)) {
        config_ = setConfig->config;
    } else if (const auto* operations = tivra::actionAs<Q::DispatchOperations>(action)) {
        requestOperations_.insert(requestOperations_.end(), operations->operations.begin(), operations->operations.end());
        process();
    } else if (const auto* details = tivra::actionAs<Q::DispatchDetails>(action)) {
        for (auto& operation : operationsFor(*details)) requestOperations_.push_back(std::move(operation));
        process();
    }
    next(action);
}

std::vector<std::shared_ptr<RequestOperation>> RequestQueueMiddleWare::operationsFor(
    const RequestQueueActions::DispatchDetails& details) const {
    const auto state = queueState();
    if (ticketInfo(state)) {
        // The fetch goes first, so a comment sent after a long pause lands after what agents wrote.
        auto support = dastrel::Support::instance();
        return {std::make_shared<FetchNewCommentsOperation>(platform::uuidString(), nullptr,
                                                            support ? &support->requestStorage() : nullptr),
                std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments)};
    }
    // Whatever is in flight is the ticket's creation; this message will find the ticket.
    if (state.isRequesting())
        return {std::make_shared<CommentRequestOperation>(details.id, details.body, details.attachments)};
    return {std::make_shared<TicketRequestOperation>(details.id, details.body, details.attachments, config_)};
}

void RequestQueueMiddleWare::process() {
    bool requesting = false;
    requestDispatchQueue().sync([&] { requesting = queueState_.isRequesting(); });
    if (requestOperations_.empty()) {
        if (dispatch_) dispatch_(RequestQueueActions::QueueCompleted{});
        return;
    }
    if (requesting) return;

    auto operation = std::move(requestOperations_.front());
    requestOperations_.pop_front();
    std::optional<TicketInfo> ticket;
    requestDispatchQueue().sync([&] {
        queueState_ = started(queueState_);
        ticket = ticketInfo(queueState_);
    });
    operation->setRequestBlock([weak = weak_from_this()](const tivra::Action& result) {
        if (auto self = weak.lock()) self->complete(result);
    });
    operation->execute(std::move(ticket));
}

void RequestQueueMiddleWare::complete(const tivra::Action& result) {
    requestDispatchQueue().sync([&] { queueState_ = reduce(queueState_, result); });
    if (dispatch_) dispatch_(result);
    process();
}

} // namespace belvakit
