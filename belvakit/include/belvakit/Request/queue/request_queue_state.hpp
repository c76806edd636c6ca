#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/date.hpp"
#include "tivra/action.hpp"

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
    static RequestQueueState requesting(const RequestQueueState& returnTo);

    Case kind() const { return case_; }
    bool isRequesting() const { return case_ == Case::requesting; }
    // `ticketCreated`, or `requesting` that returns to it.
    const TicketInfo& ticket() const { return ticket_; }
    // `requesting` only.
    RequestQueueState returnState() const;

    bool operator==(const RequestQueueState& other) const = default;
    std::string description() const;

private:
    explicit RequestQueueState(Case value) : case_(value) {}

    // An operation in flight keeps the state it returns to here rather than in a nested value,
    // since nothing is ever in flight twice: no allocation per operation.
    Case case_;
    Case returnCase_ = Case::initial;
    TicketInfo ticket_;
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
