// The plug-in's run() (controls, MIDI, positions, worker request, render) allocates nothing; the test
// host counts the allocations of that call alone.
#include <gtest/gtest.h>

#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2RealTime, RunAllocatesNothing) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.Run(512);
    host.Control("level") = 0.5f;
    host.Control("mode") = 1.0f;
    host.AddMidi(10, {0x90, 60, 100});
    host.AddPosition(30, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});
    host.AddPosition(300, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});  // a wrap
    host.AddMidi(400, {0x80, 60, 0});
    host.Run(3000);
    EXPECT_EQ(host.lastRunAllocations, 0u);
    EXPECT_EQ(host.ScheduledWork(), 1u);
    EXPECT_EQ(host.outputs[0][10], 100.0f / 127.0f * 0.5f);
}

TEST(Lv2RealTime, DCRunAllocatesNothing) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    host.Run(256);
    host.Control("output_positive_l") = 0.5f;
    host.Control("smoothing_l") = -30.0f;
    host.Run(4096);
    EXPECT_EQ(host.lastRunAllocations, 0u);
}
