// With sidechains, entries 0 and 1 are the host's first two inputs and entry 2 + k is the channel
// that sidechain k's index names, or silence when the index is 0.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(SidechainInputs, IndexFieldsChooseChannelsOrSilence) {
    ProbeModule module(ProbeLayout{6, 2, 4, 0});
    ManualHost host(module);
    std::vector<std::vector<float>> in(6, std::vector<float>(8));
    std::vector<float*> inputs;
    for (size_t c = 0; c < in.size(); ++c) {
        std::fill(in[c].begin(), in[c].end(), float(c + 1));
        inputs.push_back(in[c].data());
    }
    host.sidechainIndex[0] = 3;
    host.sidechainIndex[1] = 0;
    host.sidechainIndex[2] = 2;
    host.sidechainIndex[3] = 5;
    float out[2][8] = {};
    host.Render(inputs, {out[0], out[1]}, 8);
    ASSERT_EQ(module.sliceInputs.size(), 1u);
    const auto& seen = module.sliceInputs[0];
    ASSERT_EQ(seen.size(), 6u);
    EXPECT_EQ(seen[0], inputs[0]);
    EXPECT_EQ(seen[1], inputs[1]);
    EXPECT_EQ(seen[2], inputs[3]);
    EXPECT_EQ(seen[3][0], 0.0f);  // index 0: silence
    EXPECT_EQ(seen[4], inputs[2]);
    EXPECT_EQ(seen[5], inputs[5]);
}

TEST(SidechainInputs, PlainModulesGetTheHostPointers) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][8] = {}, out[2][8] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 8);
    EXPECT_EQ(module.sliceInputs[0][0], in[0]);
    EXPECT_EQ(module.sliceInputs[0][1], in[1]);
}
