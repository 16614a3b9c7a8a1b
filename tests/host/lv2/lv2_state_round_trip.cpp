// The state extension keeps "elck" and "Chnk" as binary atom:Chunk values; a restore brings every
// parameter back exactly, and stands against control ports still at their old values.
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>

#include "tests/host/lv2/support/Lv2TestHost.h"

namespace {
const char* kControlsKey = "urn:brelmont:corvane:state#elck";
const char* kChunkyKey = "urn:brelmont:corvane:state#Chnk";
}  // namespace

TEST(Lv2State, SavesBothChunksAsBinary) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    host.Run(16);
    BR::Test::Lv2TestHost::StateMap state;
    ASSERT_EQ(host.Save(state), LV2_STATE_SUCCESS);
    ASSERT_EQ(state.size(), 2u);
    const LV2_URID chunk = host.Map(LV2_ATOM__Chunk);
    EXPECT_EQ(state.at(kControlsKey).type, chunk);
    EXPECT_EQ(state.at(kChunkyKey).type, chunk);
    // No Learner, no extra state: the image is magic "Brel" (bytes "lerB"), version 1, length 0.
    const std::vector<uint8_t> empty = {'l', 'e', 'r', 'B', 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(state.at(kChunkyKey).bytes, empty);

    BR::ChunkRecord record;
    uint32_t size = 0;
    host.Module().GetChunkSize(BR::kChunkIdControls, &size);
    host.Module().GetChunk(BR::kChunkIdControls, &record);
    EXPECT_EQ(state.at(kControlsKey).bytes, record.data);
}

TEST(Lv2State, RestoreBringsEveryParameterBackExactly) {
    BR::Test::Lv2TestHost::StateMap state;
    std::vector<float> before;
    {
        BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
        host.Control("output_positive_l") = 0.123456789f;
        host.Control("enabled") = 0.0f;
        host.Run(16);
        host.Module().SetTableValue(7, -1.9876543f);  // set by another source, not through a port
        for (int32_t i = 0; i < host.Module().GetNumberOfParameters(); ++i)
            before.push_back(host.Module().GetParameter(i)->GetValueAsFloat());
        ASSERT_EQ(host.Save(state), LV2_STATE_SUCCESS);
    }
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    host.Run(16);
    ASSERT_EQ(host.Restore(state), LV2_STATE_SUCCESS);
    // The host restores its port values too; they agree with the chunk, save "Multiplier R", which
    // the port never carried: the chunk stands.
    host.Control("output_positive_l") = 0.123456789f;
    host.Control("enabled") = 0.0f;
    host.Run(16);
    for (int32_t i = 0; i < host.Module().GetNumberOfParameters(); ++i)
        EXPECT_EQ(host.Module().GetParameter(i)->GetValueAsFloat(), before[size_t(i)]) << "parameter " << i;
    // A port the host moves after the restore is applied again.
    host.Control("multiplier_r") = 0.5f;
    host.Run(16);
    EXPECT_EQ(host.Module().GetTableValue(7), 0.5f);
}

TEST(Lv2State, DamagedOrMistypedChunksLeaveTheModuleAlone) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    host.Module().SetTableValue(0, 0.5f);
    BR::Test::Lv2TestHost::StateMap state;
    ASSERT_EQ(host.Save(state), LV2_STATE_SUCCESS);

    BR::Test::Lv2TestHost::StateMap damaged = state;
    damaged[kControlsKey].bytes.resize(damaged[kControlsKey].bytes.size() - 3);
    host.Module().SetTableValue(0, 0.25f);
    EXPECT_EQ(host.Restore(damaged), LV2_STATE_ERR_UNKNOWN);
    EXPECT_EQ(host.Module().GetTableValue(0), 0.25f);

    BR::Test::Lv2TestHost::StateMap mistyped = state;
    mistyped[kControlsKey].type = host.Map(LV2_ATOM__String);
    EXPECT_EQ(host.Restore(mistyped), LV2_STATE_ERR_BAD_TYPE);
    EXPECT_EQ(host.Module().GetTableValue(0), 0.25f);

    EXPECT_EQ(host.Restore({}), LV2_STATE_SUCCESS);  // a state without our keys changes nothing
    EXPECT_EQ(host.Module().GetTableValue(0), 0.25f);
}
