// "Trigger Length" shortens the high part of each clock pulse; a length above the half period has no
// effect. At 24 PPQN, 120 BPM and 48 kHz the half period is 500 samples.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
BR::Test::Channels RenderWithTrigger(float milliseconds, int32_t* triggerSamples = nullptr) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Trigger Length", milliseconds);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 10000, {300});
    if (triggerSamples)
        *triggerSamples = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module()).TriggerSamples();
    return out;
}

uint32_t HighRun(const std::vector<float>& signal, uint32_t from) {
    uint32_t n = 0;
    while (from + n < signal.size() && signal[from + n] > 0.5f)
        ++n;
    return n;
}
}  // namespace

TEST(SyncTrigger, LengthLimitsPulseUpToHalfPeriod) {
    int32_t samples = 0;
    const BR::Test::Channels off = RenderWithTrigger(0.0f, &samples);
    EXPECT_EQ(samples, 0);
    const BR::Test::Channels shortPulse = RenderWithTrigger(5.0f, &samples);
    EXPECT_EQ(samples, 240);
    const BR::Test::Channels longPulse = RenderWithTrigger(20.0f, &samples);
    EXPECT_EQ(samples, 960);
    for (uint32_t tick = 0; tick < 10000; tick += 1000) {
        EXPECT_EQ(HighRun(off[0], tick), 500u) << tick;
        EXPECT_EQ(HighRun(shortPulse[0], tick), 240u) << tick;
    }
    EXPECT_EQ(longPulse[0], off[0]);
    EXPECT_EQ(BR::Test::RisingEdges(shortPulse[0]), BR::Test::RisingEdges(off[0]));
}
