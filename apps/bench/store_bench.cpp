// `dispatch`: a plain action through a store shaped like the shared store (six middlewares that
// pass the action on, five reducers, twenty keyed listeners and one whole-state listener),
// against calling the same five reducer functions and twenty-one listener callbacks directly.
#include "harness.hpp"

#include "tivra/async.hpp"
#include "tivra/tivra.hpp"

#include <string>
#include <vector>

namespace {

template <int N>
struct Slice {
    int counter = 0;
    std::string title = "slice";
    std::vector<std::string> rows{"a", "b", "c"};
    bool operator==(const Slice&) const = default;
};

struct Tick final : tivra::Action {};

// Only the first slice cares about a tick; the others answer "unchanged", as the real ones do.
template <int N>
std::optional<Slice<N>> reduceSlice(const Slice<N>& state, const tivra::Action& action) {
    if (N != 0 || !tivra::actionAs<Tick>(action)) return std::nullopt;
    Slice<N> next = state;
    ++next.counter;
    return next;
}

template <int N>
std::shared_ptr<tivra::BlockReducer<Slice<N>>> reducer() {
    return std::make_shared<tivra::BlockReducer<Slice<N>>>(Slice<N>{}, &reduceSlice<N>);
}

std::shared_ptr<tivra::Middleware> passOn() {
    return std::make_shared<tivra::BlockMiddleware>(
        [](const tivra::Action& action, const tivra::GetState&, const tivra::DispatchFunction&,
           const tivra::DispatchFunction& next) { next(action); });
}

long sink = 0;

template <int N>
void onSlice(const Slice<N>& slice) {
    sink += slice.counter + static_cast<long>(slice.rows.size());
}
void onState(const tivra::State& state) { sink += static_cast<long>(state.count()); }

template <int N>
void listenTo(tivra::Store& store) {
    for (int i = 0; i < 4; ++i) store.addListener<Slice<N>>(tivra::stateKeyOf<Slice<N>>(), tivra::EqualsFilter, &onSlice<N>);
}

void measured(benchmark::State& run) {
    auto reducers = reducer<0>() + reducer<1>() + reducer<2>() + reducer<3>() + reducer<4>();
    std::shared_ptr<tivra::Middleware> chain = std::make_shared<tivra::AsyncMiddleware>() + passOn();
    for (int i = 0; i < 4; ++i) chain = chain + passOn();
    auto store = tivra::Tivra::createStore(reducers, chain);
    listenTo<0>(*store);
    listenTo<1>(*store);
    listenTo<2>(*store);
    listenTo<3>(*store);
    listenTo<4>(*store);
    store->addListener(nullptr, &onState);
    const Tick tick;
    for (auto _ : run) store->dispatch(tick);
    benchmark::DoNotOptimize(sink);
}

template <int N>
void reduceDirectly(Slice<N>& slice, const Tick& tick) {
    if (auto next = reduceSlice<N>(slice, tick)) slice = std::move(*next);
}

void baseline(benchmark::State& run) {
    Slice<0> s0;
    Slice<1> s1;
    Slice<2> s2;
    Slice<3> s3;
    Slice<4> s4;
    tivra::State whole{{"Slice<0>", s0}};
    const Tick tick;
    for (auto _ : run) {
        reduceDirectly(s0, tick);
        reduceDirectly(s1, tick);
        reduceDirectly(s2, tick);
        reduceDirectly(s3, tick);
        reduceDirectly(s4, tick);
        for (int i = 0; i < 4; ++i) {
            onSlice(s0);
            onSlice(s1);
            onSlice(s2);
            onSlice(s3);
            onSlice(s4);
        }
        onState(whole);
    }
    benchmark::DoNotOptimize(sink);
}

} // namespace

std::vector<bench::Metric> bench::storeMetrics() { return {{"dispatch", 8.0, measured, baseline, nullptr}}; }
