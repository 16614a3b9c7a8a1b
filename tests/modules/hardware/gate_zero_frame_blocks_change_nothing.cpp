// Blocks of no frames between ordinary ones leave a gate controller's output as it was: the clock,
// its start, the gates and the serial line land on the same samples.
#include <gtest/gtest.h>

#include "framework/RenderRecord.h"
#include "tests/modules/hardware/GateRig.h"

namespace {
// Hands the module a block of length 0 with the transport as it stands, at the next block's position.
void RenderNoFrames(BrelCorvaneBase& module, BR::DriverTransport& transport) {
    BrelCorvaneBase* slot = &module;
    BR::HostMidiNode node{{0, nullptr}};
    int32_t length = 0;
    float* channels[8] = {};
    BR::RenderRecord record;
    BR::ResetFieldData(record, &slot);
    record.inputs = channels;
    record.outputs = channels;
    record.bufferLength = &length;
    record.inputMIDI = &node;
    record.transport = &transport;
    module.RenderAudio(&record);
}
}  // namespace

TEST(GateZeroFrames, EmptyBlocksChangeNothing) {
    for (uint32_t block : {250u, 256u}) {
        BR::Test::Channels results[2];
        for (int withEmpty = 0; withEmpty < 2; ++withEmpty) {
            auto driver = BR::Test::MakeGateDriver("ardentcontroller");
            driver->SetParameterByName("MIDI Out Clock", 1.0f);
            driver->SetParameterByName("Gates 2 MIDI Channel", 1.0f);
            BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
            driver->SetTransport(&transport);
            const uint32_t total = 6000;
            std::vector<float> left(total), right(total);
            const uint8_t note[3] = {0x90, 48, 100};
            for (uint32_t done = 0; done < total; done += block) {
                const uint32_t n = std::min(block, total - done);
                std::vector<const float*> in(8, nullptr);
                float* out[2] = {left.data() + done, right.data() + done};
                if (withEmpty) RenderNoFrames(driver->Module(), transport);
                const BR::TimedMidi midi{0, 3, note};
                driver->Process(in.data(), out, n, &midi, done == 1500 || done == 1536 ? 1 : 0);
            }
            results[withEmpty] = {left, right};
        }
        EXPECT_EQ(results[1], results[0]) << block;
        // Clock bytes every 1000 samples: the block size of 250 puts a tick on each block's end.
        const auto bytes = BR::Test::ReceiveSerial(
            BR::Test::GateLine(BR::Test::Frames(results[1][0], results[1][1], false), 0), 48000.0);
        ASSERT_GE(bytes.size(), 6u);
        EXPECT_EQ(bytes[2], (BR::Test::ReceivedByte{1000, 248})) << block;
        EXPECT_EQ(bytes[3], (BR::Test::ReceivedByte{2000, 248})) << block;
    }
}
