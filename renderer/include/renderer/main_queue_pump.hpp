#pragma once

#include <QTimer>

#include <chrono>
#include <cstddef>
#include <functional>

namespace renderer {

// Qt's event loop drives the kit's main queue: a timer runs whatever the main queue has ready,
// so the app's main-queue work and its scheduler's timers run while Qt runs. One per process,
// made on the main thread after the Qt application.
class MainQueuePump {
public:
    explicit MainQueuePump(std::chrono::milliseconds interval = std::chrono::milliseconds(5));
    ~MainQueuePump();
    MainQueuePump(const MainQueuePump&) = delete;
    MainQueuePump& operator=(const MainQueuePump&) = delete;

    // Told after a turn that ran work, so a window can show what changed.
    void setDidRunWork(std::function<void()> observer) { didRunWork_ = std::move(observer); }
    // Runs what is ready now; returns how many handlers ran.
    std::size_t pump();

private:
    QTimer timer_;
    std::function<void()> didRunWork_;
};

} // namespace renderer
