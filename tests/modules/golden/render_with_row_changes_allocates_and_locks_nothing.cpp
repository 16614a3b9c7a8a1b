// Rendering blocks between which rows change allocates nothing and takes no lock: every built
// module, with a row stored (as a host does on its audio thread) before each block, renders while
// another thread holds the registry's lock, and the allocation counter stays at zero.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "framework/InstanceRegistry.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GoldenRenders.h"

namespace {

TEST(RenderRealTime, RowChangesBetweenBlocksAllocateNothingAndTakeNoLock) {
    std::vector<std::string> covered;
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases()) {
        if (goldenCase.changes.empty()) continue;
        SCOPED_TRACE(goldenCase.name);
        auto driver = BR::Test::MakeDriver(goldenCase.stem, 48000.0f, 1024);
        ASSERT_NE(driver, nullptr);
        for (const auto& [row, value] : goldenCase.settings)
            driver->SetParameterByName(row, value);
        BR::DriverTransport transport;
        driver->SetTransport(&transport);
        const uint32_t block = 64;
        std::vector<std::vector<float>> in(size_t(driver->NumHostInputs()), std::vector<float>(block, 0.25f));
        std::vector<std::vector<float>> out(size_t(driver->NumHostOutputs()), std::vector<float>(block));
        std::vector<const float*> inPointers;
        std::vector<float*> outPointers;
        for (auto& c : in)
            inPointers.push_back(c.data());
        for (auto& c : out)
            outPointers.push_back(c.data());
        if (inPointers.empty()) inPointers.push_back(nullptr);
        const uint8_t on[3] = {0x90, 60, 100}, off[3] = {0x80, 60, 0};
        const BR::TimedMidi midi[2] = {{3, 3, on}, {40, 3, off}};
        std::vector<int32_t> parameters;
        std::vector<float> values, defaults;
        for (const BR::Test::GoldenChange& change : goldenCase.changes) {
            parameters.push_back(driver->ParameterIndexByName(change.row));
            ASSERT_GT(parameters.back(), 0) << change.row;
            values.push_back(change.value);
            defaults.push_back(driver->Module().GetParameter(parameters.back())->GetValueAsFloat());
        }
        driver->Process(inPointers.data(), outPointers.data(), block, midi, 2);  // first-block setup

        std::atomic<bool> held{false}, done{false};
        std::thread holder([&] {
            std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
            held = true;
            while (!done)
                std::this_thread::yield();
        });
        while (!held)
            std::this_thread::yield();
        uint64_t allocations = 0;
        const uint64_t readsBefore = driver->Module().ParameterReadCount();
        for (uint32_t k = 0; k < 48; ++k) {
            const size_t c = k % parameters.size();
            driver->Module().StoreParameterValue(parameters[c],
                                                 (k / parameters.size()) % 2 ? defaults[c] : values[c]);
            BR::Test::AllocationScope scope;
            driver->Process(inPointers.data(), outPointers.data(), block, midi, 2);
            allocations += scope.Count();
        }
        done = true;
        holder.join();
        EXPECT_EQ(allocations, 0u);
        // Every one of those blocks saw its changed row.
        EXPECT_EQ(driver->Module().ParameterReadCount() - readsBefore, 48u);
        covered.push_back(goldenCase.stem);
    }
    for (const char* stem :
         {"dc", "Function", "lfo", "steplfo", "sync", "trigger", "voicecontroller", "quantizer",
          "ardentcontroller", "basaltcontroller", "smux", "follower", "cvtomidi", "acencoder", "cvinput"})
        EXPECT_NE(std::find(covered.begin(), covered.end(), stem), covered.end()) << stem;
}

// A block with no stored change reads no row: the cost of a block follows what changed in it.
TEST(RenderRealTime, BlocksWithoutChangesReadNoRow) {
    auto driver = BR::Test::MakeDriver("steplfo", 48000.0f, 1024);
    std::vector<float> a(32), b(32);
    const float* in[6] = {a.data(), a.data(), a.data(), a.data(), a.data(), a.data()};
    float* out[2] = {a.data(), b.data()};
    driver->Process(in, out, 32, nullptr, 0);
    const uint64_t reads = driver->Module().ParameterReadCount();
    EXPECT_GE(reads, 1u);
    for (int k = 0; k < 10; ++k)
        driver->Process(in, out, 32, nullptr, 0);
    EXPECT_EQ(driver->Module().ParameterReadCount(), reads);
    driver->SetParameterByName("Offset L", 0.5f);
    driver->Process(in, out, 32, nullptr, 0);
    EXPECT_EQ(driver->Module().ParameterReadCount(), reads + 1);
    EXPECT_TRUE(driver->Module().RowChanged(9));  // "Offset L"
    EXPECT_FALSE(driver->Module().RowChanged(10));
    driver->Process(in, out, 32, nullptr, 0);
    EXPECT_FALSE(driver->Module().RowsChanged());
}

}  // namespace
