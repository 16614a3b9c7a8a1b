// With bypass on, ProcessSlice still runs, and the output is the input, or silence where the host
// has fewer inputs than the module has outputs.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(Bypass, SliceRunsAndOutputEqualsInput) {
    ProbeModule module;
    ManualHost host(module);
    module.SetParameterValue(0, 1.0f);
    std::vector<float> inL(32), inR(32), outL(32, 7.0f), outR(32, 7.0f);
    for (int i = 0; i < 32; ++i) {
        inL[size_t(i)] = 0.01f * float(i);
        inR[size_t(i)] = -0.02f * float(i);
    }
    host.Render({inL.data(), inR.data()}, {outL.data(), outR.data()}, 32);
    ASSERT_EQ(module.calls.size(), 3u);
    EXPECT_EQ(module.calls[1].what, "Slice");
    EXPECT_EQ(outL, inL);
    EXPECT_EQ(outR, inR);
}

TEST(Bypass, OutputsBeyondTheHostInputsGetSilence) {
    // A mono input and six outputs with aux stems, like the Voice Controller: outputs 1 to 5 become silence.
    ProbeModule module(ProbeLayout{1, 6, 0, 2});
    ManualHost host(module, BR::kStemFormatMono, BR::kStemFormatStereo);
    module.SetParameterValue(0, 1.0f);
    std::vector<float> inL(16, 0.25f);
    std::vector<std::vector<float>> out(6, std::vector<float>(16, 3.0f));
    std::vector<float*> outputs;
    for (auto& c : out)
        outputs.push_back(c.data());
    host.Render({inL.data()}, outputs, 16);
    EXPECT_EQ(module.calls[1].what, "Slice");
    EXPECT_EQ(out[0], inL);
    for (int c = 1; c < 6; ++c)
        EXPECT_EQ(out[size_t(c)], std::vector<float>(16, 0.0f));
}
