#include "fixtures.hpp"
#include "tivra/logger_middleware.hpp"

#include <gtest/gtest.h>

using namespace fixtures;
using namespace tivra;

namespace {

struct LoggedStore {
    std::vector<std::string> lines;
    std::shared_ptr<Store> store;

    explicit LoggedStore(LoggerMiddleware::Options options) {
        options.debugOnly = false;
        options.logger = [this](const std::string& line) { lines.push_back(line); };
        store = Tivra::createStore(counterReducer() + namesReducer(), std::make_shared<LoggerMiddleware>(options));
    }
};

} // namespace

TEST(LoggerMiddleware, PrintsTitleStatesActionAndClosingLineUnlessThePredicateSaysNo) {
    LoggedStore logged({.showTimestamp = false, .showDuration = false});
    logged.store->dispatch(Increment());

    ASSERT_EQ(logged.lines.size(), 5u);
    EXPECT_EQ(logged.lines[0], "┌───→ Action: Increment");
    EXPECT_EQ(logged.lines[1], R"(├─ Prev state ► State(["Counter": Counter, "Names": Names]))");
    EXPECT_EQ(logged.lines[2], "├─ Action     ► Increment");
    EXPECT_EQ(logged.lines[3].rfind("├─ Next state ► ", 0), 0u);
    EXPECT_EQ(logged.lines[4].rfind("└──", 0), 0u);
    EXPECT_EQ(logged.store->state().valueOfType<Counter>()->value, 1);

    // A false predicate logs nothing but lets the action through.
    LoggedStore silent({.predicate = [](const State&, const Action&) { return false; }});
    silent.store->dispatch(Increment());
    EXPECT_TRUE(silent.lines.empty());
    EXPECT_EQ(silent.store->state().valueOfType<Counter>()->value, 1);
}

TEST(LoggerMiddleware, TitleCarriesTimestampAndDurationWhenAsked) {
    LoggedStore logged({.showTimestamp = true, .showDuration = true});
    logged.store->dispatch(Increment());
    ASSERT_FALSE(logged.lines.empty());
    // "┌───→ Action: Increment @HH:mm:ss.SSS (in N µs)"
    const std::string& title = logged.lines[0];
    const std::string head = "┌───→ Action: Increment @";
    ASSERT_EQ(title.rfind(head, 0), 0u) << title;
    const std::string time = title.substr(head.size(), 12);
    EXPECT_TRUE(time[2] == ':' && time[5] == ':' && time[8] == '.') << time;
    EXPECT_EQ(title.substr(head.size() + 12, 5), " (in ");
    EXPECT_EQ(title.substr(title.size() - 5), " µs)");
}

TEST(LoggerMiddleware, TransformersFormatterAndLineLengthApply) {
    LoggedStore logged({.lineLength = 20,
                        .titleFormatter = [](const Action& action, auto, std::uint64_t) {
                            return "T:" + action.description();
                        },
                        .stateTransformer = [](const State& state) {
                            return std::any(std::to_string(state.valueOfType<Counter>()->value));
                        },
                        .actionTransformer = [](const Action&) { return std::any(42); }});
    logged.store->dispatch(Increment());
    ASSERT_EQ(logged.lines.size(), 5u);
    EXPECT_EQ(logged.lines[0], "T:Increment");
    EXPECT_EQ(logged.lines[1], "├─ Prev state ► \"0\"");
    EXPECT_EQ(logged.lines[2], "├─ Action     ► 42");
    EXPECT_EQ(logged.lines[3], "├─ Next state ► \"1\"");
    EXPECT_EQ(logged.lines[4], "└───────────────────");  // 20 characters wide
}
