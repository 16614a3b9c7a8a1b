// Under Xvfb the Trigger's panel shows its envelope display following the envelope's rows: two
// pictures with other times and levels differ inside the display, and the filled area of the held
// stage stands as high as the sustain level in each.
#include <gtest/gtest.h>

#include "editor/widgets/ModuleDisplay.h"
#include "support/DisplayPictures.h"

namespace BR::Test {

namespace {
struct EnvelopePicture {
    PanelPicture picture;
    Box box;
    float background[3] = {0, 0, 0};
};

EnvelopePicture Draw(const std::vector<std::pair<const char*, float>>& settings) {
    EnvelopePicture result;
    LuaPanelRig rig("trigger");
    for (const auto& [name, value] : settings)
        EXPECT_TRUE(rig.driver->SetParameterByName(name, value)) << name;
    rig.Open();
    auto* display = FindElement<EnvDisplay>(rig.manager);
    EXPECT_NE(display, nullptr);
    if (!display) return result;
    result.box = PanelBox(display);
    std::copy_n(display->backgroundColour, 3, result.background);
    result.picture = RenderManager(rig.manager, SharedDisplay(), 10);
    EXPECT_FALSE(result.picture.rgb.empty()) << result.picture.error;
    return result;
}

// The share of a column's pixels (inside the frame) that are not the display's background: the
// filled height at that x, 0 to 1.
float FilledShare(const EnvelopePicture& e, float ux) {
    const Crop crop = CropBox(e.picture, e.box, 2);
    const int x = int(ux * float(crop.width));
    int filled = 0;
    for (int y = 0; y < crop.height; ++y) {
        const uint8_t* p = crop.At(x, y);
        int far = 0;
        for (int c = 0; c < 3; ++c)
            far = std::max(far, std::abs(int(p[c]) - int(e.background[c] * 255.0f + 0.5f)));
        if (far > 24) ++filled;
    }
    return float(filled) / float(crop.height);
}
}  // namespace

TEST(WindowTriggerEnvelopeDisplay, FollowsItsParameters) {
    ASSERT_NE(SharedDisplay(), nullptr);
    // Attack, a second of sustain and release take 1 + 0.5 s: the sustain covers x 0.2 to 0.87.
    auto withSustain = [](float sustain) {
        return Draw({{"Env 1 Time A1", 0.1f},
                     {"Env 1 Time A2", 0.1f},
                     {"Env 1 Time A3", 0.1f},
                     {"Env 1 Time R1", 0.1f},
                     {"Env 1 Time R2", 0.1f},
                     {"Env 1 Sustain", sustain}});
    };
    const EnvelopePicture low = withSustain(0.25f), high = withSustain(0.75f);
    ASSERT_FALSE(low.picture.rgb.empty());
    ASSERT_FALSE(high.picture.rgb.empty());
    // The pictures differ inside the display, where the envelope changed.
    const Crop a = CropBox(low.picture, low.box, 2), b = CropBox(high.picture, high.box, 2);
    EXPECT_GT(DifferentPixelFraction(a.rgb, b.rgb, 24), 0.2);
    // The held stage is filled to the sustain level.
    EXPECT_NEAR(FilledShare(low, 0.5f), 0.25f, 0.08f);
    EXPECT_NEAR(FilledShare(high, 0.5f), 0.75f, 0.08f);
    KeepPicture("trigger-envelope-sustain-low.png", a.rgb, a.width, a.height);
    KeepPicture("trigger-envelope-sustain-high.png", b.rgb, b.width, b.height);
}

}  // namespace BR::Test
