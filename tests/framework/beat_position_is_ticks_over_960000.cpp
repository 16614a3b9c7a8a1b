// The beat position of a block is the tick position at the block's sample location divided by
// 960000, the ticks of a quarter note.
#include <gtest/gtest.h>

#include "framework/HostInterfaces.h"

namespace {
// A host whose timeline runs at 1000 ticks a sample from tick 0 at sample 0.
class TickHost : public BR::HostTransport {
public:
    bool IsTransportPlaying() const override { return true; }
    double GetCurrentTempo() const override { return 125.0; }
    int64_t GetCurrentNativeSampleLocation() const override { return location; }
    int64_t GetCustomTickPosition(int64_t sampleLocation) const override {
        asked = sampleLocation;
        return sampleLocation * 1000;
    }
    int64_t location = 0;
    mutable int64_t asked = -1;
};
}  // namespace

TEST(BeatPosition, TicksOver960000AtTheBlockStart) {
    EXPECT_EQ(BR::kTicksPerQuarter, 960000);
    EXPECT_DOUBLE_EQ(BR::kBeatsPerTick * 960000.0, 1.0);
    TickHost host;
    host.location = 3360;  // 3360000 ticks: 3.5 quarter notes
    EXPECT_DOUBLE_EQ(BR::CurrentBeatPosition(&host), 3.5);
    EXPECT_EQ(host.asked, 3360);  // asked at the block's own location
    host.location = 960;
    const BR::TransportReading reading = BR::ReadTransport(&host);
    EXPECT_DOUBLE_EQ(reading.beats, 1.0);
    EXPECT_EQ(reading.tempo, 125.0);
    EXPECT_TRUE(reading.playing);
    host.location = -480;  // before the start
    EXPECT_DOUBLE_EQ(BR::CurrentBeatPosition(&host), -0.5);
}
