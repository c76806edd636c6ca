// belva-bench: each metric against its baseline, as a readable table or, with --json, as a JSON
// array of {"name", "value", "unit", "baseline", "ratio", "target"}. Times are medians of a few runs.
#include "harness.hpp"

#include <boost/json.hpp>

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <map>
#include <optional>

namespace {

std::vector<bench::Metric> allMetrics() {
    std::vector<bench::Metric> all;
    for (auto&& group : {bench::storeMetrics(), bench::conversationMetrics(), bench::richtextMetrics(),
                         bench::tableMetrics(), bench::queueMetrics(), bench::requestListMetrics(), bench::uiMetrics(),
                         bench::renderMetrics(), bench::helpCenterMetrics(), bench::helpCenterSearchMetrics(),
                         bench::conversationScreenMetrics()})
        for (auto& metric : group) all.push_back(metric);
    return all;
}

// Each figure is the median of this many runs, so that one disturbed run does not make it.
constexpr int repetitions = 3;

// Collects the time per iteration of every run, in nanoseconds.
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& run : runs)
            if (!run.error_occurred && run.run_type == Run::RT_Iteration)
                nanos[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }

    std::optional<double> median(const std::string& name) const {
        const auto found = nanos.find(name);
        if (found == nanos.end() || found->second.empty()) return std::nullopt;
        auto times = found->second;
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    std::map<std::string, std::vector<double>> nanos;
};

} // namespace

int main(int argc, char** argv) {
    bool json = false;
    std::vector<char*> args;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--json") == 0)
            json = true;
        else
            args.push_back(argv[i]);
    }
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());

    const auto metrics = allMetrics();
    for (const auto& metric : metrics) {
        auto* baseline = benchmark::RegisterBenchmark((metric.name + "/baseline").c_str(), metric.baseline)
                             ->Unit(benchmark::kNanosecond)
                             ->Repetitions(repetitions);
        auto* measured = benchmark::RegisterBenchmark(metric.name.c_str(), metric.measured)
                             ->Unit(benchmark::kNanosecond)
                             ->Repetitions(repetitions);
        if (metric.manualTime) {
            baseline->UseManualTime();
            measured->UseManualTime();
        }
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();

    boost::json::array out;
    if (!json)
        std::cout << std::left << std::setw(24) << "metric" << std::right << std::setw(14) << "value ns"
                  << std::setw(14) << "baseline ns" << std::setw(9) << "ratio" << std::setw(9) << "target"
                  << "\n";
    for (const auto& metric : metrics) {
        const auto value = collector.median(metric.name);
        const auto baseline = collector.median(metric.name + "/baseline");
        if (!value || !baseline) continue;
        const double ratio = *value / *baseline;
        if (json) {
            out.push_back({{"name", metric.name},
                           {"value", *value},
                           {"unit", metric.unit},
                           {"baseline", *baseline},
                           {"ratio", ratio},
                           {"target", metric.target}});
        } else {
            std::cout << std::left << std::setw(24) << metric.name << std::right << std::fixed
                      << std::setprecision(1) << std::setw(14) << *value << std::setw(14)
                      << *baseline << std::setprecision(2) << std::setw(9) << ratio << std::setw(9)
                      << metric.target << (ratio <= metric.target ? "" : "  over target")
                      << (metric.unit == "ns" ? "" : "  (values in " + metric.unit + ")") << "\n";
        }
    }
    if (json) std::cout << boost::json::serialize(out) << "\n";
    // Facts go to standard error in JSON mode, so that standard output stays one JSON array.
    std::ostream& factStream = json ? std::cerr : std::cout;
    for (const auto& metric : metrics) {
        if (!metric.facts) continue;
        for (const auto& fact : metric.facts())
            factStream << "  " << fact.name << ": " << std::setprecision(1) << std::fixed << fact.value << " "
                       << fact.unit << "\n";
    }
    return 0;
}
