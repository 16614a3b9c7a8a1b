// Only six sidechain index fields exist in a render record. A module that declares more (eight, as the
// largest combiner does) is served six; its input pointers behind them read silence, never garbage.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(SidechainInputs, EntriesBeyondTheSixthReadSilence) {
    ProbeModule module(ProbeLayout{10, 2, 8, 0});
    ManualHost host(module);
    std::vector<std::vector<float>> in(8, std::vector<float>(16));
    std::vector<float*> inputs;
    for (size_t c = 0; c < in.size(); ++c) {
        std::fill(in[c].begin(), in[c].end(), float(c + 1));
        inputs.push_back(in[c].data());
    }
    for (int k = 0; k < BR::kMaxSidechains; ++k)
        host.sidechainIndex[k] = 2 + (k % 6);
    float out[2][16] = {};
    host.Render(inputs, {out[0], out[1]}, 16);

    ASSERT_EQ(module.sliceInputs.size(), 1u);
    const auto& seen = module.sliceInputs[0];
    ASSERT_EQ(seen.size(), 10u);
    EXPECT_EQ(seen[0], inputs[0]);
    EXPECT_EQ(seen[1], inputs[1]);
    for (size_t k = 0; k < 6; ++k)
        EXPECT_EQ(seen[2 + k], inputs[2 + k]) << k;
    for (size_t entry = 8; entry < 10; ++entry) {
        ASSERT_NE(seen[entry], nullptr) << entry;
        for (int i = 0; i < 16; ++i)
            ASSERT_EQ(seen[entry][i], 0.0f) << entry;
    }
}
