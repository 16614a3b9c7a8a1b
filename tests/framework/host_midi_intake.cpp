// Host packets become queue items: status and channel split, data masked to seven bits, system
// exclusive gathered across packets without its opening 240.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
// Renders a block in which the module's handlers see nothing (all stamps beyond the block), then
// reads the queue back directly.
struct Intake {
    ProbeModule module;
    ManualHost host{module};
    float in[2][4] = {}, out[2][4] = {};
    void Feed(std::vector<BR::HostMidiPacket> packets) {
        host.Render({in[0], in[1]}, {out[0], out[1]}, 0, packets);
    }
};
}  // namespace

TEST(HostMidiIntake, StatusAndChannelAreSplit) {
    Intake t;
    t.Feed({Packet(5, {0x99, 36, 100})});
    BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->kind, BR::kMessageShortMIDI);
    EXPECT_EQ(item->status, 144);
    EXPECT_EQ(item->channel, 9);
    EXPECT_EQ(item->timeStamp, 5u);
}

TEST(HostMidiIntake, DataBytesAreMaskedToSevenBits) {
    Intake t;
    t.Feed({Packet(0, {0xB2, 0xFF, 0x80})});
    BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
    EXPECT_EQ(item->dataByte1, 127);
    EXPECT_EQ(item->dataByte2, 0);
}

TEST(HostMidiIntake, SysExInOnePacket) {
    Intake t;
    t.Feed({Packet(0, {240, 1, 2, 247})});
    BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->kind, BR::kMessageByteBlock);
    EXPECT_EQ(item->bytes, (std::vector<uint8_t>{1, 2, 247}));
    EXPECT_EQ(item->timeStamp, 0u);
    EXPECT_EQ(t.module.MidiToAudioQueue().Read(), nullptr);
}

TEST(HostMidiIntake, SysExAcrossPacketsAndBlocks) {
    Intake t;
    t.Feed({Packet(0, {240, 10, 11, 12}), Packet(0, {13, 14, 15, 16})});
    EXPECT_EQ(t.module.MidiToAudioQueue().Read(), nullptr);  // still open
    // Short-looking bytes inside an open message are taken as its bytes.
    t.Feed({Packet(0, {0x90, 60, 247})});
    BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->bytes, (std::vector<uint8_t>{10, 11, 12, 13, 14, 15, 16, 0x90, 60, 247}));
    // Closed: the next packet is a short message again.
    t.Feed({Packet(3, {0x80, 60, 0})});
    item = t.module.MidiToAudioQueue().Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->kind, BR::kMessageShortMIDI);
    EXPECT_EQ(item->status, 0x80);
}

TEST(HostMidiIntake, MessagesWithoutDataBytesPassWhatStandsInThePacket) {
    Intake t;
    BR::HostMidiPacket packet = Packet(2, {0xC5});
    packet.data[1] = 0xAA;  // left over in the packet
    packet.data[2] = 0x01;
    t.Feed({packet});
    BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->status, 0xC0);
    EXPECT_EQ(item->channel, 5);
    EXPECT_EQ(item->dataByte1, 0x2A);
    EXPECT_EQ(item->dataByte2, 0x01);
}

TEST(HostMidiIntake, OverflowDropsWithTheText) {
    Intake t;
    t.Feed({Packet(0, {0x90, 1, 1})});
    ASSERT_NE(t.module.MidiToAudioQueue().Read(), nullptr);  // the reader stands on slot 0
    std::vector<BR::HostMidiPacket> packets;
    for (uint8_t n = 0; n < 64; ++n)
        packets.push_back(Packet(0, {0x90, n, 1}));
    testing::internal::CaptureStderr();
    t.Feed(packets);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "MessageQueue::Write() overflow\n");
    // 63 arrived in order; the last was dropped and the queue is intact.
    for (uint8_t n = 0; n < 63; ++n) {
        BR::MessageQueueItem* item = t.module.MidiToAudioQueue().Read();
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->dataByte1, n);
    }
    EXPECT_EQ(t.module.MidiToAudioQueue().Read(), nullptr);
}
