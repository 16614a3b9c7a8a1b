// The bench subcommand: how many times faster than real time each available module renders.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include "InfoCommands.h"
#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"

namespace BR {

int RunBench(double seconds, double sampleRate, unsigned blockSize, const std::string& only) {
    std::printf("module\tframes\tseconds\trealtime_factor\tns_per_frame\n");
    const CatalogueEntry* entries = CatalogueEntries();
    for (int i = 0; i < kNumCatalogueEntries; ++i) {
        const CatalogueEntry& entry = entries[i];
        if (!only.empty() && FindCatalogueEntry(only) != &entry) continue;
        std::unique_ptr<BrelCorvaneBase> module = CreateModule(entry.stem);
        if (!module) continue;
        HostDriver driver(std::move(module), entry, float(sampleRate), blockSize);
        const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
        // A slow sine on every input so that input-driven modules have work to do.
        std::vector<std::vector<float>> in(numIn, std::vector<float>(blockSize));
        std::vector<std::vector<float>> out(numOut, std::vector<float>(blockSize));
        std::vector<const float*> inPointers;
        std::vector<float*> outPointers;
        for (auto& c : in)
            inPointers.push_back(c.data());
        for (auto& c : out)
            outPointers.push_back(c.data());
        for (auto& c : in)
            for (unsigned f = 0; f < blockSize; ++f)
                c[f] = float(0.5 * std::sin(f * 0.01));
        const int64_t total = int64_t(seconds * sampleRate);
        const auto start = std::chrono::steady_clock::now();
        for (int64_t done = 0; done < total; done += blockSize)
            driver.Process(inPointers.data(), outPointers.data(), blockSize, nullptr, 0);
        const double elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const double audioSeconds = double(total) / sampleRate;
        std::printf("%s\t%lld\t%.3f\t%.1f\t%.2f\n", entry.stem, (long long)total, audioSeconds,
                    audioSeconds / elapsed, elapsed * 1e9 / double(total));
    }
    return 0;
}

}  // namespace BR
