// With Alt the steps a drag crosses go back to their defaults; the steps it does not reach keep theirs.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorAltDrag, CrossedStepsGoBackToTheirDefaults) {
    StepEditorRig rig;
    for (int32_t step = 0; step < 16; ++step)
        rig.SetStep(step, 0.7f);
    rig.Gesture(rig.At(3, 0.9f), {rig.At(6, -0.9f)}, kModAlt);
    for (int32_t step = 0; step < 16; ++step) {
        const float expected =
            step >= 3 && step <= 6 ? rig.manager->ParameterInfo(rig.Row(step)).defaultValue : 0.7f;
        EXPECT_FLOAT_EQ(rig.Step(step), expected) << "step " << step;
    }
    EXPECT_FLOAT_EQ(rig.manager->ParameterInfo(rig.Row(3)).defaultValue, 0.0f);
}

// The DAC editor behaves alike for its bit weights.
TEST(StepEditorAltDrag, DacBitsToo) {
    StepEditorRig rig;
    auto* dac = new DACEditor(rig.manager.get(), 0);
    dac->SetRect(0, 150, 240, 40);  // the default 8 bits in use: 30 px a bit
    rig.manager->rootGroup->Add(dac);
    ASSERT_EQ(dac->ShownSteps(), 8);
    for (int32_t bit = 0; bit < 8; ++bit)
        rig.manager->SetParameterValue(dac->parameters[size_t(bit)], -0.4f);
    rig.Gesture(Point{2 * 30 + 15, 180}, {Point{5 * 30 + 15, 160}}, kModAlt);
    for (int32_t bit = 0; bit < 8; ++bit)
        EXPECT_FLOAT_EQ(rig.manager->GetParameterValue(dac->parameters[size_t(bit)]),
                        bit >= 2 && bit <= 5 ? 0.0f : -0.4f)
            << "bit " << bit;
}

}  // namespace BR::Test
