// CV To MIDI's messages leave through the plug-in's MIDI output port at their frames within each host
// block, in frame order, for blocks longer than the module's as well; rendering with the port
// allocates nothing; a port with too little room loses the rest without overrunning it; modules that
// send no MIDI have no such port.
#include <gtest/gtest.h>

#include "host/lv2/Lv2PortLayout.h"
#include "tests/host/lv2/support/Lv2TestHost.h"
#include "tests/support/RampAndGate.h"

namespace {

using Message = BR::Test::RampAndGate::Message;

void Configure(BR::Test::Lv2TestHost& host) {
    for (const auto& [name, value] : BR::Test::RampAndGate::Settings(3, 7))
        host.Control(BR::Lv2SymbolFromName(name)) = value;
}

// Runs the signal through the host in blocks of `block` and gathers the port's events as absolute frames.
std::vector<Message> Play(BR::Test::Lv2TestHost& host, const BR::Test::RampAndGate& signal, uint32_t block,
                          uint64_t* allocations = nullptr) {
    std::vector<Message> got;
    const uint32_t frames = uint32_t(signal.cv.size());
    for (uint32_t done = 0; done < frames; done += block) {
        const uint32_t n = std::min(block, frames - done);
        std::copy_n(signal.cv.begin() + done, n, host.inputs[0].begin());
        std::copy_n(signal.gate.begin() + done, n, host.inputs[1].begin());
        host.Run(n);
        if (allocations) *allocations += host.lastRunAllocations;
        int64_t previous = 0;
        for (const auto& e : host.SentMidi()) {
            EXPECT_GE(e.frame, previous) << "events in frame order";
            EXPECT_LT(e.frame, int64_t(n));
            previous = e.frame;
            EXPECT_EQ(e.bytes.size(), 3u);
            got.push_back({done + uint64_t(e.frame), e.bytes[0], e.bytes[1], e.bytes[2]});
        }
    }
    return got;
}

}  // namespace

TEST(Lv2MidiOut, RampAndGateMessagesAtTheirFrames) {
    const BR::Test::RampAndGate signal(48000, 4800, 2400);
    const std::vector<Message> expected = signal.Expected(48000, 3, 7);
    for (const uint32_t block : {256u, 3000u}) {  // 3000: the module renders it in pieces of 1024
        BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:cvtomidi");
        ASSERT_TRUE(host.Valid());
        Configure(host);
        uint64_t allocations = 0;
        EXPECT_EQ(Play(host, signal, block, &allocations), expected) << "blocks of " << block;
        EXPECT_EQ(allocations, 0u);
    }
}

TEST(Lv2MidiOut, BothChannelsInOneBlockComeOutInFrameOrder) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:cvtomidi");
    host.Control("enable_cc_l") = 1;
    host.Control("enable_cc_r") = 1;
    host.Control("send_cc_r") = 9;
    // L steps at frame 200, R at frame 100: R's message is sent after L's but leaves before it.
    for (uint32_t i = 0; i < 512; ++i) {
        host.inputs[0][i] = i < 200 ? -1.0f : 1.0f;
        host.inputs[1][i] = i < 100 ? -1.0f : 1.0f;
    }
    host.Run(512);
    const auto sent = host.SentMidi();
    ASSERT_EQ(sent.size(), 4u);
    using E = BR::Test::Lv2TestHost::SentEvent;
    EXPECT_EQ(sent[0], (E{0, {0xB0, 1, 0}}));
    EXPECT_EQ(sent[1], (E{0, {0xB0, 9, 0}}));
    EXPECT_EQ(sent[2], (E{100, {0xB0, 9, 127}}));
    EXPECT_EQ(sent[3], (E{200, {0xB0, 1, 127}}));
    // The next block, in which nothing changes, starts from an empty sequence.
    std::fill_n(host.inputs[0].begin(), 64, 1.0f);
    std::fill_n(host.inputs[1].begin(), 64, 1.0f);
    host.Run(64);
    EXPECT_TRUE(host.SentMidi().empty());
}

TEST(Lv2MidiOut, APortWithLittleRoomKeepsTheFirstMessagesOnly) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:cvtomidi");
    host.Control("enable_cc_l") = 1;
    host.Control("max_rate_l") = 1000;
    for (uint32_t i = 0; i < 4096; ++i)
        host.inputs[0][i] = float(i % 2) - 0.5f;  // a new value whenever the rate allows
    // Room for the sequence header and two events of 24 bytes (16 + 3, padded to 8).
    host.midiOutCapacity = 8 + 2 * 24;
    host.Run(4096);
    const auto sent = host.SentMidi();  // throws if the plug-in wrote past its room
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].frame, 0);
    EXPECT_EQ(sent[1].frame, 49);  // 48 samples of rate limit at 48 kHz, then the next change
    EXPECT_EQ(host.lastRunAllocations, 0u);
    host.midiOutCapacity = 4;  // less than a sequence header: nothing is written
    host.Run(256);
    EXPECT_TRUE(host.SentMidi().empty());
}

TEST(Lv2MidiOut, OnlyModulesThatSendMidiHaveTheOutputPort) {
    BR::Test::Lv2TestHost cvtomidi(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:cvtomidi");
    const BR::Lv2PortLayout& layout = cvtomidi.Instance().Layout();
    ASSERT_NE(layout.midiOut, BR::Lv2PortLayout::kNoPort);
    EXPECT_EQ(layout.midiOut, layout.midiIn + 1);  // last, so the other ports keep their numbers
    EXPECT_EQ(layout.ports.back().symbol, "midi_out");
    EXPECT_EQ(cvtomidi.PortIndex("midi_out"), layout.midiOut);
    BR::Test::Lv2TestHost dc(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    EXPECT_EQ(dc.Instance().Layout().midiOut, BR::Lv2PortLayout::kNoPort);
    EXPECT_EQ(dc.Instance().Layout().ports.back().symbol, "midi_in");
}
