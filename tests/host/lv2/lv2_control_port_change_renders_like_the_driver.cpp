// A control port moved between two runs takes effect at the next block exactly as the driver's setter
// does, for every built module: the plug-in renders bit for bit what the driver renders with the same
// rows changed at the same block boundaries.
#include <gtest/gtest.h>

#include "host/lv2/Lv2PortLayout.h"
#include "tests/host/lv2/support/Lv2TestHost.h"
#include "tests/support/GoldenRenders.h"

TEST(Lv2Controls, PortChangesBetweenRunsRenderLikeTheDriver) {
    constexpr uint32_t kBlock = 64, kBlocks = 48;
    size_t compared = 0;
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases()) {
        if (goldenCase.changes.empty() || goldenCase.transport) continue;
        SCOPED_TRACE(goldenCase.name);
        BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:" + goldenCase.stem);
        ASSERT_TRUE(host.Valid());
        auto driver = BR::Test::MakeDriver(goldenCase.stem);
        for (const auto& [row, value] : goldenCase.settings) {
            host.Control(BR::Lv2SymbolFromName(row)) = value;
            driver->SetParameterByName(row, value);
        }
        std::vector<std::vector<float>> in(size_t(driver->NumHostInputs()), std::vector<float>(kBlock));
        std::vector<std::vector<float>> out(size_t(driver->NumHostOutputs()), std::vector<float>(kBlock));
        std::vector<const float*> inPointers(std::max<size_t>(in.size(), 1), nullptr);
        std::vector<float*> outPointers;
        for (auto& c : out)
            outPointers.push_back(c.data());
        for (uint32_t b = 0; b < kBlocks; ++b) {
            // The case's changes, spread over the run: change k lands before block 8 + 8k.
            for (size_t k = 0; k < goldenCase.changes.size(); ++k) {
                if (b != 8 + 8 * k) continue;
                const BR::Test::GoldenChange& change = goldenCase.changes[k];
                host.Control(BR::Lv2SymbolFromName(change.row)) = change.value;
                driver->SetParameterByName(change.row, change.value);
            }
            for (size_t c = 0; c < in.size(); ++c) {
                for (uint32_t i = 0; i < kBlock; ++i)
                    in[c][i] = float(((b * kBlock + i) * (c + 3)) % 200) * 0.005f - 0.5f;
                std::copy(in[c].begin(), in[c].end(), host.inputs[c].begin());
                inPointers[c] = in[c].data();
            }
            host.Run(kBlock);
            driver->Process(inPointers.data(), outPointers.data(), kBlock, nullptr, 0);
            for (size_t c = 0; c < out.size(); ++c)
                for (uint32_t i = 0; i < kBlock; ++i)
                    ASSERT_EQ(host.outputs[c][i], out[c][i])
                        << "block " << b << " channel " << c << " frame " << i;
            EXPECT_EQ(host.lastRunAllocations, 0u);
        }
        ++compared;
    }
    EXPECT_GE(compared, 5u);
}
