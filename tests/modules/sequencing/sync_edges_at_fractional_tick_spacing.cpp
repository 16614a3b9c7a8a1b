// With a tick spacing that is not a whole number of samples (24 PPQN at 133 BPM and 44.1 kHz: 828.947
// samples), each rising edge lands on the sample nearest to the tick's exact time, counted from the
// host position at the render's start, whatever the block lengths.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

TEST(SyncClockPlacement, EdgesOnNearestSampleAtFractionalSpacing) {
    const double rate = 44100.0, tempo = 133.0, start = 0.3;
    const double samplesPerQuarter = rate * 60.0 / tempo;
    const uint32_t frames = 200000;
    for (const auto& pattern : std::vector<std::vector<uint32_t>>{{512}, {1}, {37, 1024, 129}, {828}}) {
        auto driver = BR::Test::MakeDriver("sync", float(rate));
        driver->SetParameterByName("DINsync Type", 1.0f);
        BR::DriverTransport transport = BR::Test::MakeTransport(rate, tempo, start);
        const auto edges =
            BR::Test::RisingEdges(BR::Test::RenderWithTransport(*driver, transport, frames, pattern)[0]);
        // Ticks from the bar line at quarter 4 on.
        size_t checked = 0;
        for (int k = 96;; ++k) {
            const double exact = (k / 24.0 - start) * samplesPerQuarter;
            if (exact >= frames - 1) break;
            ASSERT_LT(checked, edges.size());
            const double fraction = exact - std::floor(exact);
            if (std::fabs(fraction - 0.5) > 0.02) {
                EXPECT_EQ(edges[checked], uint32_t(std::llround(exact))) << "tick " << k;
            } else {
                // Within a fiftieth of a sample of the midpoint, the host's tick rounding decides.
                EXPECT_NEAR(double(edges[checked]), exact, 0.52) << "tick " << k;
            }
            ++checked;
        }
        EXPECT_EQ(checked, edges.size());
        EXPECT_GT(checked, 150u);
    }
}
