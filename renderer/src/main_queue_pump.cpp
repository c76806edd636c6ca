#include "renderer/main_queue_pump.hpp"

#include "platform/main_queue.hpp"

namespace renderer {

MainQueuePump::MainQueuePump(std::chrono::milliseconds interval) {
    QObject::connect(&timer_, &QTimer::timeout, [this] { pump(); });
    timer_.start(interval);
}

MainQueuePump::~MainQueuePump() { timer_.stop(); }

std::size_t MainQueuePump::pump() {
    const std::size_t ran = platform::MainQueue::shared().runPending();
    if (ran > 0 && didRunWork_) didRunWork_();
    return ran;
}

} // namespace renderer
