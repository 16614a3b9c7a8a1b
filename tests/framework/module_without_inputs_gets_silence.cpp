// A module with no inputs still receives two input pointers, both at the silence buffer.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(ModuleWithoutInputs, ReceivesTwoPointersAtSilence) {
    ProbeModule module(ProbeLayout{0, 6, 0, 2});
    ManualHost host(module, BR::kStemFormatStereo, BR::kStemFormatStereo);
    std::vector<std::vector<float>> out(6, std::vector<float>(64, 9.0f));
    std::vector<float*> outputs;
    for (auto& c : out)
        outputs.push_back(c.data());
    host.Render({}, outputs, 64);

    ASSERT_EQ(module.sliceInputs.size(), 1u);
    ASSERT_EQ(module.sliceInputs[0].size(), 2u);
    EXPECT_EQ(module.sliceInputs[0][0], module.sliceInputs[0][1]);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(module.sliceInputs[0][0][i], 0.0f);
        EXPECT_EQ(out[5][size_t(i)], 0.5f);
    }
}
