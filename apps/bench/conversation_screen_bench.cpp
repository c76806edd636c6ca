// The conversation screen's figures.
// `table_diff`: the update between two states of a 10,000-row conversation that differ in 50 rows
// (changed, arrived and gone), against building the two id-to-row hash maps of its rows.
// `conversation_open`: from the 10,000-message file on disk to the screen laid out with its visible
// cells configured, against `conversation_load` of the same file.
// `conversation_memory`: the resident bytes that the open conversation adds, against the file's size.
#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/diff_handler.hpp"
#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "conversation_fixture.hpp"
#include "corvane/corvane.hpp"
#include "harness.hpp"
#include "platform/files.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <boost/container_hash/hash.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <random>

namespace {

using namespace belvakit;

class QuietLog final : public platform::LogSink {
public:
    void write(platform::LogLevel, std::string_view) override {}
};

// The rows of the saved conversation, and the same rows after 50 changes: 17 changed, 17 arrived
// (some in the middle, as a merge brings them, most at the end), 16 gone.
struct DiffFixture {
    std::vector<CellItem> oldRows;
    std::vector<CellItem> newRows;

    DiffFixture() {
        const auto data = platform::readFile(bench::savedConversation().file);
        RequestTableState state;
        loadConversation(*data, MessageList::currentVersion, [&](auto messages, auto, auto, bool) { state.tableData = std::move(messages); });
        recompute(state);
        oldRows = state.cellItems;
        newRows = oldRows;
        std::mt19937 random(4711);
        const auto at = [&](std::size_t size) { return std::uniform_int_distribution<std::size_t>(0, size - 1)(random); };
        for (int i = 0; i < 17; ++i) {
            auto& row = newRows[at(newRows.size())];
            if (auto* message = std::get_if<Message>(&row)) {
                if (!setStatus(*message, status(*message) == DeliveryStatus::failed ? DeliveryStatus::delivered
                                                                                    : DeliveryStatus::failed))
                    setIsEndOfGroup(*message, !isEndOfGroup(*message));
            } else {
                --i;
            }
        }
        for (int i = 0; i < 16; ++i) newRows.erase(newRows.begin() + static_cast<std::ptrdiff_t>(at(newRows.size())));
        for (int i = 0; i < 17; ++i) {
            AgentMessage answer{"answer-" + std::to_string(i), "We are on it.", std::nullopt, 1800000000.0 + i, 901,
                                "Grace Hopper", std::nullopt};
            const std::size_t place = i < 5 ? at(newRows.size()) : newRows.size();
            newRows.insert(newRows.begin() + static_cast<std::ptrdiff_t>(place), Message(std::move(answer), true));
        }
    }
};

const DiffFixture& diffFixture() {
    static const DiffFixture shared;
    return shared;
}

void diffMeasured(benchmark::State& state) {
    const auto& f = diffFixture();
    for (auto _ : state) {
        auto diff = DiffHandler::diff(f.oldRows, f.newRows);
        auto action = DiffHandler::action(diff, f.newRows);
        benchmark::DoNotOptimize(diff);
        benchmark::DoNotOptimize(action);
    }
}

void diffBaseline(benchmark::State& state) {
    const auto& f = diffFixture();
    using Index = boost::unordered_flat_map<std::string_view, int, boost::hash<std::string_view>>;
    for (auto _ : state) {
        Index before;
        Index after;
        before.reserve(f.oldRows.size());
        after.reserve(f.newRows.size());
        for (std::size_t row = 0; row < f.oldRows.size(); ++row) before.emplace(id(f.oldRows[row]), static_cast<int>(row));
        for (std::size_t row = 0; row < f.newRows.size(); ++row) after.emplace(id(f.newRows[row]), static_cast<int>(row));
        benchmark::DoNotOptimize(before);
        benchmark::DoNotOptimize(after);
    }
}

// The screen on the saved conversation, in a phone window, on virtual time that never moves, so
// the progress bar's steps and toasts wait; the cache's own thread reads the file.
struct OpenScreen {
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::shared_ptr<RequestController> screen;
    std::size_t visibleCells = 0;
    std::size_t cellsMade = 0;  // on show and waiting for reuse
    int rows = 0;

    OpenScreen() {
        const auto& saved = bench::savedConversation();
        screen = RequestController::make(RequestUiConfiguration{}, saved.key, nullptr, nullptr, true, 1 << 20, saved.cache);
        window->setRootViewController(std::make_shared<uikit::NavigationController>(screen));
        window->layoutTree();
        auto& main = platform::MainQueue::shared();
        main.runUntil([&] { return screen->requestTable()->tableView()->numberOfRowsInSection(0) > 0; },
                      platform::seconds(30));
        window->layoutTree();
        const auto& table = *screen->requestTable()->tableView();
        visibleCells = screen->requestTable()->tableView()->visibleCells().size();
        cellsMade = visibleCells + table.cellsInPool();
        rows = screen->requestTable()->tableView()->numberOfRowsInSection(0);
    }

    ~OpenScreen() {
        window->setRootViewController(nullptr);
        screen.reset();
        // What the screen left to the main queue, and the slices it filled, go with it.
        auto& main = platform::MainQueue::shared();
        while (main.runPending() > 0) {
        }
        sharedStore()->dispatch(Actions::InitializeRequestControllerState{});
    }
};

// Virtual time that never moves, for as long as a figure is taken: the screens' progress steps
// and toasts wait instead of running.
class StillTime {
public:
    StillTime() : previous_(platform::MainQueue::shared().setScheduler(std::make_shared<platform::ManualScheduler>())) {
        platform::log::setSink(std::make_shared<QuietLog>());
        const auto& saved = bench::savedConversation();
        // A core with a session store, as a host has: the id stores remember from one open to the next.
        if (!corvane::Corvane::instance()) {
            corvane::Corvane::Configuration configuration;
            configuration.storeModule = {saved.cache->path().parent_path(), std::make_shared<corvane::SessionStore>()};
            corvane::Corvane::initialize(std::move(configuration));
            ownsCore_ = true;
        }
    }
    ~StillTime() {
        if (ownsCore_) corvane::Corvane::reset();
        platform::MainQueue::shared().setScheduler(previous_);
    }
    StillTime(const StillTime&) = delete;
    StillTime& operator=(const StillTime&) = delete;

private:
    std::shared_ptr<platform::Scheduler> previous_;
    bool ownsCore_ = false;
};

void openMeasured(benchmark::State& state) {
    const StillTime still;
    std::size_t cells = 0;
    for (auto _ : state) {
        auto open = std::make_unique<OpenScreen>();
        cells = open->visibleCells;
        state.PauseTiming();
        open.reset();
        state.ResumeTiming();
    }
    state.counters["visible cells"] = static_cast<double>(cells);
}

void openBaseline(benchmark::State& state) {
    const StillTime still;
    for (auto _ : state) benchmark::DoNotOptimize(bench::loadSavedConversation());
}

double residentBytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void memoryMeasured(benchmark::State& state) {
    const StillTime still;
    for (auto _ : state) {
        malloc_trim(0);
        const double before = residentBytes();
        auto open = std::make_unique<OpenScreen>();
        malloc_trim(0);
        const double added = residentBytes() - before;
        open.reset();
        // Bytes reported as seconds: the harness reads them back as the figure.
        state.SetIterationTime(std::max(added, 1.0) * 1e-9);
    }
}

void memoryBaseline(benchmark::State& state) {
    const double size = static_cast<double>(bench::savedConversation().fileSize);
    for (auto _ : state) state.SetIterationTime(size * 1e-9);
}

std::vector<bench::Fact> facts() {
    const StillTime still;
    const auto& f = diffFixture();
    OpenScreen open;
    return {
        {"conversation rows diffed", static_cast<double>(f.oldRows.size()), "rows"},
        {"cells made for the open conversation", static_cast<double>(open.cellsMade), "cells"},
        {"rows of the open conversation", static_cast<double>(open.rows), "rows"},
    };
}

} // namespace

std::vector<bench::Metric> bench::conversationScreenMetrics() {
    return {
        {"table_diff", 3.0, diffMeasured, diffBaseline, nullptr},
        {"conversation_open", 1.5, openMeasured, openBaseline, facts},
        {"conversation_memory", 2.0, memoryMeasured, memoryBaseline, nullptr, true, "B"},
    };
}
