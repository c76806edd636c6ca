#pragma once

#include "platform/clock.hpp"
#include "platform/scheduler.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/button.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/text_input.hpp"
#include "uikit/view_controller.hpp"
#include "uikit/window.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <memory>
#include <string>
#include <vector>

namespace monkey {

// Dates of the help desk and of saved files follow virtual time.
class VirtualWallClock final : public platform::WallClock {
public:
    explicit VirtualWallClock(platform::ManualScheduler& scheduler) : scheduler_(scheduler) {}
    double now() const override {
        return 1700000000.0 + std::chrono::duration<double>(scheduler_.now().time_since_epoch()).count();
    }

private:
    platform::ManualScheduler& scheduler_;
};

// Keeps the latest lines of the log, for a failure's report.
class RecentLog final : public platform::LogSink {
public:
    void write(platform::LogLevel level, std::string_view message) override;
    std::vector<std::string> lines() const;
    // Also writes each line to standard error.
    bool echo = false;

private:
    mutable std::mutex mutex_;
    std::deque<std::string> lines_;
};

// The first screen of a host application: its ways into the library, as buttons a user taps. The
// ticket id field takes whatever is typed into it.
class HostRoot final : public uikit::ViewController {
public:
    std::string_view className() const override { return "HostRoot"; }

    std::function<void()> openTickets;
    std::function<void()> openNewRequest;
    std::function<void(const std::string& id)> openTicket;
    std::function<void()> openHelpCenter;

    std::shared_ptr<uikit::TextField> ticketIdField;

    void viewDidLoad() override;
    void viewWillLayoutSubviews() override;

private:
    std::vector<std::shared_ptr<uikit::View>> rows_;
};

// One life of the host on the embedded help desk, in virtual time: the core object, the support
// library, a phone window with the host's navigation stack over `HostRoot`.
class App {
public:
    App(std::uint64_t seed, bool conversationsOn);
    ~App();
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    // Runs the main queue, and waits for the other threads, until nothing is left to run now.
    // False when work on another thread never finished.
    bool settle();
    // Lets `duration` of virtual time pass in small strides, settling at each.
    bool advance(platform::Duration duration);
    // Every fault of the help desk switched off.
    void heal();
    void layout() { window->layoutTree(); }

    // The screen on top, as deep as presentations go.
    uikit::ViewController& top() const;

    // The host's ways in: pushed on its navigation stack, or presented in a navigation of their own.
    void show(const uikit::ViewController::Ptr& screen, bool present);
    void showTickets(bool present);
    void showNewRequest(bool present);
    void showTicket(const std::string& id, bool present);
    void showHelpCenter(bool present);
    // What a host does when it takes its screens back.
    void dismissTop(bool animated);
    void dismissAll();
    void popToRoot(bool animated);

    const std::string& endUserName() const { return endUser_; }

    testing_support::VirtualTime time;
    std::shared_ptr<RecentLog> log = std::make_shared<RecentLog>();
    testing_support::TemporaryDirectory directory;
    std::shared_ptr<sandbox::HelpDesk> desk;
    std::shared_ptr<corvane::Corvane> core;
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::shared_ptr<HostRoot> root = std::make_shared<HostRoot>();
    std::shared_ptr<uikit::NavigationController> navigation;
    std::int64_t agentId = 0;

private:
    std::shared_ptr<platform::WallClock> previousClock_;
    std::shared_ptr<platform::LogSink> previousLog_;
    std::string endUser_ = "Ann";
};

} // namespace monkey
