#pragma once

#include "tivra/middleware.hpp"
#include "tivra/state.hpp"

#include <any>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tivra {

// Prints each action with the state before and after it, framed as a small tree.
// For hosts that build a store of their own; not part of the shared store's chain.
class LoggerMiddleware final : public Middleware {
public:
    using Logger = std::function<void(const std::string&)>;
    using Predicate = std::function<bool(const State&, const Action&)>;
    using StateTransformer = std::function<std::any(const State&)>;
    using ActionTransformer = std::function<std::any(const Action&)>;
    using TitleFormatter =
        std::function<std::string(const Action&, std::chrono::system_clock::time_point, std::uint64_t)>;

    struct Options {
        bool showTimestamp = true;
        bool showDuration = false;
        std::optional<int> lineLength;
        Predicate predicate;
        bool debugOnly = true;
        TitleFormatter titleFormatter;
        StateTransformer stateTransformer;
        ActionTransformer actionTransformer;
        Logger logger;
    };

    LoggerMiddleware() : LoggerMiddleware(Options{}) {}
    explicit LoggerMiddleware(Options options);

    void onAction(const Action& action, const GetState& getState, const DispatchFunction& dispatch,
                  const DispatchFunction& next) override;

    // Writes to standard output.
    static void defaultLogger(const std::string& line);

    bool showDuration;
    bool showTimestamp;
    bool debugOnly;
    std::optional<int> lineLength;
    Logger logger;
    Predicate predicate;
    StateTransformer stateTransformer;
    ActionTransformer actionTransformer;
    TitleFormatter titleFormatter;

private:
    std::string title(const Action& action, std::chrono::system_clock::time_point date,
                      std::uint64_t durationNanoseconds) const;
    std::string fit(std::string line) const;
};

// Printed form of a dynamic value: strings quoted, numbers and booleans as such, a State as its
// key/value pairs, anything else as its type's unqualified name.
std::string describe(const std::any& value);
std::string describe(const State& state);

} // namespace tivra
