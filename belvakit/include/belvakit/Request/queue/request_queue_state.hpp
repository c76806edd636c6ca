#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/date.hpp"
#include "tivra/action.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// Where the send queue of a conversation stands.
class RequestQueueState {
public:
    enum class Case { ticketCreated, requesting, initial, dirty };

    static RequestQueueState initial() { return RequestQueueState(Case::initial); }
    static RequestQueueState dirty() { return RequestQueueState(Case::dirty); }
    static RequestQueueState ticketCreated(std::string remoteId, Date latestComment);
    // An operation is in flight; `returnTo` is the state it left.
    static RequestQueueState requesting(RequestQueueState returnTo);

    Case kind() const { return case_; }
    bool isRequesting() const { return case_ == Case::requesting; }
    // `ticketCreated` only.
    const TicketInfo& ticket() const { return ticket_; }
    // `requesting` only.
    const RequestQueueState& returnState() const { return *returnTo_; }

    bool operator==(const RequestQueueState& other) const;
    std::string description() const;

private:
    explicit RequestQueueState(Case value) : case_(value) {}

    Case case_;
    TicketInfo ticket_;
    std::shared_ptr<const RequestQueueState> returnTo_;
};

// The recorded ticket, looking through an operation in flight.
std::optional<TicketInfo> ticketInfo(const RequestQueueState& state);

// The state once an operation starts.
RequestQueueState started(const RequestQueueState& state);
// The state after `ResetQueue`.
RequestQueueState reset(const RequestQueueState& state);
// The state after an operation reported `result`.
RequestQueueState reduce(const RequestQueueState& state, const tivra::Action& result);

} // namespace belvakit
