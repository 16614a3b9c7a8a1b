// The Trigger's envelope display position, worked out from a scale prepared only when the rows or the
// sample rate change, follows each of them at the next block: a time row, the multiplier, the rate.
// It agrees with the position envBlockUpdate works out from the rows at every call.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {

using BrelCorvaneTrigger::BrelCorvane;
using BrelCorvaneTrigger::TriggerStatus;

const BR::EnvDisplayValues& Display(BR::HostDriver& driver) {
    return driver.Module().GetStatusBlock()->As<TriggerStatus>().envelope;
}

// The position the per-call form gives for the module's envelope as it stands after the last block.
float Reference(BR::HostDriver& driver, const BR::EnvParameters& p, float rate) {
    BR::Envelope copy = static_cast<BrelCorvane&>(driver.Module()).GetEnvelope();
    BR::EnvDisplayValues display;
    BR::envBlockUpdate(copy, p, rate, display);
    return display.position;
}

}  // namespace

TEST(TriggerDisplayPosition, FollowsTimeRowsMultiplierAndRate) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    driver->SetParameterByName("Env 1 Time A2", 0.5f);
    BR::EnvParameters p;  // the module's rows: defaults, A2 0.5 s
    p.time[BR::kSegA2] = 0.5f;
    // A note in the second block (events at a block's first frame meet the rows of the block before),
    // then 100 blocks of 64 into A2 (of 24000 samples).
    BR::Test::RenderFrames(*driver, 6400, 64, {}, {{64, {0x90, 60, 127}}});
    ASSERT_EQ(static_cast<BrelCorvane&>(driver->Module()).GetEnvelope().stageIndex, BR::kEnvA2);
    // The status holds the position at the start of the last block, before its 64 samples.
    const float before = Display(*driver).position;
    EXPECT_GT(before, 0.0f);

    // A longer R1 moves the total: the next block's position is smaller.
    driver->SetParameterByName("Env 1 Time R1", 2.0f);
    p.time[BR::kSegR1] = 2.0f;
    BR::Test::RenderFrames(*driver, 64, 64);
    const float afterRow = Display(*driver).position;
    EXPECT_LT(afterRow, before * 0.6f);
    BR::Test::RenderFrames(*driver, 64, 64);
    const float reference = Reference(*driver, p, 48000.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    // The status of the block after: the envelope as it stood when that block began.
    EXPECT_NEAR(Display(*driver).position, reference, 1e-6f);

    // The multiplier at "10": the samples left count ten times less in raw seconds.
    driver->SetParameterByName("Env 1 Multiplier", 2.0f);
    p.multiplier = 2.0f;
    BR::Test::RenderFrames(*driver, 64, 64);
    const float referenceTen = Reference(*driver, p, 48000.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_NEAR(Display(*driver).position, referenceTen, 1e-6f);
    EXPECT_GT(referenceTen, reference);  // the same samples left, a smaller share of the time to go

    // A new sample rate with no row changed: the samples left count at the new rate.
    driver->Controller().sampleRate = 96000.0f;
    const float referenceRate = Reference(*driver, p, 96000.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_NEAR(Display(*driver).position, referenceRate, 1e-6f);
    EXPECT_GT(referenceRate, referenceTen);
}

TEST(TriggerDisplayPosition, SustainAndFinished) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    BR::Test::RenderFrames(*driver, 20000, 256, {}, {{0, {0x90, 60, 127}}});
    ASSERT_EQ(static_cast<BrelCorvane&>(driver->Module()).GetEnvelope().stageIndex, BR::kEnvSustain);
    // Defaults: A1 0, A2 0.1, A3 0.1, R1 0.1, R2 0 and sustain's nominal second: 0.2 of 1.3 done.
    EXPECT_NEAR(Display(*driver).position, 0.2f / 1.3f, 1e-6f);
    EXPECT_FLOAT_EQ(Display(*driver).level, 0.5f);
    BR::Test::RenderFrames(*driver, 20000, 256, {}, {{0, {0x80, 60, 0}}});
    EXPECT_EQ(Display(*driver).position, 0.0f);
    EXPECT_EQ(Display(*driver).level, 0.0f);
}
