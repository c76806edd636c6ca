#include "tivra/logger_middleware.hpp"

#include "platform/type_name.hpp"

#include <ctime>
#include <iostream>
#include <sstream>

namespace tivra {

namespace {

constexpr int defaultLineLength = 64;

bool isDebugBuild() {
#ifdef NDEBUG
    return false;
#else
    return true;
#endif
}

std::uint64_t uptimeNanoseconds() {
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}

// "HH:mm:ss.SSS" in local time.
std::string formatTime(std::chrono::system_clock::time_point date) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(date);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(millis));
    return text;
}

std::string repeat(std::string_view unit, int count) {
    std::string out;
    for (int i = 0; i < count; ++i) out += unit;
    return out;
}

} // namespace

LoggerMiddleware::LoggerMiddleware(Options options)
    : showDuration(options.showDuration),
      showTimestamp(options.showTimestamp),
      debugOnly(options.debugOnly),
      lineLength(options.lineLength),
      logger(options.logger ? std::move(options.logger) : Logger(&LoggerMiddleware::defaultLogger)),
      predicate(std::move(options.predicate)),
      stateTransformer(std::move(options.stateTransformer)),
      actionTransformer(std::move(options.actionTransformer)),
      titleFormatter(std::move(options.titleFormatter)) {}

void LoggerMiddleware::defaultLogger(const std::string& line) { std::cout << line << '\n'; }

void LoggerMiddleware::onAction(const Action& action, const GetState& getState, const DispatchFunction&,
                                const DispatchFunction& next) {
    const State before = getState();
    if ((predicate && !predicate(before, action)) || (debugOnly && !isDebugBuild())) {
        next(action);
        return;
    }
    const auto date = std::chrono::system_clock::now();
    const std::uint64_t start = uptimeNanoseconds();
    next(action);
    const std::uint64_t duration = uptimeNanoseconds() - start;
    const State after = getState();

    const auto printState = [this](const State& state) {
        return stateTransformer ? describe(stateTransformer(state)) : describe(state);
    };
    logger(fit(title(action, date, duration)));
    logger(fit("├─ Prev state ► " + printState(before)));
    logger(fit("├─ Action     ► " + (actionTransformer ? describe(actionTransformer(action)) : action.description())));
    logger(fit("├─ Next state ► " + printState(after)));
    logger("└" + repeat("─", lineLength.value_or(defaultLineLength) - 1));
}

std::string LoggerMiddleware::title(const Action& action, std::chrono::system_clock::time_point date,
                                    std::uint64_t durationNanoseconds) const {
    if (titleFormatter) return titleFormatter(action, date, durationNanoseconds);
    std::string out = "┌───→ Action: " + platform::unqualifiedName(typeid(action));
    if (showTimestamp) out += " @" + formatTime(date);
    if (showDuration) out += " (in " + std::to_string(durationNanoseconds / 1000) + " µs)";
    return out;
}

// Cuts a line to `lineLength` characters (code points), when one is set.
std::string LoggerMiddleware::fit(std::string line) const {
    if (!lineLength || *lineLength <= 0) return line;
    int characters = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if ((static_cast<unsigned char>(line[i]) & 0xC0) == 0x80) continue;
        if (characters++ == *lineLength) return line.substr(0, i);
    }
    return line;
}

std::string describe(const State& state) {
    std::ostringstream out;
    out << "State([";
    bool first = true;
    for (const auto& key : state.keys()) {
        out << (first ? "" : ", ") << '"' << key << "\": " << describe(*state.value(key));
        first = false;
    }
    out << "])";
    return out.str();
}

std::string describe(const std::any& value) {
    if (!value.has_value()) return "nil";
    if (const auto* text = std::any_cast<std::string>(&value)) return '"' + *text + '"';
    if (const auto* text = std::any_cast<const char*>(&value)) return '"' + std::string(*text) + '"';
    if (const auto* state = std::any_cast<State>(&value)) return describe(*state);
    if (const auto* flag = std::any_cast<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* number = std::any_cast<int>(&value)) return std::to_string(*number);
    if (const auto* number = std::any_cast<long>(&value)) return std::to_string(*number);
    if (const auto* number = std::any_cast<long long>(&value)) return std::to_string(*number);
    if (const auto* number = std::any_cast<double>(&value)) {
        std::ostringstream out;
        out << *number;
        return out.str();
    }
    return platform::unqualifiedName(value.type());
}

} // namespace tivra
