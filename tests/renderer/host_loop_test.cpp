#include "renderer/application.hpp"
#include "renderer/main_queue_pump.hpp"

#include "platform/main_queue.hpp"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

// Real time: Qt's loop is what runs the main queue here.
TEST(MainQueuePump, QtsLoopRunsTheMainQueueAndItsTimers) {
    renderer::MainQueuePump pump;
    int turnsWithWork = 0;
    pump.setDidRunWork([&] { ++turnsWithWork; });
    std::vector<std::string> ran;
    QEventLoop loop;
    auto& main = platform::MainQueue::shared();
    main.async([&] { ran.push_back("now"); });
    main.asyncAfter(platform::milliseconds(30), [&] {
        ran.push_back("later");
        loop.quit();
    });
    QTimer::singleShot(5000, &loop, [&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(ran, (std::vector<std::string>{"now", "later"}));
    EXPECT_GE(turnsWithWork, 2);
    EXPECT_EQ(pump.pump(), 0u) << "nothing is left";
}

TEST(MainQueuePump, ThereIsOneApplication) {
    EXPECT_TRUE(renderer::hasGuiApplication());
    int argc = 1;
    char name[] = "second";
    char* argv[] = {name, nullptr};
    EXPECT_EQ(renderer::startApplication(argc, argv), nullptr) << "the tests' own application is kept";
    EXPECT_NE(QCoreApplication::instance(), nullptr);
}

} // namespace
