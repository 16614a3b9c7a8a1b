// A released touch (z not above 0): with "Gate Z" on "Output 5" falls to 0 at the next slice; with it
// off it keeps the z of the last frame. The gate row follows the release either way, and x and y keep
// their last values.
#include <gtest/gtest.h>

#include "SoundplaneRig.h"

using namespace BR::Test;

namespace {
// Renders a block with the touch pressed, then one after its release.
void PressAndRelease(SoundplaneRig& rig, Channels& pressed, Channels& released) {
    PutTouch({5, 0.25f, 0.5f, 0.75f, 60});
    pressed = rig.Render(64);
    PutTouch({5, 0.25f, 0.5f, -0.0625f, 60});  // the release frame
    released = rig.Render(64);
}
}  // namespace

TEST(SoundplaneGateZ, OnDropsZAtTheNextSlice) {
    ClearTouches();
    SoundplaneRig rig;
    rig.Set("Voice ID", 5);
    rig.Set("Gate Z", 1);
    Channels pressed, released;
    PressAndRelease(rig, pressed, released);
    EXPECT_EQ(pressed[4], std::vector<float>(64, 0.75f));
    EXPECT_EQ(released[4], std::vector<float>(64, 0.0f));
    EXPECT_EQ(pressed[1], std::vector<float>(64, 1.0f));
    EXPECT_EQ(released[1], std::vector<float>(64, 0.0f));
    EXPECT_EQ(released[2], std::vector<float>(64, 0.25f));
    EXPECT_EQ(released[3], std::vector<float>(64, 0.5f));
}

TEST(SoundplaneGateZ, OffKeepsTheLastFramesZ) {
    ClearTouches();
    SoundplaneRig rig;
    rig.Set("Voice ID", 5);
    Channels pressed, released;
    PressAndRelease(rig, pressed, released);
    EXPECT_EQ(pressed[4], std::vector<float>(64, 0.75f));
    EXPECT_EQ(released[4], std::vector<float>(64, -0.0625f));
    EXPECT_EQ(released[1], std::vector<float>(64, 0.0f));
}
