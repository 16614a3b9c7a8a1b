// In "Cinder" and "Dunmore" hardware modes the first two outputs carry one byte lane of the target's
// frame: the combiner stream (step 2, no offset, no filter) over the outputs the plain mode mixes, in
// lane "Target Channel" of a five- or six-byte frame, every other byte 0. Checked sample for sample
// against that encoding made here from a plain-mode instance's outputs, for every lane of both targets
// (a lane beyond a five-byte frame leaves both words 0), in blocks of 256 and 7.
#include <gtest/gtest.h>

#include <cstring>

#include "VoiceControllerRig.h"
#include "modules/hardware/CombinerStream.h"

namespace {

using BR::Test::Channels;
using BR::Test::Midi;
using BR::Test::MidiAt;
using BR::Test::VoiceRig;

// Moving signals on all six outputs: pitch, gate, envelopes and velocity mixed. No smoothing: in a
// hardware mode it comes after the encoding, so the lane carries the unsmoothed mix.
void SetSignals(VoiceRig& rig) {
    const char* sources[5] = {"Pitch", "Gate", "Env1", "Env2", "Velocity"};
    for (int o = 1; o <= 6; ++o) {
        for (int k = 0; k < 5; ++k)
            rig.Set("Output " + std::to_string(o) + " " + sources[k], 0.15f * float((k + o) % 4) - 0.2f);
    }
    rig.LinearCalibration();
}

std::vector<MidiAt> Notes() {
    return {{40, Midi(0x90, 60, 100)},
            {900, Midi(0x80, 60, 0)},
            {1300, Midi(0x90, 72, 30)},
            {2100, Midi(0x90, 48, 127)},
            {3500, Midi(0x80, 48, 0)}};
}

// The lane's bytes over the plain mix, as a receiver expects them, turned into the two samples.
template <typename Stream, typename Next>
void Encode(const Channels& plain, int32_t target, int32_t lane, Channels& expected, Next next) {
    Stream stream;
    const float fullScale = BR::kFullScaleA;
    expected.assign(2, std::vector<float>(plain[0].size()));
    for (size_t i = 0; i < plain[0].size(); ++i) {
        uint8_t frame[6] = {};
        const uint8_t byte = next(stream, i);
        if (lane < BR::TargetLanes(target)) frame[lane] = byte;
        int32_t left, right;
        BR::TargetWords(target, frame, left, right);
        expected[0][i] = BR::WordToSample(left, fullScale);
        expected[1][i] = BR::WordToSample(right, fullScale);
    }
}

void CheckMode(int32_t mode) {
    const uint32_t frames = 4096;
    for (uint32_t block : {256u, 7u}) {
        VoiceRig plainRig;
        SetSignals(plainRig);
        const Channels plain = plainRig.Render(frames, block, Notes());
        const int32_t channels = mode == 3 ? 6 : 4;
        for (int32_t target = 0; target <= 1; ++target) {
            for (int32_t lane = 0; lane <= 5; ++lane) {
                VoiceRig rig;
                SetSignals(rig);
                rig.Set("Hardware Mode", float(mode));
                rig.Set("Target Hardware", float(target));
                rig.Set("Target Channel", float(lane));
                const Channels got = rig.Render(frames, block, Notes());
                Channels expected;
                auto value = [&](size_t i) {
                    return [&plain, channels, i](int32_t c) {
                        return c < channels ? BR::CombinerValue(plain[size_t(c)][i], 0) : 2048;
                    };
                };
                if (mode == 3)
                    Encode<BR::DunmoreStream>(
                        plain, target, lane, expected,
                        [&](BR::DunmoreStream& s, size_t i) { return s.Next(value(i), 2, true); });
                else
                    Encode<BR::CinderStream>(
                        plain, target, lane, expected,
                        [&](BR::CinderStream& s, size_t i) { return s.Next(value(i), 2); });
                for (int o = 0; o < 2; ++o)
                    ASSERT_EQ(std::memcmp(got[size_t(o)].data(), expected[size_t(o)].data(),
                                          frames * sizeof(float)),
                              0)
                        << "mode " << mode << " target " << target << " lane " << lane << " block " << block
                        << " output " << o + 1;
                // The comparison means something only if the lane's bytes change the samples.
                bool moved = false;
                for (size_t i = 0; i < frames; ++i)
                    moved = moved || got[0][i] != got[0][0] || got[1][i] != got[1][0];
                EXPECT_EQ(moved, lane < BR::TargetLanes(target)) << "target " << target << " lane " << lane;
            }
        }
    }
}

}  // namespace

TEST(VoiceControllerHardwareLane, CinderEncodesThePlainMix) {
    CheckMode(2);
}

TEST(VoiceControllerHardwareLane, DunmoreEncodesThePlainMix) {
    CheckMode(3);
}
