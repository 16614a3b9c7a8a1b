// Envelope mode writes level * (max - min) + min, with the envelope run from the module's rows; the
// envelope stands still in the other modes.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

TEST(TriggerEnvelope, LevelsMappedThroughTheVoltages) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    driver->SetParameterByName("Min Voltage", -0.5f);
    driver->SetParameterByName("Max Voltage", 0.3f);
    driver->SetParameterByName("Env 1 Time A1", 0.002f);
    driver->SetParameterByName("Env 1 Level A1", 0.7f);
    driver->SetParameterByName("Env 1 Time A2", 0.003f);
    driver->SetParameterByName("Env 1 Shape A2", 0.2f);
    driver->SetParameterByName("Env 1 Type A3", 0.0f);
    driver->SetParameterByName("Env 1 Time R2", 0.002f);
    driver->SetParameterByName("Env 1 Level R1", 0.1f);
    driver->SetParameterByName("Env 1 Velocity Depth", 0.5f);
    const auto out =
        BR::Test::RenderFrames(*driver, 2048, 2048, {}, {{10, {0x90, 60, 100}}, {1010, {0x80, 60, 0}}});

    BR::EnvParameters p;
    BR::ReadEnvParameters(driver->Module(), {7, 28, 21, 22, 27}, p);
    ASSERT_EQ(p.type[BR::kSegA3], 0);
    ASSERT_EQ(p.type[BR::kSegA2], 1);
    BR::Envelope env;
    std::vector<float> levels(2048, 0.0f);
    BR::envNoteOn(env, 100.0f * 0.007874016f, p, 48000.0f);
    BR::renderEnvelope(env, levels.data() + 10, 1000);
    BR::envNoteOff(env, p, 48000.0f);
    BR::renderEnvelope(env, levels.data() + 1010, 1038);
    for (size_t i = 0; i < 2048; ++i)
        ASSERT_EQ(out[0][i], levels[i] * 0.8f + -0.5f) << i;
    EXPECT_GT(out[0][300], -0.5f);
}

TEST(TriggerEnvelope, StandsStillOutsideEnvelopeMode) {
    auto driver = BR::Test::MakeDriver("trigger");
    BR::Test::RenderFrames(*driver, 1024, 256, {}, {{10, {0x90, 60, 127}}});
    auto& trigger = static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver->Module());
    EXPECT_EQ(trigger.GetEnvelope().stageIndex, BR::kEnvA1);  // prepared, not advanced
    EXPECT_EQ(trigger.GetEnvelope().level, 0.0f);
}
