// A Trigger envelope rendered in one host block and in blocks of 1, 7 and 256 frames. The segments
// themselves render identically however the samples are cut; what the block size changes is where
// the per-sub-block update puts a held note on the sustain level. The sustain stage starts from the
// level the attack overshot to and is set to "Sustain" times the velocity factor at the next sub-block
// start, so the blocked renders reach the exact sustain level sooner; the release that follows starts
// from that level, and the renders stay within the size of the attack's last step of each other.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
constexpr uint32_t kFrames = 24000, kNoteOn = 10, kNoteOff = 15000;

std::unique_ptr<BR::HostDriver> Envelope(float type) {
    auto driver = BR::Test::MakeDriver("trigger", 48000.0f, kFrames);
    driver->SetParameterByName("Output Mode", 2.0f);
    for (const char* row :
         {"Env 1 Type A1", "Env 1 Type A2", "Env 1 Type A3", "Env 1 Type R1", "Env 1 Type R2"})
        driver->SetParameterByName(row, type);
    driver->SetParameterByName("Env 1 Time A1", 0.005f);
    driver->SetParameterByName("Env 1 Level A1", 0.3f);
    driver->SetParameterByName("Env 1 Shape A3", 0.2f);
    driver->SetParameterByName("Env 1 Level R1", 0.2f);
    driver->SetParameterByName("Env 1 Time R2", 0.05f);
    driver->SetParameterByName("Env 1 Velocity Depth", 0.5f);
    return driver;
}

std::vector<float> Render(float type, uint32_t block) {
    auto driver = Envelope(type);
    return BR::Test::RenderFrames(*driver, kFrames, block, {},
                                  {{kNoteOn, {0x90, 60, 100}}, {kNoteOff, {0x80, 60, 0}}})[0];
}
}  // namespace

TEST(TriggerEnvelopeBlockSizes, SameSegmentsAndSustainSetAtEachSubBlock) {
    for (float type : {0.0f, 1.0f}) {
        // The envelope alone, sample by sample, finds the first sample of the sustain.
        auto driver = Envelope(type);
        BR::EnvParameters p;
        BR::ReadEnvParameters(driver->Module(), {7, 28, 21, 22, 27}, p);
        BR::Envelope env;
        BR::envNoteOn(env, 100.0f * 0.007874016f, p, 48000.0f);
        const float sustain = p.sustain * env.velocityScale;
        uint32_t sustainStart = kNoteOn;
        float level;
        while (env.stageIndex != BR::kEnvSustain) {
            BR::renderEnvelope(env, &level, 1);
            ++sustainStart;
        }
        ASSERT_LT(sustainStart, kNoteOff);
        ASSERT_NE(env.level, sustain);  // the attack left the level a little off the sustain level

        const auto whole = Render(type, kFrames);
        for (uint32_t i = sustainStart; i < kNoteOff; ++i)
            ASSERT_EQ(whole[i], env.level) << type << " " << i;  // one sub-block: no update in sustain
        for (uint32_t block : {1u, 7u, 256u}) {
            const auto split = Render(type, block);
            for (uint32_t i = 0; i < sustainStart; ++i)
                ASSERT_EQ(split[i], whole[i]) << type << " block " << block << " sample " << i;
            const uint32_t update = (sustainStart + block - 1) / block * block;  // next block start
            for (uint32_t i = sustainStart; i < kNoteOff; ++i)
                ASSERT_EQ(split[i], i < update ? env.level : sustain)
                    << type << " block " << block << " " << i;
            const float step = std::fabs(env.level - sustain);
            for (uint32_t i = kNoteOff; i < kFrames; ++i)
                ASSERT_LE(std::fabs(split[i] - whole[i]), step) << type << " block " << block << " " << i;
            EXPECT_LE(std::fabs(split[kFrames - 1]), 1e-6f) << type << " " << block;
        }
    }
}
