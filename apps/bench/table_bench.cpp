// `table_append`: one new message reduced into a conversation of 10,000 messages, rows
// recomputed. `table_merge`: 50 remote comments (half of them pairing with local rows) merged into
// it. Both against copying the 10,000 messages once, the least a reducer of value records does.
#include "harness.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "platform/calendar.hpp"

#include <string>
#include <vector>

namespace {

using namespace belvakit;

constexpr std::size_t conversationSize = 10'000;
constexpr std::size_t remoteCount = 50;
constexpr Date start = 1700000000;
constexpr Date step = 600;  // a message every ten minutes: about seventy days

std::string idOf(std::size_t i) {
    std::string text = std::to_string(i);
    return std::string(36 - text.size(), '0') + text;  // as long as a UUID text
}

Message messageAt(std::size_t i) {
    const Date at = start + static_cast<Date>(i) * step;
    if (i % 3 == 2) {
        AgentMessage message;
        message.id = idOf(i);
        message.body = "An agent's answer, long enough to leave the small-string buffer.";
        message.htmlBody = "<p>" + message.body + "</p>";
        message.createdAt = at;
        message.userID = 7;
        message.name = "Ada";
        message.avatarURL = "https://avatars.belva.example/7.png";
        return message;
    }
    UserMessage message;
    message.id = idOf(i);
    message.status = DeliveryStatus::delivered;
    message.body = "The user's question, long enough to leave the small-string buffer.";
    message.createdAt = at;
    return message;
}

RequestTableState conversation() {
    platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
    RequestTableState state;
    for (std::size_t i = 0; i < conversationSize; ++i) state.tableData.push_back(messageAt(i));
    state.systemMessage = "We answer within a day.";
    recompute(state);
    return state;
}

// The last 25 user texts come back under server ids, then 25 new agent answers.
Actions::MergeMessages remoteComments(RequestTableState& state) {
    Actions::MergeMessages merge;
    std::size_t paired = 0;
    for (std::size_t i = conversationSize; i-- > 0 && paired < remoteCount / 2;) {
        const auto* text = state.tableData[i].getIf<UserMessage>();
        if (!text) continue;
        const std::string remoteId = "remote-" + std::to_string(i);
        state.mapLocalToRemote[text->id] = remoteId;
        UserMessage remote = *text;
        remote.id = remoteId;
        merge.messages.insert(merge.messages.begin(), remote);
        ++paired;
    }
    for (std::size_t i = 0; i < remoteCount - paired; ++i) {
        Message answer = messageAt(conversationSize + 3 * i + 2);
        merge.messages.push_back(answer);
    }
    return merge;
}

void copyBaseline(benchmark::State& run) {
    const auto state = conversation();
    for (auto _ : run) {
        std::vector<Message> copy = state.tableData;
        benchmark::DoNotOptimize(copy.data());
    }
}

void append(benchmark::State& run) {
    const auto state = conversation();
    const RequestTableReducer reducer;
    Actions::NewMessage action;
    action.message = messageAt(conversationSize);
    for (auto _ : run) {
        auto next = reducer.reduce(state, action);
        benchmark::DoNotOptimize(next->cellItems.data());
    }
}

void merge(benchmark::State& run) {
    auto state = conversation();
    const auto action = remoteComments(state);
    const RequestTableReducer reducer;
    for (auto _ : run) {
        auto next = reducer.reduce(state, action);
        benchmark::DoNotOptimize(next->cellItems.data());
    }
}

std::vector<bench::Fact> facts() {
    auto state = conversation();
    const auto action = remoteComments(state);
    const auto merged = RequestTableReducer().reduce(state, action);
    return {{"table rows of 10,000 messages", static_cast<double>(state.cellItems.size()), "rows"},
            {"table messages after merging 50 comments", static_cast<double>(merged->tableData.size()), "messages"}};
}

} // namespace

namespace bench {

std::vector<Metric> tableMetrics() {
    return {
        {"table_append", 3, append, copyBaseline, facts},
        {"table_merge", 5, merge, copyBaseline, nullptr},
    };
}

} // namespace bench
