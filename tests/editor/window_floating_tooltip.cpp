// With the preference "Enable floating tooltip" the tooltip fades in over a parameter control
// (new = old × 0.84 + 0.16 per frame), stands centred above it at least 5 px inside the window, and
// fades out (× 0.89 per frame, to zero below 1/255) once the pointer leaves.
#include <gtest/gtest.h>

#include <cstdlib>

#include "framework/PreferenceStore.h"
#include "support/WindowRigs.h"
#include "tests/support/RunCommand.h"

namespace BR::Test {

TEST(WindowFloatingTooltip, FadesInAboveControlAndOut) {
    const std::string folder = MakeTempFolder();
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    ASSERT_TRUE(PreferenceStore::SetInt("Enable floating tooltip", 1));
    DCWindow w;
    unsetenv("XDG_CONFIG_HOME");
    ASSERT_TRUE(gFloatingTooltip);
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    int x = 0, y = 0;
    w.Centre(w.rig->panel.knob, x, y);
    w.rig->MoveTo(x, y);
    w.rig->WaitFrames(40);
    Manager& m = *w.rig->manager;
    EXPECT_GT(m.tooltipAlpha, 0.99f);
    EXPECT_LE(m.tooltipAlpha, 1.0f);
    EXPECT_EQ(m.tooltipText->Text(), "Output Positive L 0.000");
    const float centre = 20 + 13 + 17;
    EXPECT_GE(m.tooltipBox[0], 5.0f);
    EXPECT_NEAR((m.tooltipBox[0] + m.tooltipBox[2]) * 0.5f,
                std::max(centre, 5.0f + (m.tooltipBox[2] - m.tooltipBox[0]) * 0.5f), 0.5f);
    EXPECT_GT(m.tooltipBox[1], 20 + 23 + 34.0f);  // above the knob
    w.rig->MoveTo(380, 100);
    w.rig->WaitFrames(2);
    EXPECT_LT(m.tooltipAlpha, 0.89f);
    w.rig->WaitFrames(60);
    EXPECT_EQ(m.tooltipAlpha, 0.0f);
    gFloatingTooltip = false;
}

}  // namespace BR::Test
