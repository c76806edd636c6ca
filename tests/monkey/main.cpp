// belva-monkey: random events over the whole app, under random faults of the help desk, with the
// invariants of sending checked along the way. Without arguments it runs the fixed seeds as a
// test; `--seed N --events M` replays one seed, `--seeds N --count K` runs K seeds from N.
#include "monkey.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>

namespace {

// Few enough events to stay well inside the suite's time under the sanitizers: the first seeds,
// then seeds of long runs that once found a fault, each as long as it took to find it.
struct FixedSeed {
    std::uint64_t seed;
    int events;
};
constexpr FixedSeed fixedSeeds[] = {{1, 400},   {2, 400},   {3, 400},   {4, 400},   {5, 400},
                                    {6, 400},   {7, 400},   {8, 400},   {9, 400},   {103, 500},
                                    {138, 450}, {231, 200}, {267, 450}, {793, 250}};

TEST(Monkey, FixedSeedsKeepEverySendDeliveredOnceOrFailedWithARetry) {
    monkey::Figures total;
    for (const auto [seed, events] : fixedSeeds) {
        const monkey::Options options{.seed = seed, .events = events};
        const auto result = monkey::runSeed(options);
        total += result.figures;
        if (!result.passed) {
            std::ostringstream report;
            monkey::printFailure(report, options, result);
            ADD_FAILURE() << report.str();
        }
    }
    monkey::printFigures(std::cout, total);
    EXPECT_EQ(total.seeds, std::size(fixedSeeds));
    EXPECT_GT(total.sends, 0u) << "a monkey that never sends checks nothing";
}

struct Arguments {
    std::optional<std::uint64_t> seed;
    std::uint64_t count = 1;
    int events = 300;
    bool echo = false;
    bool echoLog = false;
    long watch = 0;
    bool given = false;
};

std::optional<Arguments> parse(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string flag = argv[i];
        auto value = [&]() -> std::optional<std::string> {
            if (i + 1 >= argc) return std::nullopt;
            return std::string(argv[++i]);
        };
        auto number = [&](auto& into) {
            const auto text = value();
            if (!text || text->empty() || text->find_first_not_of("0123456789") != std::string::npos) return false;
            into = static_cast<std::remove_reference_t<decltype(into)>>(std::stoull(*text));
            return true;
        };
        if (flag == "--seed" || flag == "--seeds") {
            std::uint64_t seed = 0;
            if (!number(seed)) return std::nullopt;
            arguments.seed = seed;
            arguments.given = true;
        } else if (flag == "--count") {
            if (!number(arguments.count) || arguments.count == 0) return std::nullopt;
            arguments.given = true;
        } else if (flag == "--events") {
            if (!number(arguments.events) || arguments.events <= 0) return std::nullopt;
            arguments.given = true;
        } else if (flag == "--echo") {
            arguments.echo = true;
        } else if (flag == "--log") {
            arguments.echoLog = true;
        } else if (flag == "--watch") {
            if (!number(arguments.watch)) return std::nullopt;
        } else if (flag.rfind("--gtest", 0) == 0) {
            continue;
        } else {
            return std::nullopt;
        }
    }
    return arguments;
}

} // namespace

int main(int argc, char** argv) {
    const auto arguments = parse(argc, argv);
    if (!arguments) {
        std::cerr << "usage: belva-monkey [--seed N [--count K]] [--events M] [--echo] [--log] [--watch MARKER]\n"
                     "  without arguments: the fixed seeds, as a test\n";
        return 2;
    }
    if (!arguments->given) {
        testing::InitGoogleTest(&argc, argv);
        return RUN_ALL_TESTS();
    }
    monkey::Figures total;
    int failures = 0;
    const std::uint64_t first = arguments->seed.value_or(1);
    for (std::uint64_t seed = first; seed < first + arguments->count; ++seed) {
        const monkey::Options options{.seed = seed, .events = arguments->events, .echo = arguments->echo,
                                      .echoLog = arguments->echoLog,
                                      .watch = arguments->watch};
        const auto result = monkey::runSeed(options);
        total += result.figures;
        if (!result.passed) {
            ++failures;
            monkey::printFailure(std::cout, options, result);
        }
    }
    monkey::printFigures(std::cout, total);
    if (failures) std::cout << "monkey: " << failures << " of " << total.seeds << " seeds failed\n";
    return failures ? 1 : 0;
}
