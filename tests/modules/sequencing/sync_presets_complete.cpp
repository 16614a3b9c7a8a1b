// Sync's presets: "Defaults" has no values of its own and takes the table's defaults; "FSK Tape Sync"
// carries all 25 values in table order, the -1 of "Mute Clocks" included.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/Render.h"

TEST(SyncPresets, BothPresetsComplete) {
    auto driver = BR::Test::MakeDriver("sync");
    BrelCorvaneBase& sync = driver->Module();
    ASSERT_EQ(sync.NumPresets(), 2);
    const BR::PresetDefinition& defaults = sync.Presets()[0];
    EXPECT_STREQ(defaults.name, "Defaults");
    EXPECT_EQ(defaults.numValues, 0u);
    for (int k = 0; k < 25; ++k)
        EXPECT_EQ(defaults.values[k], sync.ParameterTable()[k].defaultValue) << k;

    const BR::PresetDefinition& fsk = sync.Presets()[1];
    EXPECT_STREQ(fsk.name, "FSK Tape Sync");
    EXPECT_EQ(fsk.numValues, 25u);
    const float expected[25] = {3, 1, 0, 50, 0,  0, 24, 0, 0, -1, 1, 0, 1,
                                0, 0, 0, 1,  -1, 1, 0,  1, 5, 2,  0, 1};
    for (int k = 0; k < 25; ++k)
        EXPECT_EQ(fsk.values[k], expected[k]) << sync.ParameterTable()[k].name;
    EXPECT_EQ(fsk.values[BrelCorvaneSync::kMuteClocks], -1.0f);
    EXPECT_EQ(fsk.values[BrelCorvaneSync::kEnableFSK], 1.0f);
    EXPECT_EQ(fsk.values[BrelCorvaneSync::kSkipFirstClock], 1.0f);
    EXPECT_EQ(fsk.values[BrelCorvaneSync::kPPQN], 24.0f);
}
