// Under Xvfb with synthetic input through XTest: a 200-pixel drag turns the knob to exactly 1.0, with
// Shift to 0.1; a wheel notch acts as a 10-pixel drag; a double click restores the default. Each change
// reaches the module's parameter object.
#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "support/WindowRigs.h"

namespace BR::Test {

TEST(WindowKnobGestures, DragShiftWheelAndDoubleClick) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    int x = 0, y = 0;
    w.Centre(w.rig->panel.knob, x, y);
    w.rig->MoveTo(x, y);
    EXPECT_EQ(w.rig->manager->hoveredParameter, w.level);
    w.rig->Press();
    w.rig->MoveTo(x, y - 120);
    w.rig->MoveTo(x, y - 200);
    w.rig->Release();
    EXPECT_EQ(w.Value(w.level), 1.0f);
    EXPECT_EQ(w.driver->Module().GetParameter(w.level + 1)->GetValueAsFloat(), 1.0f);

    w.driver->Module().SetTableValue(w.level, 0.0f);
    w.rig->MoveTo(x, y);
    w.rig->Key(XK_Shift_L, true);
    w.rig->Press();
    w.rig->MoveTo(x, y - 200);
    w.rig->Release();
    w.rig->Key(XK_Shift_L, false);
    EXPECT_NEAR(w.Value(w.level), 0.1f, 1e-6f);

    w.driver->Module().SetTableValue(w.level, 0.0f);
    w.rig->MoveTo(x, y);
    w.rig->Press(4);
    w.rig->Release(4);
    EXPECT_FLOAT_EQ(w.Value(w.level), 0.05f);
    w.rig->Press(5);
    w.rig->Release(5);
    EXPECT_NEAR(w.Value(w.level), 0.0f, 1e-6f);

    int mx = 0, my = 0;
    w.Centre(w.rig->panel.secondKnob, mx, my);
    w.driver->Module().SetTableValue(w.multiplier, 2.0f);
    w.rig->MoveTo(mx, my);
    w.rig->Press();
    w.rig->Release();
    EXPECT_EQ(w.Value(w.multiplier), 2.0f);  // a single click changes nothing
    w.rig->Press();
    w.rig->Release();
    EXPECT_EQ(w.Value(w.multiplier), 1.0f);
}

TEST(WindowKnobGestures, OutsideChangeMovesControlNextFrame) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    int width = 0, height = 0;
    const std::vector<uint8_t> before = w.rig->Grab(width, height);
    // As OSC or the host would: straight through the parameter object.
    w.driver->Module().GetParameter(w.level + 1)->SetValue(0.75f);
    ASSERT_TRUE(w.rig->WaitFrames(2));
    EXPECT_FLOAT_EQ(w.rig->panel.knob->normalised, 0.75f);
    w.rig->Pump(50);
    const std::vector<uint8_t> after = w.rig->Grab(width, height);
    // The knob's ring lit up to three quarters: pixels of the knob's cell changed on screen.
    EXPECT_GT(DifferentPixelFraction(before, after, 40), 0.001);
}

}  // namespace BR::Test
