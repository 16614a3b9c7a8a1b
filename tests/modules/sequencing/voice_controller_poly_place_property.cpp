// Property 64019 tells an instance's place in a polyphonic group: -1 in a master, 0 when "Poly Mode"
// is not "Voice", else the voice number.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

namespace {
int32_t Place(BR::Test::VoiceRig& rig) {
    int32_t place = 99;
    EXPECT_EQ(rig.vc.GetProperty(BrelCorvaneVoiceController::kPropertyPolyPlace, &place), BR::kNoErr);
    return place;
}
}  // namespace

TEST(VoiceControllerPolyPlace, MasterMonoAndVoice) {
    BR::Test::VoiceRig rig;
    EXPECT_EQ(Place(rig), 0);
    rig.Set("Poly Mode", 2);
    rig.Set("Polyphony/Voice", 7);
    // The place is what the last block start read: unchanged until the instance renders again.
    EXPECT_EQ(Place(rig), 0);
    rig.Render(16);
    EXPECT_EQ(Place(rig), 7);
    rig.Set("Poly Mode", 1);
    rig.Render(16);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeMaster);
    EXPECT_EQ(Place(rig), -1);
    rig.Set("Poly Mode", 0);
    rig.Render(16);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeNormal);
    EXPECT_EQ(Place(rig), 0);
    uint32_t size = 0;
    bool writable = true;
    EXPECT_EQ(rig.vc.GetPropertyInfo(BrelCorvaneVoiceController::kPropertyPolyPlace, &size, &writable),
              BR::kNoErr);
    EXPECT_EQ(size, 4u);
    EXPECT_FALSE(writable);
}

TEST(VoiceControllerPolyPlace, MasterOverridesMeasuring) {
    BR::Test::VoiceRig rig;
    rig.Set("Poly Mode", 2);
    const uint8_t one = 1;
    rig.vc.SetProperty(BR::kPropertyCalibrateVoltsPerOctave, &one, 1);
    rig.Render(16);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeMeasuring);  // "Voice" leaves it alone
    rig.Set("Poly Mode", 1);
    rig.Render(16);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeMaster);
}
