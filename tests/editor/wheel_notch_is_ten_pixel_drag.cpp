// One wheel notch of 120 units of delta (lines = delta × 0.008333334) acts as a 10-pixel drag.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(WheelNotch, ActsAsTenPixelDrag) {
    DCRig wheel, drag;
    const float lines = 120 * 0.008333334f;
    wheel.manager.MouseWheel(wheel.Centre(wheel.panel.knob), lines, 0);
    drag.Drag(drag.panel.knob, 10);
    EXPECT_FLOAT_EQ(wheel.Value(wheel.level), 0.05f);
    EXPECT_EQ(wheel.Value(wheel.level), drag.Value(drag.level));
    wheel.manager.MouseWheel(wheel.Centre(wheel.panel.knob), -lines, 0);
    EXPECT_NEAR(wheel.Value(wheel.level), 0.0f, 1e-6f);
    EXPECT_EQ(wheel.manager.pressedElement, nullptr);
    EXPECT_EQ(wheel.manager.editedParameter, -1);
}

}  // namespace BR::Test
