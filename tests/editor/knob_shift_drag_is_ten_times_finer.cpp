// With Shift a knob moves 0.0005 per pixel: 200 px give 0.1.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(KnobShiftDrag, TwoHundredPixelsGiveOneTenth) {
    DCRig rig;
    rig.Drag(rig.panel.knob, 200, kModShift);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.1f);
    EXPECT_NEAR(rig.Value(rig.level), 0.1f, 1e-7f);
}

}  // namespace BR::Test
