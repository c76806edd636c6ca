#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/attachments/upload.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "tivra/action.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// What screens ask of the send queue; they never call the provider to send.
namespace belvakit::RequestQueueActions {

// Send a message.
struct DispatchDetails final : tivra::Action {
    std::string id;
    std::string body;
    std::vector<Upload::Attachment> attachments;
    // The id the screen keeps its conversation under, when it knows one: a conversation shown
    // again before its saved copy is read is known by it alone.
    std::optional<std::string> conversation;
};

// A send whose details are still being prepared: it belongs to the conversation shown now, even if
// another is shown by the time its details come.
struct SendComing final : tivra::Action {
    std::string id;
};

// Run these operations after the waiting ones.
struct DispatchOperations final : tivra::Action {
    std::vector<std::shared_ptr<RequestOperation>> operations;
};

struct SetConfig final : tivra::Action {
    RequestUiConfiguration config;
};

// A ticket is already known.
struct SetRequestId final : tivra::Action {
    std::optional<std::string> id;
};

struct ResetQueue final : tivra::Action {};

// The outcome of a send whose conversation no screen shows any more. It is kept with that
// conversation, not given to the one shown; this tells whoever waits on the send.
struct SendOutcomeKept final : tivra::Action {
    std::string id;
    bool delivered = false;
};

// The send queue has run dry.
struct QueueCompleted final : tivra::Action {};

} // namespace belvakit::RequestQueueActions
