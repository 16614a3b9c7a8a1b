// The LFO's presets: "Defaults" takes the table's defaults; "DIN sync (24)" names 41 values, all of
// them as listed, the rest from the defaults (0 for both "Reset By Note" rows).
#include <gtest/gtest.h>

#include "modules/simple/LFO.h"
#include "tests/support/Render.h"

TEST(LFOPresets, BothPresetsComplete) {
    auto driver = BR::Test::MakeDriver("lfo");
    BrelCorvaneBase& lfo = driver->Module();
    ASSERT_EQ(lfo.NumPresets(), 2);
    const BR::PresetDefinition& defaults = lfo.Presets()[0];
    EXPECT_STREQ(defaults.name, "Defaults");
    EXPECT_EQ(defaults.numValues, 0u);
    for (int k = 0; k < 43; ++k)
        EXPECT_EQ(defaults.values[k], lfo.ParameterTable()[k].defaultValue) << k;

    const BR::PresetDefinition& din = lfo.Presets()[1];
    EXPECT_STREQ(din.name, "DIN sync (24)");
    EXPECT_EQ(din.numValues, 41u);
    std::vector<float> expected(43, 0.0f);
    const std::vector<std::pair<const char*, float>> named = {
        {"Speed L", 5},
        {"Speed Multiplier L", 1},
        {"Sync L", 2},
        {"Beat Divisor L", 6},
        {"Beats L", 1},
        {"Triplet L", 1},
        {"Offset L", 0.5f},
        {"Square L", 0.5f},
        {"Pulse Width L", 50},
        {"Speed R", 5},
        {"Speed Multiplier R", 1},
        {"Sync R", 4},
        {"Beat Divisor R", 2},
        {"Beats R", 1},
        {"Offset R", 0.5f},
        {"Square R", 0.5f},
        {"Pulse Width R", 50},
        {"Swing L", 50},
        {"Swing R", 50},
    };
    for (const auto& [name, value] : named) {
        const int32_t index = driver->ParameterIndexByName(name);
        ASSERT_GT(index, 0) << name;
        expected[size_t(index - 1)] = value;
    }
    for (int k = 0; k < 43; ++k)
        EXPECT_EQ(din.values[k], expected[size_t(k)]) << lfo.ParameterTable()[k].name;
}
