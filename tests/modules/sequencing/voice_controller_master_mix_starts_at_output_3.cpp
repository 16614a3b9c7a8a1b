// In a master, outputs 1 and 2 carry the event stream (pass-through and markers, and zero); the mix
// and the smoothing act on outputs 3 to 6 only.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, MixStartsAtOutputThree) {
    BR::Test::VoiceRig master;
    master.Set("Poly Mode", 1);
    master.Set("Output 1 Offset", 0.3f);
    master.Set("Output 2 Offset", 0.3f);
    master.Set("Output 1 Smoothing", 100.0f);
    master.Set("Output 3 Offset", 0.25f);
    master.Set("Output 3 Env1", 0.0f);
    master.Set("Output 4 Gate", 1.0f);
    master.Set("Output 4 Env2", 0.0f);
    const BR::Test::Channels in = {std::vector<float>(512, 0.125f)};
    const auto out = master.Render(512, 256, {{200, BR::Test::Midi(0x90, 60, 100)}}, in);
    for (uint32_t i = 0; i < 512; ++i) {
        ASSERT_EQ(out[0][i], i == 200 ? BrelCorvaneVoiceController::MarkerSample(0) : 0.125f) << i;
        ASSERT_EQ(out[1][i], 0.0f) << i;
        ASSERT_EQ(out[2][i], 0.25f) << i;
    }
    // The master's own outputs follow its newest note from the marker's sample on.
    EXPECT_EQ(out[3][199], 0.0f);
    EXPECT_EQ(out[3][200], 1.0f);
}
