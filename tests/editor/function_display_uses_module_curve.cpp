// The Function's transfer-curve display computes its curve with the module's own sample arithmetic:
// for each of the four curves, the display's value at every drawn input equals, to the bit, what the
// module outputs for that input; the vertices place those values between the curve's extremes.
#include <gtest/gtest.h>

#include "editor/ZPmanager.h"
#include "editor/widgets/ModuleDisplay.h"
#include "modules/simple/Function.h"
#include "tests/support/Render.h"

namespace BR::Test {

TEST(FunctionDisplayCurve, EqualsTheModulesOutputForEveryCurve) {
    for (int32_t function = 0; function < 4; ++function) {
        auto driver = MakeDriver("Function");
        ASSERT_TRUE(driver->SetParameterByName("Enable L", 1.0f));
        ASSERT_TRUE(driver->SetParameterByName("Function L", float(function)));
        ASSERT_TRUE(driver->SetParameterByName("Input Scale L", 1.5f));
        ASSERT_TRUE(driver->SetParameterByName("Input Offset L", 0.25f));
        ASSERT_TRUE(driver->SetParameterByName("Output Scale L", -0.75f));
        ASSERT_TRUE(driver->SetParameterByName("Output Offset L", 0.125f));
        // The display's 65 inputs from -1 to 1, after two blocks that let the module see its rows.
        std::vector<float> ramp(1024 + 65, 0.0f);
        for (int i = 0; i <= 64; ++i)
            ramp[size_t(1024 + i)] = -1.0f + float(i) / 32.0f;
        const Channels out = RenderFrames(*driver, uint32_t(ramp.size()), 512, {ramp});
        ZPmanager manager(&driver->Module());
        FunctionDisplay display(&manager, 0);
        display.Animate();
        display.PrepareCurve();
        ASSERT_EQ(display.vertices.size(), 2u * 65u);
        for (int i = 0; i <= 64; ++i) {
            const float x = -1.0f + float(i) / 32.0f;
            const float y = FunctionDisplay::Transfer(function, x, 1.5f, 0.25f, -0.75f, 0.125f);
            EXPECT_EQ(y, out[0][size_t(1024 + i)]) << "curve " << function << " at " << x;
            const float placed =
                display.lowY + display.vertices[size_t(2 * i + 1)] * (display.highY - display.lowY);
            EXPECT_NEAR(placed, y, 1e-4f * (display.highY - display.lowY))
                << "curve " << function << " at " << x;
        }
    }
}

}  // namespace BR::Test
