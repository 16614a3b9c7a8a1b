// Master distribution needs a sample for its marker: events stamped at or after the block's end find
// none left and are lost, while a mono instance still plays them.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"
#include "tests/support/ProbeModule.h"

namespace {
void RenderWithLateNote(BR::Test::VoiceController& vc) {
    BR::Test::ManualHost host(vc, BR::kStemFormatMono, BR::kStemFormatStereo);
    std::vector<std::vector<float>> buffers(7, std::vector<float>(64, 0.0f));
    std::vector<float*> outputs;
    for (int c = 1; c < 7; ++c)
        outputs.push_back(buffers[size_t(c)].data());
    host.Render({buffers[0].data()}, outputs, 64, {BR::Test::Packet(64, {0x90, 60, 100})});
}
}  // namespace

TEST(VoiceControllerMaster, EventsAtTheBlockEndAreLost) {
    BR::Test::VoiceRig master;
    master.Set("Poly Mode", 1);
    RenderWithLateNote(master.vc);
    EXPECT_EQ(master.vc.HeldCount(), 0);
    EXPECT_EQ(master.vc.EventWrite(), 0);
    EXPECT_EQ(master.vc.BatchWrite(), 0);

    BR::Test::VoiceRig mono;
    RenderWithLateNote(mono.vc);
    EXPECT_EQ(mono.vc.HeldCount(), 1);
    EXPECT_TRUE(mono.vc.GateOpen());
}
