#include "harness.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/entry/request_ui.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "platform/serial_queue.hpp"
#include "platform/uuid.hpp"
#include "uikit/label.hpp"

#include <chrono>
#include <iostream>
#include <thread>

namespace monkey {

namespace {

// Every slice of the shared store back to its start, and a queue that knows no ticket: each run
// begins as a fresh process would.
void resetSharedStore() {
    const auto store = belvakit::sharedStore();
    store->dispatch(belvakit::RequestQueueActions::ResetQueue{});
    for (const char* key :
         {"InputFieldState", "CreateRequestState", "RequestTableState", "RequestContainerState", "RequestListState"}) {
        std::any initial = belvakit::initialSharedSlice(key);
        if (initial.has_value()) store->reset(std::move(initial), key);
    }
    store->dispatch(belvakit::Actions::ClearRequestList{});
}

std::shared_ptr<uikit::Button> hostButton(const std::string& title, const std::string& identifier,
                                          std::function<void()> action) {
    auto button = uikit::make<uikit::Button>(uikit::ButtonType::system);
    button->setTitle(title);
    button->setAccessibilityIdentifier(identifier);
    button->addTarget(uikit::ControlEvent::touchUpInside, std::move(action));
    return button;
}

} // namespace

void RecentLog::write(platform::LogLevel level, std::string_view message) {
    std::lock_guard lock(mutex_);
    lines_.push_back("[" + std::string(platform::toString(level)) + "] " + std::string(message.substr(0, 300)));
    if (lines_.size() > 60) lines_.pop_front();
    if (echo) std::cerr << lines_.back() << "\n";
}

std::vector<std::string> RecentLog::lines() const {
    std::lock_guard lock(mutex_);
    return {lines_.begin(), lines_.end()};
}

void HostRoot::viewDidLoad() {
    setTitle("Host");
    view()->setBackgroundColor(platform::Color::white());
    std::weak_ptr<HostRoot> weak = std::static_pointer_cast<HostRoot>(shared_from_this());
    auto call = [weak](auto member) {
        return [weak, member] {
            if (auto self = weak.lock(); self && (self.get()->*member)) (self.get()->*member)();
        };
    };
    ticketIdField = uikit::make<uikit::TextField>();
    ticketIdField->setAccessibilityIdentifier("hostTicketIdField");
    ticketIdField->setPlaceholder("Ticket id");
    rows_ = {hostButton("My tickets", "hostTickets", call(&HostRoot::openTickets)),
             hostButton("New request", "hostNewRequest", call(&HostRoot::openNewRequest)),
             hostButton("Help Center", "hostHelpCenter", call(&HostRoot::openHelpCenter)), ticketIdField,
             hostButton("Open ticket", "hostOpenTicket", [weak] {
                 if (auto self = weak.lock(); self && self->openTicket) self->openTicket(self->ticketIdField->text());
             })};
    for (const auto& row : rows_) view()->addSubview(row);
}

void HostRoot::viewWillLayoutSubviews() {
    const double width = view()->bounds().width();
    double y = safeAreaInsets().top + 20;
    for (const auto& row : rows_) {
        row->setFrame({20, y, std::max(0.0, width - 40), 44});
        y += 56;
    }
}

App::App(std::uint64_t seed, bool conversationsOn) {
    previousLog_ = platform::log::setSink(log);
    platform::seedUuids(seed);
    previousClock_ = platform::setWallClock(std::make_shared<VirtualWallClock>(time.scheduler()));
    resetSharedStore();
    desk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    core = desk->initializeCorvane(corvane::Identity::createAnonymous(endUser_, "ann@example.com"));
    belvakit::SupportUI::initialize(core);
    auto& settings = *desk->settings();
    settings.setConversationsEnabled(conversationsOn);
    settings.setAttachments(true, 1 << 20);
    settings.setSystemMessage("We answer within a day.");
    auto& tickets = *desk->tickets();
    tickets.setEndUser(endUser_, "ann@example.com");
    tickets.setLatencyRange(platform::Duration::zero(), platform::Duration::zero(), static_cast<unsigned>(seed));
    agentId = tickets.addAgent("Grace").userId;

    // Two tickets the user wrote before, one of them answered.
    for (const char* description : {"My order never arrived", "How do I change my address?"}) {
        tickets.createRequest({.requestDescription = description}, [](auto, auto) {});
        settle();
        advance(platform::seconds(30));
    }
    const auto requests = tickets.requests();
    if (!requests.empty()) tickets.addAgentComment(requests.front().requestId, agentId, "It left our warehouse today.");

    root->openTickets = [this] { showTickets(false); };
    root->openNewRequest = [this] { showNewRequest(true); };
    root->openHelpCenter = [this] { showHelpCenter(true); };
    root->openTicket = [this](const std::string& id) { showTicket(id, false); };
    navigation = std::make_shared<uikit::NavigationController>(root);
    window->makeKeyAndVisible();
    window->setRootViewController(navigation);
    layout();
    settle();
}

App::~App() {
    // Whatever a run left on its way ends before the next run starts: nothing of this one may reach it.
    heal();
    advance(platform::seconds(1));
    dismissAll();
    window->setRootViewController(nullptr);
    advance(platform::seconds(60));
    resetSharedStore();
    settle();
    dastrel::Support::reset();
    corvane::Corvane::reset();
    platform::setWallClock(previousClock_);
    platform::log::setSink(previousLog_);
}

void App::heal() {
    auto& tickets = *desk->tickets();
    tickets.setOffline(false);
    tickets.setUnauthorized(false);
    tickets.setLatencyRange(platform::Duration::zero(), platform::Duration::zero(), 1);
    tickets.failNext(0);
    tickets.setAutoReply(agentId, nullptr);
    auto& help = *desk->helpCenter();
    help.setOffline(false);
    help.setLatency(platform::Duration::zero());
    help.failNext(0);
    desk->settings()->setFailing(false);
}

bool App::settle() {
    // One handler of the main queue at a time, each after the other threads have gone quiet: what
    // they hand back then queues in the order the work was given, and a replay runs as the run did.
    auto& context = platform::MainQueue::shared().context();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (;;) {
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        while (platform::backgroundWorkInFlight() > 0) {
            // Past its patience, a thread may be waiting for the main queue itself.
            if (std::chrono::steady_clock::now() > patience) break;
            std::this_thread::sleep_for(std::chrono::microseconds(20));
        }
        if (context.stopped()) context.restart();
        if (context.poll_one() > 0) continue;
        if (platform::backgroundWorkInFlight() == 0) return true;
        if (std::chrono::steady_clock::now() > deadline) return false;
    }
}

bool App::advance(platform::Duration duration) {
    const platform::Duration stride = platform::milliseconds(50);
    bool quiet = settle();
    for (platform::Duration passed{}; passed < duration; passed += stride) {
        time.advance(std::min(stride, duration - passed));
        quiet = settle() && quiet;
    }
    layout();
    return quiet;
}

uikit::ViewController& App::top() const {
    // The latest screen laid over the window: presentations go on top of the tree in order.
    const auto& layers = window->subviews();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        if (auto* controller = (*layer)->viewController()) return *controller;
    return *navigation;
}

void App::show(const uikit::ViewController::Ptr& screen, bool present) {
    if (!screen) return;
    if (present) {
        top().presentViewController(std::make_shared<uikit::NavigationController>(screen), true);
    } else {
        navigation->pushViewController(screen, true);
    }
    layout();
}

void App::showTickets(bool present) { show(belvakit::RequestUi::buildRequestList(), present); }
void App::showNewRequest(bool present) { show(belvakit::RequestUi::buildRequestUi(), present); }
void App::showTicket(const std::string& id, bool present) { show(belvakit::RequestUi::buildRequestUi(id), present); }
void App::showHelpCenter(bool present) { show(belvakit::CRVHelpCenterUi::buildHelpCenterOverview(), present); }

void App::dismissTop(bool animated) {
    auto& shown = top();
    if (auto* presenting = shown.presentingViewController()) presenting->dismissViewController(animated);
    layout();
}

void App::dismissAll() {
    for (int guard = 0; guard < 50; ++guard) {
        auto& shown = top();
        auto* presenting = shown.presentingViewController();
        if (!presenting) break;
        presenting->dismissViewController(false);
        settle();
    }
    layout();
}

void App::popToRoot(bool animated) {
    navigation->popToRootViewController(animated);
    layout();
}

} // namespace monkey
