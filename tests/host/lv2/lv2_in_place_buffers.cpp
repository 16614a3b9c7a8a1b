// A host may hand the same buffer to an input and an output: the module still reads its inputs as
// they were, since they are copied before the block.
#include <gtest/gtest.h>

#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2InPlace, InputsSharedWithOutputsAreReadBeforeWriting) {
    BR::Test::HostOptions options;
    options.maxBlockLength = 512;
    BR::Test::Lv2TestHost separate(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    BR::Test::Lv2TestHost shared(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    shared.inPlace = true;
    for (BR::Test::Lv2TestHost* host : {&separate, &shared}) {
        for (size_t c = 0; c < 4; ++c)
            for (size_t i = 0; i < 1500; ++i)
                host->inputs[c][i] = float(c + 1) * 0.001f * float(i % 7);
        host->AddMidi(3, {0x90, 60, 100});
        host->Run(1500);
    }
    // Output 6 is in 1 + 2 * sidechain 1 + 4 * sidechain 2; in place, in 1 shares output 1's buffer.
    for (size_t i = 0; i < 1500; ++i) {
        const float expected =
            0.001f * float(i % 7) + 2.0f * 0.003f * float(i % 7) + 4.0f * 0.004f * float(i % 7);
        ASSERT_EQ(separate.outputs[5][i], expected) << i;
        ASSERT_EQ(shared.outputs[5][i], expected) << i;
        ASSERT_EQ(shared.inputs[0][i], separate.outputs[0][i]) << i;  // output 1 went to the shared buffer
    }
}
