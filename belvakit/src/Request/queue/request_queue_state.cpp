#include "belvakit/Request/queue/request_queue_state.hpp"

#include "belvakit/Request/conversation/actions.hpp"

#include <sstream>
#include <typeinfo>

namespace belvakit {

RequestQueueState RequestQueueState::ticketCreated(std::string remoteId, Date latestComment) {
    RequestQueueState state(Case::ticketCreated);
    state.ticket_ = {std::move(remoteId), latestComment};
    return state;
}

RequestQueueState RequestQueueState::requesting(const RequestQueueState& returnTo) {
    if (returnTo.isRequesting()) return returnTo;
    RequestQueueState state(Case::requesting);
    state.returnCase_ = returnTo.case_;
    state.ticket_ = returnTo.ticket_;
    return state;
}

RequestQueueState RequestQueueState::returnState() const {
    RequestQueueState state(returnCase_);
    state.ticket_ = ticket_;
    return state;
}

std::string RequestQueueState::description() const {
    switch (case_) {
    case Case::ticketCreated:
    {
        std::ostringstream out;
        out << "ticketCreated(" << ticket_.first << ", " << ticket_.second << ")";
        return out.str();
    }
    case Case::requesting:
        return "requesting(" + returnState().description() + ")";
    case Case::initial:
        return "initial";
    case Case::dirty:
        return "dirty";
    }
    return {};
}

std::optional<TicketInfo> ticketInfo(const RequestQueueState& state) {
    switch (state.kind()) {
    case RequestQueueState::Case::ticketCreated:
        return state.ticket();
    case RequestQueueState::Case::requesting:
        if (state.returnState().kind() == RequestQueueState::Case::ticketCreated) return state.ticket();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

RequestQueueState started(const RequestQueueState& state) {
    return state.isRequesting() ? state : RequestQueueState::requesting(state);
}

RequestQueueState reset(const RequestQueueState& state) {
    return state.isRequesting() ? RequestQueueState::dirty() : RequestQueueState::initial();
}

RequestQueueState reduce(const RequestQueueState& state, const tivra::Action& result) {
    // A result that arrives after a reset, or with nothing in flight, changes nothing.
    if (!state.isRequesting()) return state;
    const std::type_info& type = typeid(result);
    if (type == typeid(Actions::TicketCreated)) {
        const auto& created = static_cast<const Actions::TicketCreated&>(result);
        return RequestQueueState::ticketCreated(created.remoteRequestId, created.remoteCreatedAt);
    }
    if (type == typeid(Actions::CommentCreated)) {
        if (auto ticket = ticketInfo(state))
            return RequestQueueState::ticketCreated(ticket->first,
                                                    static_cast<const Actions::CommentCreated&>(result).remoteCreatedAt);
    }
    return state.returnState();
}

} // namespace belvakit
