// The support engine's dialog on the embedded help desk, as a messaging screen would show it.
#include "engine_dialog.hpp"

#include "belvakit/engine/support_engine.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"
#include "sandbox/help_desk.hpp"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>

namespace belvademo {

namespace {

using Clock = std::chrono::steady_clock;

// The screen's side: prints each update as it comes and remembers what the user can act on.
class Screen {
public:
    explicit Screen(Clock::time_point start) : start_(start) {}

    void show(const quorvel::Update& update) {
        std::visit([this](const auto& typed) { print(typed); }, update.value);
    }
    void say(const std::string& text) { line("you type: " + text); }
    void tap(const std::string& text) { line("you tap: " + text); }

    // Bot turns shown so far.
    int turns() const { return turns_; }
    const std::optional<quorvel::Option>& lastOption() const { return lastOption_; }

private:
    void line(const std::string& text) const {
        const auto elapsed = std::chrono::duration<double>(Clock::now() - start_).count();
        std::printf("[%5.1f s] %s\n", elapsed, text.c_str());
        std::fflush(stdout);
    }
    void print(const quorvel::Update::AppendMessagingItems& append) {
        for (const auto& item : append.items) {
            if (const auto* options = std::get_if<quorvel::OptionsResponse>(&item); options && !options->options.empty())
                lastOption_ = options->options.front();
            line("  " + quorvel::describe(item));
        }
    }
    void print(const quorvel::Update::UpdateMessagingItem& change) { line("  row now " + quorvel::describe(change.item)); }
    void print(const quorvel::Update::ShowTyping& typing) {
        line("  (" + typing.agent.agentName + " is typing...)");
    }
    void print(const quorvel::Update::HideTyping&) {
        ++turns_;
        line("  (typing ends)");
    }
    void print(const quorvel::Update::UpdateInputFieldState& input) {
        std::string text = input.state.enabled ? "input open" : "input closed";
        if (input.state.endUserHint) text += ", hint \"" + *input.state.endUserHint + "\"";
        line("  [" + text + "]");
    }
    void print(const quorvel::Update::ShowMenu& menu) { line(menu.show ? "  [menu shown]" : "  [menu hidden]"); }

    Clock::time_point start_;
    int turns_ = 0;
    std::optional<quorvel::Option> lastOption_;
};

// Runs the main loop until the bot has finished its next turn.
bool waitForTurn(const Screen& screen) {
    const int before = screen.turns();
    const bool reached =
        platform::MainQueue::shared().runUntil([&] { return screen.turns() > before; }, platform::seconds(10));
    if (!reached) std::cerr << "The dialog stalled.\n";
    return reached;
}

} // namespace

int runEngineDialog() {
    const auto storage = std::filesystem::temp_directory_path() / ("belva-demo-engine-" + platform::uuidString());
    auto helpDesk = sandbox::HelpDesk::make({.storageDirectory = storage});
    helpDesk->conversationsSettings()->setEnabled(false);
    // An anonymous user without an email, so the bot has to ask for one.
    belvakit::SupportUI::initialize(helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Demo User")));

    auto made = belvakit::SupportEngine::engine();
    if (!std::holds_alternative<std::shared_ptr<belvakit::SupportEngine>>(made)) {
        std::cerr << "The support engine could not be made: support is not initialized.\n";
        return 1;
    }
    auto engine = std::get<std::shared_ptr<belvakit::SupportEngine>>(made);
    Screen screen(Clock::now());
    auto token = engine->observeUpdates([&screen](const quorvel::Update& update) { screen.show(update); });
    const auto submit = [&](const std::string& text) {
        screen.say(text);
        engine->onEvent({quorvel::Event::MessageSubmitted{text}});
    };

    std::cout << "Support engine dialog on the embedded help desk (conversations off, no email on file)\n";
    engine->start(quorvel::QuorvelAPI(quorvel::ConversationLog(), {"bot", "Bela", true, std::nullopt}, {}));
    if (!waitForTurn(screen)) return 1;

    submit("My parcel arrived damaged.");
    if (!waitForTurn(screen)) return 1;
    submit("demo-at-example");
    if (!waitForTurn(screen)) return 1;

    // The help desk fails the first attempt, so the retry option shows.
    helpDesk->tickets()->failNext(1);
    submit("demo@example.com");
    if (!waitForTurn(screen) || !screen.lastOption()) return 1;
    const auto retry = *screen.lastOption();
    screen.tap(retry.text);
    engine->onEvent({quorvel::Event::ResponseOptionClicked{retry.id, retry.text}});
    if (!waitForTurn(screen)) return 1;

    token.cancel();
    for (const auto& request : helpDesk->tickets()->requests())
        std::cout << "Ticket " << request.requestId << " on the help desk: \"" << request.requestDescription << "\"\n";
    std::error_code ignored;
    std::filesystem::remove_all(storage, ignored);
    return 0;
}

} // namespace belvademo
