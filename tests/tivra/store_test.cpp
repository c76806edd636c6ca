#include "fixtures.hpp"
#include "platform/main_queue.hpp"
#include "platform/object.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace fixtures;
using namespace tivra;

namespace {

std::shared_ptr<Store> twoSliceStore(std::vector<std::string>* journal = nullptr,
                                     std::shared_ptr<Middleware> middleware = passOn()) {
    return Tivra::createStore(counterReducer(journal) + namesReducer(), std::move(middleware));
}

int counterIn(const Store& store) { return store.state().valueOfType<Counter>()->value; }

} // namespace

TEST(StoreDispatch, EffectsRunInOrderActionListenersChainReducerListenersThenAfterNext) {
    std::vector<std::string> journal;
    auto chain = recording(journal, "first") + recording(journal, "second");
    auto store = twoSliceStore(&journal, chain);
    store->addActionListener([&](const Action&) { journal.push_back("action listener"); });
    store->addListener<Counter>([&](const Counter&) { journal.push_back("listener"); });

    store->dispatch(Increment());

    EXPECT_EQ(journal, (std::vector<std::string>{"action listener", "first down", "second down", "reducer",
                                                 "listener", "second up", "first up"}));
}

TEST(StoreDispatch, NestedDispatchRunsToItsEndBeforeTheOuterCarriesOn) {
    std::vector<std::string> journal;
    auto store = twoSliceStore();
    store->addListener<Counter>([&](const Counter& counter) {
        journal.push_back("counter " + std::to_string(counter.value));
        if (counter.value == 1) store->dispatch(AddName("nested"));
        journal.push_back("after nested " + std::to_string(counter.value));
    });
    store->addListener<Names>([&](const Names& names) { journal.push_back("names " + names.names.back()); });

    store->dispatch(Increment());

    EXPECT_EQ(journal, (std::vector<std::string>{"counter 1", "names nested", "after nested 1"}));
}

TEST(StoreDispatch, ListenersAddedDuringAPassWaitAndRemovedOnesStillHearIt) {
    auto store = twoSliceStore();
    int lateCalls = 0;
    int removedCalls = 0;
    std::optional<Subscription<Counter>> removed;
    store->addListener<Counter>([&](const Counter&) {
        store->addListener<Counter>([&](const Counter&) { ++lateCalls; });
        if (removed) removed->removeListener();
    });
    removed = store->addListener<Counter>([&](const Counter&) { ++removedCalls; });

    store->dispatch(Increment());
    EXPECT_EQ(lateCalls, 0);
    EXPECT_EQ(removedCalls, 1);

    store->dispatch(Increment());
    EXPECT_EQ(removedCalls, 1);
    EXPECT_EQ(lateCalls, 1);  // the one added in the first pass; the second pass added another
}

TEST(StoreDispatch, UnchangedSliceSkipsKeyedListenersButNotWholeStateOnes) {
    auto store = twoSliceStore();
    int keyed = 0;
    int whole = 0;
    int filteredWhole = 0;
    store->addListener<Counter>([&](const Counter&) { ++keyed; });
    store->addListener(nullptr, [&](const State&) { ++whole; });
    store->addListener(Filter<State>([&](const State&, const State&) {
                           ++filteredWhole;
                           return false;
                       }),
                       [&](const State&) { ADD_FAILURE() << "the filter said no"; });

    store->dispatch(Ignored());

    EXPECT_EQ(keyed, 0);
    EXPECT_EQ(whole, 1);
    EXPECT_EQ(filteredWhole, 1);
}

TEST(StoreDispatch, ASliceAddedDuringAPassMovesTheKeysWithoutMixingUpTheirListeners) {
    auto store = twoSliceStore();
    std::vector<std::pair<int, int>> counterSeen;
    std::vector<std::string> namesSeen;
    store->addListener<Counter>([&](const Counter& counter) {
        if (counter.value != 1) return;
        // "Added" sorts before both slices, so every slice moves to another place.
        store->reset(std::any(std::string("new")), "Added");
        store->dispatch(Increment(10));
    });
    store->addListener<Counter>(std::nullopt, Filter<Counter>([&](const Counter& oldValue, const Counter& newValue) {
                                    counterSeen.emplace_back(oldValue.value, newValue.value);
                                    return true;
                                }),
                                [](const Counter&) {});
    store->addListener<Names>([&](const Names& names) { namesSeen.push_back(names.names.back()); });

    store->dispatch(Increment());
    // The nested pass runs first (old 1, new 11); the outer pass then reads the fresh state (11)
    // with its own old value from its snapshot (0).
    EXPECT_EQ(counterSeen, (std::vector<std::pair<int, int>>{{1, 11}, {0, 11}}));
    EXPECT_TRUE(namesSeen.empty());

    store->dispatch(AddName("after"));
    EXPECT_EQ(namesSeen, std::vector<std::string>{"after"});
    EXPECT_EQ(counterSeen.size(), 2u);
}

TEST(StoreFilters, EqualsFilterSuppressesEqualValuesAndPassesNonComparableOnes) {
    auto reducer = counterReducer() + std::make_shared<BlockReducer<Opaque>>(
                                          Opaque{}, [](const Opaque& state, const Action&) -> std::optional<Opaque> {
                                              return state;  // unchanged value, reported as changed
                                          });
    auto store = Tivra::createStore(reducer, passOn());
    int counterCalls = 0;
    int opaqueCalls = 0;
    store->addListener<Counter>(std::nullopt, EqualsFilter, [&](const Counter&) { ++counterCalls; });
    store->addListener<Opaque>(std::nullopt, EqualsFilter, [&](const Opaque&) { ++opaqueCalls; });

    store->dispatch(Increment(0));  // the counter reducer returns an equal value
    EXPECT_EQ(counterCalls, 0);
    EXPECT_EQ(opaqueCalls, 1);

    store->dispatch(Increment(2));
    EXPECT_EQ(counterCalls, 1);
    EXPECT_EQ(opaqueCalls, 2);
    EXPECT_FALSE(EqualsFilter(std::string("a"), std::string("a")));
}

TEST(StoreFilters, AMissingKeyOrAValueOfTheWrongTypeCallsNobody) {
    auto store = twoSliceStore();
    int calls = 0;
    store->addListener<Counter>(std::string("NoSuchKey"), nullptr, [&](const Counter&) { ++calls; });
    // Watches the Names slice's key but expects a Counter there.
    store->addListener<Counter>(stateKeyOf<Names>(), Filter<Counter>(alwaysFilter), [&](const Counter&) { ++calls; });
    store->dispatch(Increment());
    store->dispatch(AddName("x"));
    EXPECT_EQ(calls, 0);
}

TEST(StoreResets, ResetsNotifyNobodyAndInformWithCurrentStateIgnoresTheFilter) {
    auto store = twoSliceStore();
    int calls = 0;
    int actionCalls = 0;
    int last = -1;
    store->addActionListener([&](const Action&) { ++actionCalls; });
    auto subscription = store->addListener<Counter>(
        std::nullopt, Filter<Counter>([](const Counter&, const Counter&) { return false; }), [&](const Counter& c) {
            ++calls;
            last = c.value;
        });

    store->reset(Counter{41});
    store->reset(std::any(Names{{"n"}}), stateKeyOf<Names>());
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(actionCalls, 0);
    EXPECT_EQ(counterIn(*store), 41);

    subscription.informWithCurrentState();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(last, 41);

    store->resetFullState({{"Other", std::any(3)}});
    subscription.informWithCurrentState();  // no Counter any more: not called
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(store->state().keys(), std::vector<std::string>{"Other"});
}

TEST(StoreApply, SingleSliceReducerGetsTheSliceItselfOthersTheWholeState) {
    std::vector<std::string> seenTypes;
    auto probe = [&](std::string key) {
        return std::make_shared<BlockReducer<int>>(0, std::move(key), [&](const int& v, const Action&) {
            seenTypes.push_back("slice");
            return std::optional<int>(v + 1);
        });
    };
    auto single = Tivra::createStore(probe("Only"), passOn());
    single->dispatch(Ignored());
    EXPECT_EQ(seenTypes, std::vector<std::string>{"slice"});
    EXPECT_EQ(*single->state().value<int>("Only"), 1);

    // A whole-state reducer sees the State when there are two keys, and an empty State when none.
    std::vector<std::size_t> stateSizes;
    auto wholeState = std::make_shared<BlockReducer<State>>(
        State(), "Whole", [&](const State& state, const Action&) -> std::optional<State> {
            stateSizes.push_back(state.count());
            return std::nullopt;
        });
    auto twoKeys = Tivra::createStore(wholeState, State::Dictionary{{"A", 1}, {"B", 2}}, passOn());
    twoKeys->dispatch(Ignored());
    auto noKeys = Tivra::createStore(wholeState, State::Dictionary{}, passOn());
    noKeys->dispatch(Ignored());
    EXPECT_EQ(stateSizes, (std::vector<std::size_t>{2, 0}));
}

TEST(StoreApply, IsDispatchingIsSetOnlyWhileTheReducerRuns) {
    std::shared_ptr<Store> store;
    std::vector<bool> seen;
    auto reducer = std::make_shared<BlockReducer<int>>(0, [&](const int& v, const Action&) {
        seen.push_back(store->isDispatching());
        return std::optional<int>(v);
    });
    store = Tivra::createStore(reducer, passOn());
    store->addListener<int>([&](const int&) { seen.push_back(store->isDispatching()); });
    store->dispatch(Ignored());
    EXPECT_EQ(seen, (std::vector<bool>{true, false}));
}

// The middleware stops an Increment and swaps an AddName for Increment(5).
TEST(StoreActionListeners, HearEachDispatchOnceButNotWhatTheChainDoesWithIt) {
    std::vector<std::string> heard;
    auto swapper = std::make_shared<BlockMiddleware>(
        [](const Action& action, const GetState&, const DispatchFunction&, const DispatchFunction& next) {
            if (actionAs<AddName>(action)) next(Increment(5));
        });
    auto store = twoSliceStore(nullptr, swapper);
    auto subscription = store->addActionListener([&](const Action& action) { heard.push_back(action.description()); });
    store->dispatch(Increment());
    EXPECT_EQ(counterIn(*store), 0);
    store->dispatch(AddName("x"));
    EXPECT_EQ(heard, (std::vector<std::string>{"Increment", "AddName"}));
    EXPECT_EQ(counterIn(*store), 5);

    subscription.removeListener();
    store->dispatch(AddName("y"));
    EXPECT_EQ(heard.size(), 2u);
}

TEST(StoreLifecycle, LinkedListenersGoWithTheirObject) {
    auto store = twoSliceStore();
    int calls = 0;
    {
        platform::Object screen;
        store->addListener<Counter>([&](const Counter&) { ++calls; }).linkLifeCycleTo(screen);
        store->addListener<Names>([&](const Names&) { ++calls; }).linkLifeCycleTo(screen);
        store->addActionListener([&](const Action&) { ++calls; }).linkLifeCycleTo(screen);
        // Both subscriptions share the one callback holder on the object.
        EXPECT_EQ(deinitCallbackOf(screen).callbacks.size(), 3u);
        store->dispatch(Increment());
        EXPECT_EQ(calls, 2);
    }
    EXPECT_TRUE(store->listeners().empty());
    EXPECT_EQ(store->actionListenerCount(), 0u);
    store->dispatch(Increment());
    EXPECT_EQ(calls, 2);

    // Dropping a handle removes nothing.
    store->addListener<Counter>([&](const Counter&) { ++calls; });
    store->dispatch(Increment());
    EXPECT_EQ(calls, 3);
}

TEST(StoreLifecycle, ADestroyedStoreIgnoresLateDispatchAndNext) {
    DispatchFunction lateDispatch;
    DispatchFunction lateNext;
    GetState lateGetState;
    auto capture = std::make_shared<BlockMiddleware>(
        [&](const Action&, const GetState& getState, const DispatchFunction& dispatch, const DispatchFunction& next) {
            lateDispatch = dispatch;
            lateNext = next;
            lateGetState = getState;
        });
    std::weak_ptr<Store> watch;
    {
        auto store = twoSliceStore(nullptr, capture);
        watch = store;
        store->dispatch(Increment());
    }
    EXPECT_TRUE(watch.expired());
    lateDispatch(Increment());
    lateNext(Increment());
    EXPECT_EQ(lateGetState().count(), 0u);
}

TEST(StoreThreads, DispatchFromAnotherThreadRunsOnTheMainThreadAndWaits) {
    auto store = twoSliceStore();
    std::atomic<bool> reducedOnMain = false;
    store->addListener<Counter>([&](const Counter&) { reducedOnMain = platform::MainQueue::shared().isMainThread(); });
    std::atomic<bool> returned = false;
    std::atomic<int> valueSeenByWorker = -1;
    std::thread worker([&] {
        store->dispatch(Increment(3));
        // The dispatch has finished by the time it returns.
        valueSeenByWorker = counterIn(*store);
        returned = true;
    });
    testing_support::pumpMainQueueUntil([&] { return returned.load(); });
    worker.join();
    EXPECT_TRUE(reducedOnMain);
    EXPECT_EQ(valueSeenByWorker, 3);
}

TEST(StoreThreads, NextFromAnotherThreadReducesOnTheMainThreadAndNeverReadsAFreedStore) {
    DispatchFunction next;
    auto capture = std::make_shared<BlockMiddleware>(
        [&](const Action&, const GetState&, const DispatchFunction&, const DispatchFunction& given) { next = given; });
    auto store = twoSliceStore(nullptr, capture);
    store->dispatch(Ignored());
    std::atomic<int> heard = 0;
    std::atomic<int> heardOffMain = 0;
    store->addListener<Counter>([&](const Counter&) {
        ++heard;
        if (!platform::MainQueue::shared().isMainThread()) ++heardOffMain;
    });
    std::atomic<int> sent = 0;
    std::thread worker([&] {
        for (int i = 0; i < 2000; ++i, ++sent) next(Increment());
    });
    testing_support::pumpMainQueueUntil([&] { return sent.load() >= 200; });
    store.reset();  // while the worker still calls next
    testing_support::pumpMainQueueUntil([&] { return sent.load() == 2000; });
    worker.join();
    EXPECT_EQ(heardOffMain, 0);
    EXPECT_GE(heard, 200);
    EXPECT_LT(heard, 2000);
}
