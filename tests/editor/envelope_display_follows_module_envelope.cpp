// The envelope display computes its shape with the module's own envelope code: at every point of the
// curve its level equals what the Trigger plays, rendered at 48 kHz, at the same time after the note;
// its rows come from the module's layout property, for each of the Voice Controller's envelopes too.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "editor/ZPmanager.h"
#include "editor/widgets/ModuleDisplay.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
struct Setting {
    const char* name;
    float value;
};

// Times that make whole display samples: 1.5 s in all, so the display's rate is 320 per second and a
// display sample is 150 samples at 48 kHz.
const Setting kShape[] = {
    {"Output Mode", 2},        {"Env 1 Time A1", 0.0625f}, {"Env 1 Time A2", 0.125f},
    {"Env 1 Time A3", 0.125f}, {"Env 1 Time R1", 0.125f},  {"Env 1 Time R2", 0.0625f},
    {"Env 1 Shape A1", 0.2f},  {"Env 1 Shape A2", 0.9f},   {"Env 1 Shape A3", 0.4f},
    {"Env 1 Shape R1", 0.0f},  {"Env 1 Shape R2", 0.7f},   {"Env 1 Level A1", 0.6f},
    {"Env 1 Level A2", 1.0f},  {"Env 1 Sustain", 0.45f},   {"Env 1 Level R1", 0.2f},
    {"Env 1 Type A1", 0},      {"Env 1 Type A2", 1},       {"Env 1 Type A3", 0},
    {"Env 1 Type R1", 1},      {"Env 1 Type R2", 0},
};
}  // namespace

TEST(EnvelopeDisplayShape, EqualsTheTriggersOwnEnvelope) {
    auto driver = MakeDriver("trigger");
    for (const Setting& s : kShape)
        ASSERT_TRUE(driver->SetParameterByName(s.name, s.value)) << s.name;
    // A note from silence held for the attack and a second of sustain, then released; it comes two
    // blocks in, once the module's blocks see the rows set.
    const uint32_t start = 1024, attack = 3000 + 6000 + 6000, release = start + attack + 48000;
    const Channels out = RenderFrames(*driver, release + 9000 + 4800, 512, {},
                                      {{start, {0x90, 60, 127}}, {release, {0x80, 60, 0}}});
    ZPmanager manager(&driver->Module());
    EnvDisplay display(&manager, 0);
    display.Animate();
    display.PrepareCurve();
    ASSERT_FLOAT_EQ(display.totalSeconds, 1.5f);
    ASSERT_FLOAT_EQ(EnvDisplay::CurveRate(display.totalSeconds), 320.0f);
    // The vertices: (0, 0), then one per display sample: 20 + 40 + 40 of attack, 320 of sustain,
    // 40 + 20 of release.
    const std::vector<float>& v = display.vertices;
    ASSERT_EQ(v.size(), 2u * (1 + 480));
    float worst = 0;
    for (size_t j = 0; j < 480; ++j) {
        const float x = v[2 * (j + 1)], level = v[2 * (j + 1) + 1];
        EXPECT_NEAR(x, float(j + 1) / 480.0f, 1e-6f);
        const size_t n = start + 150 * (j + 1) - 1;
        worst = std::max(worst, std::fabs(level - out[0][n]));
        EXPECT_NEAR(level, out[0][n], 0.002f) << "display sample " << j;
    }
    std::printf("largest difference from the module's envelope: %.5f\n", double(worst));
    // Spot checks: the end of A1 at its level, the sustain, and silence at the end.
    EXPECT_NEAR(v[2 * 20 + 1], 0.6f, 1e-3f);
    EXPECT_NEAR(v[2 * 300 + 1], 0.45f, 1e-6f);
    EXPECT_NEAR(v.back(), 0.0f, 1e-3f);
}

TEST(EnvelopeDisplayShape, RowsFromTheLayoutProperty) {
    auto driver = MakeDriver("voicecontroller");
    ASSERT_NE(driver, nullptr);
    ZPmanager manager(&driver->Module());
    for (int32_t id = 0; id < 3; ++id) {
        EnvDisplay display(&manager, id);
        const std::string env = "Env " + std::to_string(id + 1);
        ASSERT_EQ(display.watched.size(), 19u);
        EXPECT_EQ(display.watched[0], manager.FindParameter(env + " Time A1"));
        EXPECT_EQ(display.watched[9], manager.FindParameter(env + " Shape R2"));
        EXPECT_EQ(display.watched[13], manager.FindParameter(env + " Level R1"));
        EXPECT_EQ(display.watched[14], manager.FindParameter(env + " Type A1"));
        EXPECT_EQ(display.watched[18], manager.FindParameter(env + " Type R2"));
    }
    // A module without the property watches nothing and draws no curve.
    auto dc = MakeDriver("dc");
    ZPmanager dcManager(&dc->Module());
    EnvDisplay none(&dcManager, 0);
    none.Animate();
    none.PrepareCurve();
    EXPECT_TRUE(none.vertices.empty());
}

}  // namespace BR::Test
