#pragma once

#include "belvakit/date.hpp"
#include "tivra/action.hpp"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace belvakit {

// The remote ticket id and the date of its latest known comment.
using TicketInfo = std::pair<std::string, Date>;
// Receives the action that reports an operation's outcome.
using RequestBlock = std::function<void(const tivra::Action&)>;

// One network step of a conversation, run by the send queue. Every path of `execute` calls
// `requestBlock` exactly once: an operation that never does stalls the queue.
class RequestOperation {
public:
    virtual ~RequestOperation() = default;

    virtual const std::string& id() const = 0;
    const RequestBlock& requestBlock() const { return requestBlock_; }
    RequestBlock& requestBlock() { return requestBlock_; }
    void setRequestBlock(RequestBlock block) { requestBlock_ = std::move(block); }

    virtual void execute(std::optional<TicketInfo> ticket) = 0;

protected:
    // Hands the outcome over once; a missing block drops it.
    void finish(const tivra::Action& result) const {
        if (requestBlock_) requestBlock_(result);
    }

private:
    RequestBlock requestBlock_;
};

} // namespace belvakit
