#pragma once

#include "tivra/async.hpp"
#include "tivra/tivra.hpp"

#include <string>
#include <vector>

namespace fixtures {

struct Counter {
    int value = 0;
    bool operator==(const Counter&) const = default;
};

struct Names {
    std::vector<std::string> names;
    bool operator==(const Names&) const = default;
};

// Not comparable: EqualsFilter must let every change through.
struct Opaque {
    int value = 0;
};

struct Increment final : tivra::Action {
    int by = 1;
    explicit Increment(int amount = 1) : by(amount) {}
};
struct AddName final : tivra::Action {
    std::string name;
    explicit AddName(std::string added) : name(std::move(added)) {}
};
struct Ignored final : tivra::Action {};

inline std::shared_ptr<tivra::BlockReducer<Counter>> counterReducer(std::vector<std::string>* journal = nullptr) {
    return std::make_shared<tivra::BlockReducer<Counter>>(
        Counter{}, [journal](const Counter& state, const tivra::Action& action) -> std::optional<Counter> {
            if (journal) journal->push_back("reducer");
            const auto* increment = tivra::actionAs<Increment>(action);
            if (!increment) return std::nullopt;
            return Counter{state.value + increment->by};
        });
}

inline std::shared_ptr<tivra::BlockReducer<Names>> namesReducer() {
    return std::make_shared<tivra::BlockReducer<Names>>(
        Names{}, [](const Names& state, const tivra::Action& action) -> std::optional<Names> {
            const auto* add = tivra::actionAs<AddName>(action);
            if (!add) return std::nullopt;
            Names next = state;
            next.names.push_back(add->name);
            return next;
        });
}

// A middleware that records its passage before and after `next`.
inline std::shared_ptr<tivra::Middleware> recording(std::vector<std::string>& journal, std::string name) {
    return std::make_shared<tivra::BlockMiddleware>(
        [&journal, name](const tivra::Action& action, const tivra::GetState&, const tivra::DispatchFunction&,
                         const tivra::DispatchFunction& next) {
            journal.push_back(name + " down");
            next(action);
            journal.push_back(name + " up");
        });
}

inline std::shared_ptr<tivra::Middleware> passOn() {
    return std::make_shared<tivra::BlockMiddleware>(
        [](const tivra::Action& action, const tivra::GetState&, const tivra::DispatchFunction&,
           const tivra::DispatchFunction& next) { next(action); });
}

} // namespace fixtures
