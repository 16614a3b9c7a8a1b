// A block with a wrong channel count leaves the module's state unchanged: BeginBlock does not run,
// and the outputs keep what the host put there.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(WrongChannelCount, InputMismatchSkipsTheBlock) {
    ProbeModule module;
    ManualHost host(module, BR::kStemFormatMono, BR::kStemFormatStereo);
    module.ToAudioQueue().Write(64094u);
    float in[2][16] = {}, out[2][16];
    for (auto& c : out)
        for (float& v : c)
            v = 3.0f;
    host.Render({in[0], in[1]}, {out[0], out[1]}, 16, {Packet(0, {0x90, 60, 100})});
    EXPECT_TRUE(module.calls.empty());
    for (auto& c : out)
        for (float v : c)
            EXPECT_EQ(v, 3.0f);
    // Neither queue moved: the command is still waiting and no MIDI was taken in.
    EXPECT_EQ(module.ToAudioQueue().ReadIndex(), -1);
    EXPECT_EQ(module.MidiToAudioQueue().WriteIndex(), 0);
}

TEST(WrongChannelCount, OutputMismatchSkipsTheBlock) {
    ProbeModule module;
    ManualHost host(module, BR::kStemFormatStereo, BR::kStemFormatMono);
    float in[2][16] = {}, out[2][16] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 16);
    EXPECT_TRUE(module.calls.empty());
}

TEST(WrongChannelCount, SidechainAndAuxModulesAreNotChecked) {
    ProbeModule module(ProbeLayout{6, 2, 4, 0});
    ManualHost host(module, BR::kStemFormatMono, BR::kStemFormatStereo);
    float in[2][16] = {}, out[2][16] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 16);
    EXPECT_FALSE(module.calls.empty());
}
