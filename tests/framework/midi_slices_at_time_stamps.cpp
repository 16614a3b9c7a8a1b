// A MIDI event at time stamp 0 is dispatched before the first sample; one beyond the block's end lets
// the last slice run to the end and is dispatched after it; others cut the block where they stand.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
std::vector<std::string> Trace(const ProbeModule& module) {
    std::vector<std::string> trace;
    for (const auto& call : module.calls)
        trace.push_back(call.what + "@" + std::to_string(call.position) +
                        (call.what == "Slice" ? ":" + std::to_string(call.frames) : ""));
    return trace;
}
}  // namespace

TEST(MidiSlicing, StampZeroComesBeforeTheFirstSample) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][64] = {}, out[2][64] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 64, {Packet(0, {0x90, 60, 100})});
    EXPECT_EQ(Trace(module),
              (std::vector<std::string>{"BeginBlock@0", "NoteOn@0", "Slice@0:64", "EndBlock@64"}));
}

TEST(MidiSlicing, StampBeyondTheEndIsDispatchedAfterTheLastSlice) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][64] = {}, out[2][64] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 64, {Packet(100, {0x80, 60, 0})});
    EXPECT_EQ(Trace(module),
              (std::vector<std::string>{"BeginBlock@0", "Slice@0:64", "NoteOff@64", "EndBlock@64"}));
}

TEST(MidiSlicing, EventsCutTheBlockAtTheirFrames) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][64] = {}, out[2][64] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 64,
                {Packet(10, {0x90, 60, 100}), Packet(10, {0xB0, 7, 99}), Packet(40, {0xE0, 0, 64})});
    EXPECT_EQ(Trace(module),
              (std::vector<std::string>{"BeginBlock@0", "Slice@0:10", "NoteOn@10", "CC@10", "Slice@10:30",
                                        "Bend@40", "Slice@40:24", "EndBlock@64"}));
    // Each slice wrote its own part of the block.
    for (int i = 0; i < 64; ++i)
        ASSERT_EQ(out[0][i], 0.5f);
}

TEST(MidiSlicing, NoteOnWithZeroVelocityIsANoteOff) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][8] = {}, out[2][8] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 8, {Packet(2, {0x93, 60, 0}), Packet(3, {0x83, 61, 77})});
    std::vector<ProbeModule::Call> offs;
    for (const auto& call : module.calls)
        if (call.what == "NoteOff") offs.push_back(call);
    ASSERT_EQ(offs.size(), 2u);
    EXPECT_EQ(offs[0].a, 3);
    EXPECT_EQ(offs[0].b, 60);
    EXPECT_EQ(offs[0].c, 0);
    EXPECT_EQ(offs[1].b, 61);
    EXPECT_EQ(offs[1].c, 77);  // status 128 passes its velocity on
}
