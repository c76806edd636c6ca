#pragma once

#include "platform/scheduler.hpp"

#include <functional>

namespace sandbox {

// Hands an answer of the help desk over after `latency` of the scheduler's time: on the main
// queue, or on a worker thread, as a real provider's answers come.
void deliverAnswer(platform::Duration latency, bool onWorkerThread, std::function<void()> work);

} // namespace sandbox
