// A parameter-driven curve computes its vertices once, and again only after one of its watched
// parameters changes: frames without a change, or with a change of another parameter, reuse them.
#include <gtest/gtest.h>

#include "editor/ZPmanager.h"
#include "editor/widgets/ModuleDisplay.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
void Frame(CurveDisplay& display) {
    display.Animate();
    display.PrepareCurve();
}

// Frames with no change, a change of `other` (not watched), then of `watched`.
void Check(const std::string& stem, CurveDisplay& display, ZPmanager& manager, const std::string& other,
           const std::string& watched, float value) {
    Frame(display);
    ASSERT_EQ(display.recomputations, 1) << stem;
    const std::vector<float> first = display.vertices;
    ASSERT_FALSE(first.empty()) << stem;
    for (int i = 0; i < 5; ++i)
        Frame(display);
    EXPECT_EQ(display.recomputations, 1) << stem;
    manager.SetParameterValue(manager.FindParameter(other), value);
    for (int i = 0; i < 3; ++i)
        Frame(display);
    EXPECT_EQ(display.recomputations, 1) << stem << ": " << other << " is not watched";
    manager.SetParameterValue(manager.FindParameter(watched), value);
    Frame(display);
    EXPECT_EQ(display.recomputations, 2) << stem << ": " << watched;
    EXPECT_NE(display.vertices, first) << stem;
    Frame(display);
    EXPECT_EQ(display.recomputations, 2) << stem;
}
}  // namespace

TEST(CurveRecomputation, EnvelopeOnlyOnItsRows) {
    auto driver = MakeDriver("trigger");
    ZPmanager manager(&driver->Module());
    EnvDisplay display(&manager, 0);
    Check("trigger", display, manager, "Env 1 Velocity Depth", "Env 1 Shape A2", 0.1f);
}

TEST(CurveRecomputation, WaveformOnlyOnItsChannelsWaves) {
    auto driver = MakeDriver("lfo");
    ZPmanager manager(&driver->Module());
    manager.SetParameterValue(manager.FindParameter("Sine L"), 1.0f);
    WaveformDisplay display(&manager, 0);
    Check("lfo", display, manager, "Saw R", "Saw L", 0.5f);
}

TEST(CurveRecomputation, FunctionOnlyOnItsFiveRows) {
    auto driver = MakeDriver("Function");
    ZPmanager manager(&driver->Module());
    FunctionDisplay display(&manager, 1);
    Check("function", display, manager, "Input Scale L", "Input Scale R", 0.5f);
}

}  // namespace BR::Test
