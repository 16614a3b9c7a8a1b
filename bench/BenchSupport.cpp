// Module rig and the ratio-reporting main of the benchmarks.
#include "BenchSupport.h"

#include <cmath>
#include <cstdio>
#include <map>

#include "modules/ModuleFactory.h"

namespace BR::Bench {

ModuleRig::ModuleRig(const std::string& stem, uint32_t blockSize_, float sampleRate) : blockSize(blockSize_) {
    const CatalogueEntry* entry = FindCatalogueEntry(stem);
    driver = std::make_unique<HostDriver>(CreateModule(stem), *entry, sampleRate,
                                          std::max<uint32_t>(blockSize, 1024));
    in.assign(size_t(driver->NumHostInputs()), std::vector<float>(blockSize));
    out.assign(size_t(driver->NumHostOutputs()), std::vector<float>(blockSize));
    for (auto& c : in) {
        for (uint32_t i = 0; i < blockSize; ++i)
            c[i] = 0.5f * std::sin(0.01f * float(i));
        inPointers.push_back(c.data());
    }
    for (auto& c : out)
        outPointers.push_back(c.data());
}

void ModuleRig::Render() {
    driver->Process(inPointers.data(), outPointers.data(), blockSize, nullptr, 0);
}

namespace {
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration) times[run.benchmark_name()] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> times;
};
}  // namespace

int RunWithRatios(int argc, char** argv, const std::vector<std::pair<std::string, std::string>>& pairs) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nRatios measured in this run (module CPU time / plain loop CPU time):\n");
    for (const auto& [name, baseline] : pairs) {
        auto a = reporter.times.find(name), b = reporter.times.find(baseline);
        if (a == reporter.times.end() || b == reporter.times.end() || b->second <= 0) continue;
        std::printf("  %-40s / %-40s = %.2f\n", name.c_str(), baseline.c_str(), a->second / b->second);
    }
    benchmark::Shutdown();
    return 0;
}

}  // namespace BR::Bench
