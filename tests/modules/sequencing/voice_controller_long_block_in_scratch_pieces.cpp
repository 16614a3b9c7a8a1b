// The scratch signals are sized by SetMaxBlockSize; a block longer than that still renders, in pieces,
// the same samples as short blocks do.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"
#include "tests/support/ProbeModule.h"

TEST(VoiceControllerScratch, LongerBlockThanAnnounced) {
    BR::Test::VoiceRig small(48000.0f, 64);
    BR::Test::VoiceRig reference(48000.0f, 1024);
    for (auto* rig : {&small, &reference}) {
        rig->Set("Output 1 Env1", 0.5f);
        rig->Set("Portamento Mode", 1);
        rig->Set("Output 2 Smoothing", 2.0f);
    }
    const auto expected = reference.Render(1000, 1000, {{0, BR::Test::Midi(0x90, 60, 100)}});

    BR::Test::ManualHost host(small.vc, BR::kStemFormatMono, BR::kStemFormatStereo);
    std::vector<std::vector<float>> buffers(7, std::vector<float>(1000, 0.0f));
    std::vector<float*> outputs;
    for (int c = 1; c < 7; ++c)
        outputs.push_back(buffers[size_t(c)].data());
    host.Render({buffers[0].data()}, outputs, 1000, {BR::Test::Packet(0, {0x90, 60, 100})});
    for (int c = 0; c < 6; ++c)
        for (uint32_t i = 0; i < 1000; ++i)
            ASSERT_EQ(outputs[size_t(c)][i], expected[size_t(c)][i]) << c << " " << i;
}
