// The Trigger renders its envelope through its segment cache: at a steady 10 Hz gate on its CV input,
// once the levels have settled, every sample of its exponential segments is copied but those past
// what an entry holds, and the output is the envelope's own, bit for bit, as an envelope rendered
// without a cache gives it.
#include <gtest/gtest.h>

#include <cstring>

#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
BrelCorvaneTrigger::BrelCorvane& Module(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver.Module());
}
}  // namespace

TEST(TriggerSegmentCache, SteadyGateIsCopied) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    driver->SetParameterByName("CV Trigger Enable", 1.0f);
    driver->SetParameterByName("CV Trigger Threshold", 0.5f);
    driver->SetParameterByName("Env 1 Time A1", 0.01f);
    driver->SetParameterByName("Env 1 Level A1", 1.0f);
    driver->SetParameterByName("Env 1 Time A2", 0.05f);
    driver->SetParameterByName("Env 1 Level A2", 0.5f);
    driver->SetParameterByName("Env 1 Time A3", 0.0f);
    driver->SetParameterByName("Env 1 Time R1", 0.1f);
    const uint32_t total = 48000;
    BR::Test::Channels in(1, std::vector<float>(total));
    for (uint32_t i = 0; i < total; ++i)
        in[0][i] = i % 4800 < 2400 ? 1.0f : 0.0f;
    const auto out = BR::Test::RenderFrames(*driver, total, 64, in);

    // Ten more periods: only the release's samples past an entry's capacity run the chain. The
    // release lasts from the block where the gate falls (the output leads the edge by up to a pass,
    // here 32 samples) to the next rise.
    const BR::EnvSegmentCache& cache = Module(*driver).SegmentCache();
    const uint64_t computed = cache.computed, copied = cache.copied;
    BR::Test::RenderFrames(*driver, total, 64, in);
    const uint64_t beyond = 2400u + 32u - BR::EnvSegmentCache::kCapacity;
    EXPECT_EQ(cache.computed - computed, 10u * beyond);
    EXPECT_GT(cache.copied - copied, total - 10u * beyond - 40u);

    // The same envelope without a cache, driven as the module drives it: the sustain and a finished
    // envelope are updated at each block, and at an input edge the state changes before the samples
    // leading up to the edge are rendered (the output leads the edge by up to one pass).
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.05f;
    p.levelA2 = 0.5f;
    p.time[BR::kSegA3] = 0.0f;
    p.time[BR::kSegR1] = 0.1f;
    BR::Envelope env;
    BR::EnvDisplayValues display;
    std::vector<float> plain(total);
    for (uint32_t block = 0; block < total; block += 64) {
        BR::envBlockUpdate(env, p, 48000.0f, display);
        uint32_t position = block;
        for (uint32_t i = block; i < block + 64; ++i) {
            if (i % 2400 != 0) continue;
            if (i % 4800 == 0) {
                BR::envNoteOn(env, 1.0f, p, 48000.0f);
            } else {
                BR::envNoteOff(env, p, 48000.0f);
            }
            BR::renderEnvelope(env, plain.data() + position, i - position);
            position = i;
        }
        BR::renderEnvelope(env, plain.data() + position, block + 64 - position);
    }
    for (uint32_t i = 0; i < total; ++i)
        ASSERT_EQ(std::memcmp(&plain[i], &out[0][i], sizeof(float)), 0)
            << i << ": " << plain[i] << " " << out[0][i];
}
