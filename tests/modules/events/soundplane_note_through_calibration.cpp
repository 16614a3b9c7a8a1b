// The touch's note goes through the calibration table: "Output 1 Note" at 1 with a note of 60.5 lies
// halfway between the values of 60 and 61, and the status block shows the note and the voltage;
// notes are held within 0 and 127, and a NaN note reads as 0.
#include <gtest/gtest.h>

#include <limits>

#include "SoundplaneRig.h"

using namespace BR::Test;

TEST(SoundplaneNote, HalfwayBetweenTableValues) {
    ClearTouches();
    PutTouch({1, 0, 0, 0.5f, 60.5f});
    SoundplaneRig rig;
    rig.Module().Calibration().notes[60].value = 0.25f;
    rig.Module().Calibration().notes[61].value = 0.5f;
    const Channels out = rig.Render(64);
    EXPECT_EQ(out[0], std::vector<float>(64, 0.375f));
    const auto& shown = rig.Module().GetStatusBlock()->As<BrelCorvaneSoundplane::SoundplaneStatus>();
    EXPECT_EQ(shown.displayNote, 60.5f);
    EXPECT_EQ(shown.noteVoltage, 0.375f);

    rig.Module().Calibration().notes[127].value = 0.75f;
    PutTouch({1, 0, 0, 0.5f, 300.0f});
    EXPECT_EQ(rig.Render(64)[0], std::vector<float>(64, 0.75f));
    EXPECT_EQ(shown.displayNote, 127.0f);
    rig.Module().Calibration().notes[0].value = -0.5f;
    PutTouch({1, 0, 0, 0.5f, -3.0f});
    EXPECT_EQ(rig.Render(64)[0], std::vector<float>(64, -0.5f));
    PutTouch({1, 0, 0, 0.5f, std::numeric_limits<float>::quiet_NaN()});
    EXPECT_EQ(rig.Render(64)[0], std::vector<float>(64, -0.5f));
    EXPECT_EQ(shown.displayNote, 0.0f);
}
