#include "fixtures.hpp"

#include <gtest/gtest.h>

using namespace fixtures;
using namespace tivra;

namespace {

std::shared_ptr<BlockReducer<int>> constant(std::string key, int initial, std::optional<int> result,
                                            std::vector<std::string>* calls = nullptr) {
    return std::make_shared<BlockReducer<int>>(initial, key, [=](const int&, const Action&) {
        if (calls) calls->push_back(key);
        return result;
    });
}

CombinedReducer::Result resultOf(const std::optional<std::any>& reduced) {
    return *std::any_cast<CombinedReducer::Result>(&*reduced);
}

} // namespace

TEST(Reducers, PlusKeepsTheFirstOfEqualKeysAndFlattensNesting) {
    auto a = constant("a", 1, 10);
    auto duplicate = constant("a", 99, 99);
    auto kept = a + duplicate;
    EXPECT_EQ(kept->states().size(), 1u);
    EXPECT_EQ(std::any_cast<int>(kept->states().at("a")), 1);

    auto four = (constant("a", 1, 1) + constant("b", 2, 2)) + (constant("c", 3, 3) + constant("d", 4, 4));
    EXPECT_EQ(four->reducers().size(), 4u);
    for (const auto& [key, state] : four->states()) EXPECT_EQ(state.type(), typeid(int)) << key;
}

TEST(Reducers, CombinedReduceSkipsMissingSlicesAndListsOnlyChangedKeys) {
    std::vector<std::string> calls;
    auto combined = constant("changes", 0, 5, &calls) + constant("silent", 0, std::nullopt, &calls) +
                    constant("missing", 0, 7, &calls);
    State state{{"changes", 1}, {"silent", 2}};

    const auto [next, changed] = resultOf(combined->reduce(std::any(state), Ignored()));

    EXPECT_EQ(changed, std::vector<std::string>{"changes"});
    EXPECT_EQ(*next.value<int>("changes"), 5);
    EXPECT_EQ(*next.value<int>("silent"), 2);
    EXPECT_FALSE(next.contains("missing"));  // reducing never creates a slice
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "missing"), 0);
}

TEST(Reducers, ASliceOfTheWrongTypePassesThroughButCountsAsChanged) {
    auto store = Tivra::createStore(counterReducer() + namesReducer(), passOn());
    store->reset(std::any(std::string("not a counter")), "Counter");
    int notified = 0;
    store->addListener<std::string>(std::string("Counter"), nullptr, [&](const std::string&) { ++notified; });
    store->dispatch(Increment());
    EXPECT_EQ(*store->state().value<std::string>("Counter"), "not a counter");
    EXPECT_EQ(notified, 1);
}

TEST(Reducers, StoreFactoriesTakeTheInitialStateFromTheRightPlace) {
    auto combined = Tivra::createStore(counterReducer() + namesReducer(), passOn());
    EXPECT_EQ(combined->state().keys(), (std::vector<std::string>{"Counter", "Names"}));

    auto single = Tivra::createStore(counterReducer(), passOn());
    EXPECT_EQ(single->state().keys(), std::vector<std::string>{"Counter"});

    auto fromMap = Tivra::createStore(counterReducer(), State::Dictionary{{"Custom", 1}}, passOn());
    EXPECT_EQ(fromMap->state().keys(), std::vector<std::string>{"Custom"});

    auto fromValue = Tivra::createStore(counterReducer(), Counter{9}, passOn());
    EXPECT_EQ(fromValue->state().valueOfType<Counter>()->value, 9);
    fromValue->dispatch(Increment());
    EXPECT_EQ(fromValue->state().valueOfType<Counter>()->value, 10);

    auto noMiddleware = Tivra::createStore(counterReducer());
    noMiddleware->dispatch(Increment());
    EXPECT_EQ(noMiddleware->state().valueOfType<Counter>()->value, 1);
}

TEST(StateValue, CopiesShareUntilWrittenAndLookupsCheckTheType) {
    State original{{"Counter", Counter{1}}};
    State copy = original;
    copy.set("Counter", Counter{2});
    copy.set("Extra", 3);
    EXPECT_EQ(original.valueOfType<Counter>()->value, 1);
    EXPECT_EQ(copy.valueOfType<Counter>()->value, 2);
    EXPECT_EQ(copy.value<std::string>("Extra"), nullptr);
    copy.set("Extra", std::any());  // setting nothing removes the key
    EXPECT_FALSE(copy.contains("Extra"));
    EXPECT_EQ(original.count(), 1u);
}

namespace {
// Answers every action with an empty value, which removes its slice.
class Vanishing final : public AnyReducer {
public:
    std::vector<ReducerEntry> entries() const override { return {{"b", std::any(2), erased()}}; }
    std::optional<std::any> reduceErased(const std::any&, const Action&) const override { return std::any(); }
    ReducingFunction erased() const override {
        return [this](const std::any& state, const Action& action) { return reduceErased(state, action); };
    }
};
} // namespace

TEST(Reducers, PlusNeverThrowsWhoeverOwnsTheOperandsAndANullAddsNothing) {
    // Owned by the stack, not by a shared pointer.
    BlockReducer<int> x(1, "x", [](const int& value, const Action&) { return std::optional(value + 1); });
    BlockReducer<int> y(2, "y", [](const int&, const Action&) { return std::optional<int>(); });
    std::shared_ptr<CombinedReducer> both;
    ASSERT_NO_THROW(both = x + y);
    ASSERT_NO_THROW(both = both + std::shared_ptr<BlockReducer<int>>());
    const auto [next, changed] = resultOf(both->reduce(std::any(State{{"x", 1}, {"y", 2}}), Ignored()));
    EXPECT_EQ(*next.value<int>("x"), 2);
    EXPECT_EQ(changed, std::vector<std::string>{"x"});

    std::vector<std::string> journal;
    const auto logged = recording(journal, "m");
    EXPECT_EQ(logged + std::shared_ptr<Middleware>(), logged);
    EXPECT_EQ(std::shared_ptr<Middleware>() + logged, logged);
    EXPECT_EQ(std::shared_ptr<Middleware>() + std::shared_ptr<Middleware>(), nullptr);
}

TEST(Reducers, AnEmptyAnswerRemovesItsSliceAndLaterSlicesStillReachTheirListeners) {
    Vanishing vanishing;
    auto store = Tivra::createStore((*constant("a", 0, 10) + vanishing) + constant("c", 0, 30), passOn());
    std::vector<int> heardA;
    std::vector<int> heardC;
    store->addListener<int>(std::string("a"), nullptr, [&](const int& value) { heardA.push_back(value); });
    store->addListener<int>(std::string("c"), nullptr, [&](const int& value) { heardC.push_back(value); });
    store->dispatch(Ignored());
    EXPECT_EQ(store->state().keys(), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(*store->state().value<int>("c"), 30);
    EXPECT_EQ(heardA, std::vector<int>{10});
    EXPECT_EQ(heardC, std::vector<int>{30});
    store->dispatch(Ignored());
    EXPECT_EQ(heardC, (std::vector<int>{30, 30}));
}

TEST(StoreResets, ADynamicValueGoesUnderTheKeyOfTheTypeItHolds) {
    auto store = Tivra::createStore(counterReducer() + namesReducer(), passOn());
    store->reset(std::any(Counter{5}));
    EXPECT_EQ(store->state().valueOfType<Counter>()->value, 5);
    EXPECT_EQ(store->state().keys(), (std::vector<std::string>{"Counter", "Names"}));
    store->reset(std::any());
    EXPECT_EQ(store->state().keys(), (std::vector<std::string>{"Counter", "Names"}));
}
