#pragma once

#include "tivra/action.hpp"

namespace belvakit::RequestQueueActions {

// The send queue has run dry.
struct QueueCompleted final : tivra::Action {};

} // namespace belvakit::RequestQueueActions
