// Whether an input shares its buffer with an output is worked out when a port is connected to a new
// buffer, not at every block: an input moved onto an output's buffer, an output moved onto an
// input's, each moved back, and an output without a buffer are all seen at the next block.
#include <gtest/gtest.h>

#include <vector>

#include "tests/host/lv2/support/Lv2TestHost.h"

namespace {

constexpr uint32_t kFrames = 256;

// The probe's output 6 is input 1 + 2 * sidechain 1 + 4 * sidechain 2, and its output 1 (the gate,
// 0 without a note) is written before input 1 is read: a shared buffer read in place gives 0 there.
void ExpectSum(const BR::Test::Lv2TestHost& host, const std::vector<float>& in1, const char* what) {
    for (uint32_t i = 0; i < kFrames; ++i)
        ASSERT_EQ(host.outputs[5][i], in1[i] + 2.0f * host.inputs[2][i] + 4.0f * host.inputs[3][i])
            << what << ", frame " << i;
}

}  // namespace

TEST(Lv2InPlace, DecidedAgainWhenAPortMovesToAnotherBuffer) {
    BR::Test::HostOptions options;
    options.maxBlockLength = 512;
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    ASSERT_TRUE(host.Valid());
    BR::Lv2Instance& instance = host.Instance();
    const BR::Lv2PortLayout& layout = instance.Layout();
    for (size_t c = 0; c < 4; ++c)
        for (uint32_t i = 0; i < kFrames; ++i)
            host.inputs[c][i] = float(c + 1) * 0.001f * float(i % 7 + 1);
    host.Run(kFrames);  // every port connected, apart
    ExpectSum(host, host.inputs[0], "apart");

    // Input 1 moves onto output 1's buffer; the outputs stay where they are.
    std::vector<float> signal(kFrames);
    for (uint32_t i = 0; i < kFrames; ++i)
        signal[i] = host.outputs[0][i] = 0.01f * float(i % 5 + 1);
    instance.ConnectPort(layout.firstAudioIn, host.outputs[0].data());
    instance.Run(kFrames);
    ExpectSum(host, signal, "input moved onto an output");
    EXPECT_EQ(host.outputs[0][0], 0.0f);  // the gate went to the shared buffer

    // Back to its own buffer: read there again.
    instance.ConnectPort(layout.firstAudioIn, host.inputs[0].data());
    instance.Run(kFrames);
    ExpectSum(host, host.inputs[0], "input moved back");

    // Output 1 moves onto input 1's buffer; the inputs stay where they are.
    const std::vector<float> before = host.inputs[0];
    instance.ConnectPort(layout.firstAudioOut, host.inputs[0].data());
    instance.Run(kFrames);
    ExpectSum(host, before, "output moved onto an input");
    EXPECT_EQ(host.inputs[0][0], 0.0f);

    // An output without a buffer: nothing is rendered until it has one again.
    for (uint32_t i = 0; i < kFrames; ++i)
        host.inputs[0][i] = before[i];
    instance.ConnectPort(layout.firstAudioOut, host.outputs[0].data());
    instance.ConnectPort(layout.firstAudioOut + 1, nullptr);
    std::fill(host.outputs[5].begin(), host.outputs[5].end(), 7.0f);
    instance.Run(kFrames);
    EXPECT_EQ(host.outputs[5][0], 7.0f);
    EXPECT_EQ(host.outputs[5][kFrames - 1], 7.0f);
    instance.ConnectPort(layout.firstAudioOut + 1, host.outputs[1].data());
    instance.Run(kFrames);
    ExpectSum(host, host.inputs[0], "output connected again");
}
