// The mapping between a parameter's range and a control's position: linear, logarithmic for frequency,
// rounding half up for integer units, the minimum when the range is empty; writes clamp to the range.
#include <gtest/gtest.h>

#include <cmath>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(ValueMapping, LinearLogarithmicAndInteger) {
    ParameterUiInfo info{};
    info.minimum = -2, info.maximum = 2, info.unit = kUnitGeneric;
    EXPECT_FLOAT_EQ(ValueToNormalised(info, 1), 0.75f);
    EXPECT_FLOAT_EQ(NormalisedToValue(info, 0.25f), -1.0f);
    info.minimum = 20, info.maximum = 20000, info.unit = kUnitFrequency;
    EXPECT_NEAR(ValueToNormalised(info, 632.455532f), 0.5f, 1e-6f);
    EXPECT_NEAR(NormalisedToValue(info, 0.5f), 632.455532f, 1e-3f);
    info.minimum = 0, info.maximum = 2, info.unit = kUnitIndexed;
    EXPECT_EQ(NormalisedToValue(info, 0.25f), 1.0f);
    EXPECT_EQ(NormalisedToValue(info, 0.2f), 0.0f);
    info.unit = kUnitBeats;
    EXPECT_EQ(NormalisedToValue(info, 0.75f), 2.0f);
    info.minimum = info.maximum = 3;
    EXPECT_EQ(ValueToNormalised(info, 3), 3.0f);
}

TEST(ValueMapping, IntegerUnitsAndClampedWrites) {
    EXPECT_TRUE(IsIntegerUnit(1));
    EXPECT_TRUE(IsIntegerUnit(2));
    EXPECT_TRUE(IsIntegerUnit(11));
    EXPECT_TRUE(IsIntegerUnit(23));
    EXPECT_FALSE(IsIntegerUnit(0));
    EXPECT_FALSE(IsIntegerUnit(8));
    DCRig rig;
    rig.manager.SetParameterValue(rig.multiplier, 7);
    EXPECT_EQ(rig.Value(rig.multiplier), 2.0f);
    rig.manager.SetParameterValue(rig.multiplier, -7);
    EXPECT_EQ(rig.Value(rig.multiplier), -2.0f);
}

TEST(ValueMapping, ControlFollowsParameterEachAnimate) {
    DCRig rig;
    rig.driver->Module().SetTableValue(rig.level, 0.3f);
    EXPECT_EQ(rig.panel.knob->normalised, 0.0f);
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(rig.panel.knob->normalised, 0.3f);
}

}  // namespace BR::Test
