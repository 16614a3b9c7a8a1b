// A whole MIDI stream read back from the rendered gate bit by the independent receiver at each of the
// six sample rates: start and clock from the transport, a note on and off from the host, system
// exclusive typed in with "Send" (head and tail in two presses) and passed from the host, the stop,
// and a restart on a bar line with song position. Every byte is recovered with its start bit on the
// sample it was queued at, later bytes of a group one byte length (15, 16, 29, 31, 58 or 62 samples;
// 15, 16, 30, 32, 60 or 64 for the six-byte expander) apart, and clocks every 2.5 * rate / tempo samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/modules/hardware/GateRig.h"

namespace {

struct Change {
    uint32_t frame;
    std::function<void(BR::HostDriver&, BR::DriverTransport&)> apply;
};

uint32_t On64(double x) {
    return uint32_t(std::lround(x / 64.0)) * 64;
}

void Check(const char* stem, float rate, int bytesLength, double tempo) {
    auto driver = BR::Test::MakeGateDriver(stem, rate);
    driver->SetParameterByName("MIDI Out MIDI Channel", 17.0f);
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    driver->SetParameterByName("MIDI Out Output", 21.0f);  // "Gates 3/6"
    driver->SetParameterByName("Byte 1", 0xF0);
    driver->SetParameterByName("Byte 2", 0x7D);
    driver->SetParameterByName("Byte 3", 0x11);
    driver->SetParameterByName("Bytes", 3);
    driver->SetParameterByName("Send", 1);
    const uint32_t P = uint32_t(std::lround(rate * 2.5 / tempo));  // samples per clock, whole here
    const uint32_t f1 = On64(0.3 * P), f2 = On64(0.5 * P), f3 = On64(1.5 * P), f4 = On64(2.5 * P),
                   f5 = On64(3.5 * P), f6 = On64(4.5 * P), total = f6 + 2 * P + 100;
    BR::DriverTransport transport = BR::Test::MakeTransport(rate, tempo, 0.0);
    driver->SetTransport(&transport);
    const std::vector<Change> changes = {
        {f1, [](BR::HostDriver& d, BR::DriverTransport&) { d.SetParameterByName("Send", 0); }},
        {f2,
         [](BR::HostDriver& d, BR::DriverTransport&) {
             d.SetParameterByName("Byte 1", 0xF7);
             d.SetParameterByName("Bytes", 1);
             d.SetParameterByName("Send", 1);
         }},
        {f5, [](BR::HostDriver&, BR::DriverTransport& t) { t.playing = false; }},
        {f6,
         [](BR::HostDriver& d, BR::DriverTransport& t) {
             d.SetParameterByName("Use MIDI SPP", 1);
             BR::Test::PlaceTransport(t, 4.0);  // a bar line: the song position is 96 / 6 = 16
             t.playing = true;
         }},
    };
    const std::vector<BR::Test::MidiAt> midi = {
        {0, {0x90, 60, 100}}, {f3, {0x80, 60, 0}}, {f4, {0xF0, 0x01, 0x02, 0xF7}}};
    std::vector<float> left(total), right(total);
    std::vector<BR::TimedMidi> blockMidi;
    size_t nextChange = 0;
    for (uint32_t done = 0; done < total; done += 64) {
        while (nextChange < changes.size() && changes[nextChange].frame <= done)
            changes[nextChange++].apply(*driver, transport);
        const uint32_t n = std::min(64u, total - done);
        blockMidi.clear();
        for (const auto& m : midi)
            if (m.frame >= done && m.frame < done + n)
                blockMidi.push_back({m.frame - done, uint32_t(m.bytes.size()), m.bytes.data()});
        std::vector<const float*> in(8, nullptr);
        float* out[2] = {left.data() + done, right.data() + done};
        driver->Process(in.data(), out, n, blockMidi.data(), uint32_t(blockMidi.size()));
    }

    std::vector<BR::Test::ReceivedByte> expected;
    auto group = [&](uint32_t at, std::vector<uint8_t> bytes) {
        for (size_t j = 0; j < bytes.size(); ++j)
            expected.push_back({at + uint32_t(j) * uint32_t(bytesLength), bytes[j]});
    };
    group(0, {0xFA, 0xF8, 0x90, 60, 100, 0xF0, 0x7D, 0x11});
    group(f2, {0xF7});
    group(P, {0xF8});
    group(f3, {0x80, 60, 0});
    group(2 * P, {0xF8});
    group(f4, {0xF0, 0x01, 0x02, 0xF7});
    group(3 * P, {0xF8});
    group(f5, {0xFC});
    group(f6, {0xF2, 16, 0, 0xFB, 0xF8});
    group(f6 + P, {0xF8});
    group(f6 + 2 * P, {0xF8});
    std::sort(expected.begin(), expected.end(),
              [](const BR::Test::ReceivedByte& a, const BR::Test::ReceivedByte& b) {
                  return a.startSample < b.startSample;
              });

    const auto frames = BR::Test::Frames(left, right, std::string(stem) == "basaltcontroller");
    int framingErrors = 0;
    const auto received = BR::Test::ReceiveSerial(BR::Test::GateLine(frames, 21), rate, &framingErrors);
    EXPECT_EQ(framingErrors, 0) << rate;
    EXPECT_EQ(received, expected) << rate;
    // Nothing else in the frame moves.
    for (size_t i = 0; i < frames.size(); ++i) {
        auto rest = frames[i];
        rest[2] &= uint8_t(~0x20);
        ASSERT_EQ(rest, (std::array<uint8_t, 6>{})) << rate << " sample " << i;
    }
}

}  // namespace

TEST(GateSerial, StreamAtEachRate) {
    // Tempos that make a clock a whole number of samples: 122.5 BPM in the 44100 family.
    Check("ardentcontroller", 44100.0f, 15, 122.5);
    Check("ardentcontroller", 48000.0f, 16, 120.0);
    Check("ardentcontroller", 88200.0f, 29, 122.5);
    Check("ardentcontroller", 96000.0f, 31, 120.0);
    Check("ardentcontroller", 176400.0f, 58, 122.5);
    Check("ardentcontroller", 192000.0f, 62, 120.0);
}

TEST(GateSerial, SixByteStreamHoldsTheBaseRatePattern) {
    // The six-byte expander keeps the 44100 or 48000 pattern, held two or four times as long.
    Check("basaltcontroller", 44100.0f, 15, 122.5);
    Check("basaltcontroller", 48000.0f, 16, 120.0);
    Check("basaltcontroller", 88200.0f, 30, 122.5);
    Check("basaltcontroller", 96000.0f, 32, 120.0);
    Check("basaltcontroller", 176400.0f, 60, 122.5);
    Check("basaltcontroller", 192000.0f, 64, 120.0);
}
