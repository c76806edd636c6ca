#include "fixtures.hpp"

#include <gtest/gtest.h>

using namespace fixtures;
using namespace tivra;

namespace {

struct Ping final : AsyncAction {
    std::vector<std::string>* journal;
    explicit Ping(std::vector<std::string>* j) : journal(j) {}
    void execute(const GetState& getState, const DispatchFunction& dispatch) const override {
        journal->push_back("execute sees " + std::to_string(getState().valueOfType<Counter>()->value));
        dispatch(Increment());
    }
};

std::shared_ptr<Store> storeWith(std::shared_ptr<Middleware> chain) {
    return Tivra::createStore(counterReducer() + namesReducer(), std::move(chain));
}

int counterIn(const Store& store) { return store.state().valueOfType<Counter>()->value; }

std::shared_ptr<Middleware> seeing(std::vector<std::string>& seen) {
    return std::make_shared<BlockMiddleware>(
        [&seen](const Action& action, const GetState&, const DispatchFunction&, const DispatchFunction& next) {
            seen.push_back(action.description());
            next(action);
        });
}

} // namespace

TEST(CombinedMiddleWare, AnEmptyChainSwallowsAChainOfOneIsThatMiddlewareAndTwoNextsReduceTwice) {
    auto empty = storeWith(std::make_shared<CombinedMiddleWare>());
    empty->dispatch(Increment());
    EXPECT_EQ(counterIn(*empty), 0);

    std::vector<std::string> journal;
    auto single = std::make_shared<CombinedMiddleWare>();
    single->middlewares.push_back(recording(journal, "only"));
    auto store = storeWith(single);
    store->dispatch(Increment());
    EXPECT_EQ(counterIn(*store), 1);
    EXPECT_EQ(journal, (std::vector<std::string>{"only down", "only up"}));

    // A middleware that calls next twice reduces twice.
    auto twice = std::make_shared<BlockMiddleware>(
        [](const Action& action, const GetState&, const DispatchFunction&, const DispatchFunction& next) {
            next(action);
            next(action);
        });
    auto doubled = storeWith(passOn() + twice);
    doubled->dispatch(Increment());
    EXPECT_EQ(counterIn(*doubled), 2);
}

TEST(CombinedMiddleWare, ALateNextGoesThroughWhileTheChainLivesAndIsDroppedAfter) {
    DispatchFunction lateNext;
    auto keeper = std::make_shared<BlockMiddleware>(
        [&](const Action&, const GetState&, const DispatchFunction&, const DispatchFunction& next) { lateNext = next; });
    int reached = 0;
    const DispatchFunction end = [&](const Action&) { ++reached; };
    const GetState getState = [] { return State(); };
    {
        std::shared_ptr<Middleware> chain = keeper + passOn();
        chain->onAction(Increment(), getState, end, end);
        EXPECT_EQ(reached, 0);
        lateNext(Increment());
        EXPECT_EQ(reached, 1);
    }
    lateNext(Increment());
    EXPECT_EQ(reached, 1);
}

// A chain run by a store keeps its continuations between dispatches; they must stay sound when
// a second store runs the same chain in the middle of a dispatch, when kept and called late,
// and after the chain is gone.
TEST(CombinedMiddleWare, KeptContinuationsSurviveAStoreSwitchMidDispatchAndTheChainsEnd) {
    std::shared_ptr<Store> other;
    DispatchFunction keptNext;
    bool switched = false;
    auto switcher = std::make_shared<BlockMiddleware>(
        [&](const Action& action, const GetState&, const DispatchFunction&, const DispatchFunction& next) {
            if (other && !switched) {
                switched = true;
                other->dispatch(Increment(10));
            }
            keptNext = next;
            next(action);
        });
    std::shared_ptr<Middleware> chain = passOn() + switcher + passOn();
    auto first = storeWith(chain);
    other = storeWith(chain);
    first->dispatch(Increment());
    EXPECT_EQ(counterIn(*first), 1);
    EXPECT_EQ(counterIn(*other), 10);

    keptNext(Increment(5));  // late: the chain is held for the call
    EXPECT_EQ(counterIn(*first), 6);

    first->dispatch(Increment());
    other->dispatch(Increment());
    EXPECT_EQ(counterIn(*first), 7);
    EXPECT_EQ(counterIn(*other), 11);

    const DispatchFunction kept = keptNext;
    other.reset();
    chain.reset();
    first.reset();
    kept(Increment());  // chain and stores gone: nothing happens, nothing dangles
}

TEST(CombinedMiddleWare, PlusFollowsItsFourRows) {
    auto a = passOn();
    auto b = passOn();
    auto plainPlain = std::dynamic_pointer_cast<CombinedMiddleWare>(a + b);
    ASSERT_TRUE(plainPlain);
    EXPECT_EQ(plainPlain->middlewares, (std::vector<std::shared_ptr<Middleware>>{a, b}));

    auto c = passOn();
    auto combinedPlain = plainPlain + c;
    EXPECT_EQ(combinedPlain, plainPlain);  // appended in place
    EXPECT_EQ(plainPlain->middlewares.size(), 3u);

    auto d = passOn();
    auto right = std::make_shared<CombinedMiddleWare>();
    right->middlewares = {c, d};
    auto plainCombined = std::dynamic_pointer_cast<CombinedMiddleWare>(a + right);
    EXPECT_EQ(plainCombined->middlewares, (std::vector<std::shared_ptr<Middleware>>{a, c, d}));
    EXPECT_NE(plainCombined, right);

    // combined + combined: right's middlewares run twice.
    std::vector<std::string> journal;
    auto left = std::make_shared<CombinedMiddleWare>();
    left->middlewares = {recording(journal, "L")};
    auto twiceRight = std::make_shared<CombinedMiddleWare>();
    twiceRight->middlewares = {recording(journal, "R")};
    auto both = std::dynamic_pointer_cast<CombinedMiddleWare>(std::shared_ptr<Middleware>(left) + twiceRight);
    EXPECT_EQ(left->middlewares.size(), 2u);
    EXPECT_EQ(both->middlewares.size(), 2u);
    auto store = storeWith(both);
    store->dispatch(Increment());
    EXPECT_EQ(journal, (std::vector<std::string>{"L down", "R down", "R down", "R up", "R up", "L up"}));
}

TEST(AsyncMiddleware, RunsAsyncActionsInsteadOfReducingThem) {
    std::vector<std::string> journal;
    std::vector<std::string> laterSaw;
    auto store = storeWith(std::make_shared<AsyncMiddleware>() + seeing(laterSaw));
    int actionListenerCalls = 0;
    int stateListenerCalls = 0;
    store->addActionListener([&](const Action&) { ++actionListenerCalls; });
    store->addListener(nullptr, [&](const State&) { ++stateListenerCalls; });

    store->dispatch(Ping(&journal));

    EXPECT_EQ(journal, std::vector<std::string>{"execute sees 0"});
    EXPECT_EQ(laterSaw, std::vector<std::string>{"Increment"});  // never the async action itself
    EXPECT_EQ(actionListenerCalls, 2);  // the Ping and the Increment it dispatched
    EXPECT_EQ(stateListenerCalls, 1);   // only the Increment reached the reducer
    EXPECT_EQ(counterIn(*store), 1);
}

TEST(AsyncMiddleware, AnAsyncActionDispatchedFromAMiddlewareStartsAtTheTop) {
    std::vector<std::string> journal;
    std::vector<std::string> topSaw;
    auto launcher = std::make_shared<BlockMiddleware>(
        [&](const Action& action, const GetState&, const DispatchFunction& dispatch, const DispatchFunction& next) {
            next(action);
            if (actionAs<AddName>(action)) dispatch(Ping(&journal));
        });
    auto store = storeWith(seeing(topSaw) + std::make_shared<AsyncMiddleware>() + launcher);
    store->dispatch(AddName("go"));
    EXPECT_EQ(topSaw, (std::vector<std::string>{"AddName", "Ping", "Increment"}));
    EXPECT_EQ(counterIn(*store), 1);
}
