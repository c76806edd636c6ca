#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace monkey {

// What runs of the monkey did, summed over seeds.
struct Figures {
    std::uint64_t seeds = 0;
    std::uint64_t events = 0;
    std::uint64_t checks = 0;  // invariant checks that held
    std::uint64_t faults = 0;  // switches of the help desk flipped
    std::uint64_t sends = 0;   // messages the user sent
    std::uint64_t delivered = 0;
    std::uint64_t failedWithRetry = 0;
    std::uint64_t deleted = 0;  // failed sends the user deleted

    Figures& operator+=(const Figures& other);
};

struct Options {
    std::uint64_t seed = 1;
    int events = 300;
    // Prints each step as it runs.
    bool echo = false;
    // Prints the library's log as it is written.
    bool echoLog = false;
    // Prints, after each event where it changed, where the send with this marker is kept.
    long watch = 0;
};

struct Result {
    bool passed = true;
    std::string failure;
    // One line per event, numbered from 1, for the replay.
    std::vector<std::string> steps;
    // The latest lines of the library's log when it failed.
    std::vector<std::string> log;
    // What the help desk and the device held when it failed.
    std::vector<std::string> holdings;
    Figures figures;
};

// One seed: the app on a fresh help desk, `events` random events under random faults, and the
// invariants checked along the way and once the faults are healed.
Result runSeed(const Options& options);

// The failure with its seed, its replay command and its steps.
void printFailure(std::ostream& out, const Options& options, const Result& result);
void printFigures(std::ostream& out, const Figures& figures);

} // namespace monkey
