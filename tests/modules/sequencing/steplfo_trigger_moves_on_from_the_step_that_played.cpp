// In the triggered modes each trigger moves a lane from the step that last played to the start of the
// next one of its loop. Taking the next step from the raw phase instead would keep the lane on one step
// for good when the loop starts above step 1, under asymmetry, or where the float step position of
// (s + 1) / N rounds down into step s (five steps: the fifth).
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
const std::vector<float> kRamp = StepLFOTest::Ramp();

// Lane L in "Trig Free" at 64 samples a step, triggered by note 60 every 1000 samples from sample 100,
// rendered in blocks of 256; each trigger's 1000 samples must play step `first + (k + 1) % count` of
// the ramp (from 0), as the lane runs to the next boundary and stands there.
void ExpectEachTriggerAdvancesOneStep(BR::HostDriver& driver, int first, int count) {
    Set(driver, "Sync L", 4.0f);
    std::vector<BR::Test::MidiAt> notes;
    const uint32_t triggers = 3 * uint32_t(count) + 2;
    for (uint32_t k = 0; k < triggers; ++k)
        notes.push_back({100 + 1000 * k, {0x90, 60, 100}});
    const auto out = BR::Test::RenderFrames(driver, 100 + 1000 * triggers, 256, {}, notes);
    for (size_t i = 0; i < 100; ++i)
        ASSERT_EQ(out[0][i], kRamp[first]) << i;  // stands on the loop's first step until triggered
    for (uint32_t k = 0; k < triggers; ++k)
        for (uint32_t i = 100 + 1000 * k; i < 1100 + 1000 * k; ++i)
            ASSERT_EQ(out[0][i], kRamp[first + (k + 1) % count]) << "trigger " << k << " sample " << i;
}
}  // namespace

TEST(StepLFOTriggerNextStep, LoopStartingAtStepFive) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Start Step L", 5.0f);
    Set(*driver, "Length In Steps L", 6.0f);
    ExpectEachTriggerAdvancesOneStep(*driver, 4, 6);
}

TEST(StepLFOTriggerNextStep, Asymmetry) {
    for (float asymmetry : {-50.0f, 60.0f}) {
        auto driver = StepLFOTest::FreeRamp();
        Set(*driver, "Length In Steps L", 4.0f);
        Set(*driver, "Asymmetry L", asymmetry);
        ExpectEachTriggerAdvancesOneStep(*driver, 0, 4);
    }
}

TEST(StepLFOTriggerNextStep, FiveStepsWhereTheFifthStartRoundsDown) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Length In Steps L", 5.0f);
    ExpectEachTriggerAdvancesOneStep(*driver, 0, 5);
}
