// Under Xvfb the LFO's waveform display shows each of its six waves: with one wave at full weight and
// the others off, every wave draws a curve of its own, different from each of the other five, and
// none is the flat line of no wave at all.
#include <gtest/gtest.h>

#include "editor/widgets/ModuleDisplay.h"
#include "support/DisplayPictures.h"

namespace BR::Test {

namespace {
const char* const kWaves[6] = {"Sine", "Triangle", "Square", "Saw", "Random", "Noise"};

Crop DrawWave(const char* wave) {
    LuaPanelRig rig("lfo");
    for (const char* other : kWaves)
        EXPECT_TRUE(rig.driver->SetParameterByName(std::string(other) + " L", 0.0f));
    if (wave) {
        EXPECT_TRUE(rig.driver->SetParameterByName(std::string(wave) + " L", 1.0f));
    }
    rig.Open();
    auto* display = FindElement<WaveformDisplay>(rig.manager, 0);
    EXPECT_NE(display, nullptr);
    if (!display) return {};
    const PanelPicture picture = RenderManager(rig.manager, SharedDisplay(), 8);
    EXPECT_FALSE(picture.rgb.empty()) << picture.error;
    if (picture.rgb.empty()) return {};
    return CropBox(picture, PanelBox(display), 1);
}
}  // namespace

TEST(WindowLfoWaveform, ShowsSixWaves) {
    ASSERT_NE(SharedDisplay(), nullptr);
    const Crop none = DrawWave(nullptr);
    ASSERT_FALSE(none.rgb.empty());
    std::vector<Crop> crops;
    for (const char* wave : kWaves) {
        crops.push_back(DrawWave(wave));
        ASSERT_EQ(crops.back().rgb.size(), none.rgb.size()) << wave;
        // A flat line elsewhere (the random wave holds one value a cycle) is a row of the 44 columns.
        EXPECT_GT(DifferentPixelFraction(crops.back().rgb, none.rgb, 40), 0.006) << wave << " draws no curve";
    }
    for (size_t i = 0; i < 6; ++i)
        for (size_t k = i + 1; k < 6; ++k)
            EXPECT_GT(DifferentPixelFraction(crops[i].rgb, crops[k].rgb, 40), 0.006)
                << kWaves[i] << " and " << kWaves[k] << " look the same";
    const Crop all = SideBySide(crops);
    KeepPicture("lfo-six-waves.png", all.rgb, all.width, all.height);
}

}  // namespace BR::Test
