#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace bench {

// An extra figure with no baseline (sizes, memory), printed after the table.
struct Fact {
    std::string name;
    double value = 0;
    std::string unit;
};

// One figure of `belva-bench`: the system's operation and a baseline doing the floor of the same
// work, both timed per iteration by Google Benchmark in the same run. ratio = value / baseline.
struct Metric {
    std::string name;
    double target = 0;  // the ratio not to exceed
    std::function<void(benchmark::State&)> measured;
    std::function<void(benchmark::State&)> baseline;
    std::function<std::vector<Fact>()> facts;  // optional
    // The functions report their own figure per iteration (bytes, say) as manual time in
    // seconds, read back in `unit`, for metrics that are not times.
    bool manualTime = false;
    std::string unit = "ns";
};

// Each subsystem's file gives its metrics; main.cpp lists the functions.
std::vector<Metric> storeMetrics();
std::vector<Metric> conversationMetrics();
std::vector<Metric> richtextMetrics();
std::vector<Metric> queueMetrics();
std::vector<Metric> tableMetrics();
std::vector<Metric> requestListMetrics();
std::vector<Metric> uiMetrics();
std::vector<Metric> renderMetrics();
std::vector<Metric> helpCenterSearchMetrics();
std::vector<Metric> helpCenterMetrics();
std::vector<Metric> conversationScreenMetrics();

} // namespace bench
