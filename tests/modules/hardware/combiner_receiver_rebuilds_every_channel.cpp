// An independent receiver rebuilds every Cinder and Dunmore channel from the rendered byte lane and
// each value equals the 12-bit value of that channel's input at the sample it was taken, for ramps,
// steps and random signals; with and without "SMUX Proof", for both targets, and after SMUX, where
// the far side sees only every other sample.
#include <gtest/gtest.h>

#include <random>

#include "CombinerReceiver.h"
#include "tests/support/Render.h"

namespace {

using BR::Test::Channels;

constexpr uint32_t kFrames = 6000;

// Channel k on module input k + 2, the defaults' "Input 1" = "3" onward; the host serves six
// sidechains, so the Dunmore's channels 7 and 8 are set to take inputs 1 and 2 instead.
size_t InputOf(int k) {
    return k < 6 ? size_t(k + 2) : size_t(k - 6);
}

void RouteLastTwo(BR::HostDriver& driver, int count) {
    if (count == 8) {
        driver.SetParameterByName("Input 7", 1.0f);
        driver.SetParameterByName("Input 8", 2.0f);
    }
}

Channels Signals(int kind, int count, uint32_t seed) {
    Channels in(size_t(count + 2), std::vector<float>(kFrames, 0.0f));
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-1.1f, 1.1f);
    for (int k = 0; k < count; ++k) {
        auto& x = in[InputOf(k)];
        for (uint32_t i = 0; i < kFrames; ++i) {
            if (kind == 0) x[i] = -1.0f + 2.0f * float((i * (k + 1)) % kFrames) / kFrames;            // ramps
            if (kind == 1) x[i] = ((i / (300 + 70 * k)) & 1) ? 0.75f - 0.1f * k : -0.5f + 0.05f * k;  // steps
            if (kind == 2) x[i] = uniform(random);
        }
    }
    return in;
}

// Checks every received value against the input at its sample (or, when only every other sample is
// seen, at the sample before, where the byte may have started). Returns values per channel.
std::vector<int> Check(const std::vector<BR::Test::ReceivedValue>& got, const Channels& in, int count,
                       bool halfRate, const std::string& what) {
    std::vector<int> perChannel(size_t(count), 0);
    for (const auto& v : got) {
        EXPECT_LT(v.channel, count) << what;
        if (v.channel >= count) continue;
        const auto& x = in[InputOf(v.channel)];
        const bool match = v.value == BR::Test::ExpectedValue(x[v.at]) ||
                           (halfRate && v.at > 0 && v.value == BR::Test::ExpectedValue(x[v.at - 1]));
        EXPECT_TRUE(match) << what << " channel " << v.channel << " at " << v.at << " got " << v.value
                           << " want " << BR::Test::ExpectedValue(x[v.at]);
        if (!match) break;
        ++perChannel[size_t(v.channel)];
    }
    return perChannel;
}

struct Case {
    const char* stem;
    int channels;
};

}  // namespace

TEST(CombinerReceiver, EveryChannelRebuiltExactly) {
    for (const Case c : {Case{"cindercombiner", 4}, Case{"dunmorecombiner", 8}}) {
        const bool dunmore = c.channels == 8;
        for (int kind = 0; kind < 3; ++kind) {
            for (int proof = 0; proof < 2; ++proof) {
                for (int hardware = 0; hardware < 2; ++hardware) {
                    for (int adaptive = 0; adaptive < (dunmore ? 2 : 1); ++adaptive) {
                        const std::string what = std::string(c.stem) + " kind " + std::to_string(kind) +
                                                 " proof " + std::to_string(proof) + " hardware " +
                                                 std::to_string(hardware) + " adaptive " +
                                                 std::to_string(adaptive);
                        auto driver = BR::Test::MakeDriver(c.stem);
                        driver->SetParameterByName("Input Thru", 0.0f);
                        RouteLastTwo(*driver, c.channels);
                        driver->SetParameterByName("SMUX Proof", float(proof));
                        driver->SetParameterByName("Target Hardware", float(hardware));
                        driver->SetParameterByName("Target Channel", float(hardware ? 5 : 2));
                        if (dunmore) driver->SetParameterByName("Adaptive Mode", float(adaptive));
                        const Channels in = Signals(kind, c.channels, 7u + uint32_t(kind));
                        const auto out = BR::Test::RenderFrames(*driver, kFrames, 97, in);
                        const auto bytes =
                            BR::Test::LaneBytes(out[0], out[1], hardware == 1, hardware ? 5 : 2);
                        const auto got =
                            dunmore ? BR::Test::ReceiveDunmore(bytes) : BR::Test::ReceiveCinder(bytes);
                        const auto per = Check(got, in, c.channels, false, what);
                        // Every channel arrives, again and again. A cycle is 8 or 24 samples, doubled
                        // with "SMUX Proof"; the adaptive mode sends changing channels at least as often.
                        const int cycle = (dunmore ? 24 : 8) * (proof ? 2 : 1);
                        for (int k = 0; k < c.channels; ++k) {
                            // Adaptive: channels that hold still are skipped, yet each one arrives and
                            // its last value is the input's last.
                            if (adaptive && kind == 1) {
                                EXPECT_GE(per[size_t(k)], 1) << what << " channel " << k;
                                int last = -1;
                                for (const auto& v : got)
                                    if (v.channel == k) last = v.value;
                                EXPECT_EQ(last, BR::Test::ExpectedValue(in[InputOf(k)][kFrames - 1]))
                                    << what << " channel " << k;
                            } else {
                                EXPECT_GE(per[size_t(k)], int(kFrames) / cycle - 2)
                                    << what << " channel " << k;
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(CombinerReceiver, AfterSMUXTheFarSideRebuildsBothStreams) {
    for (const Case c : {Case{"cindercombiner", 4}, Case{"dunmorecombiner", 8}}) {
        const bool dunmore = c.channels == 8;
        auto first = BR::Test::MakeDriver(c.stem);
        auto second = BR::Test::MakeDriver(c.stem);
        auto smux = BR::Test::MakeDriver("smux");
        const Channels inA = Signals(2, c.channels, 1), inB = Signals(0, c.channels, 2);
        for (auto* d : {first.get(), second.get()}) {
            d->SetParameterByName("Input Thru", 0.0f);
            RouteLastTwo(*d, c.channels);
            d->SetParameterByName("SMUX Proof", 1.0f);
        }
        const auto a = BR::Test::RenderFrames(*first, kFrames, 64, inA);
        const auto b = BR::Test::RenderFrames(*second, kFrames, 64, inB);
        const auto woven = BR::Test::RenderFrames(*smux, kFrames, 64, {a[0], b[0], a[1], b[1]});
        // The far side runs at half the rate: stream A is the even samples, stream B the odd ones.
        for (int stream = 0; stream < 2; ++stream) {
            std::vector<float> l, r;
            for (uint32_t i = uint32_t(stream); i < kFrames; i += 2) {
                l.push_back(woven[0][i]);
                r.push_back(woven[1][i]);
            }
            const auto bytes = BR::Test::LaneBytes(l, r, false, 0);
            auto got = dunmore ? BR::Test::ReceiveDunmore(bytes) : BR::Test::ReceiveCinder(bytes);
            for (auto& v : got)
                v.at = v.at * 2 + size_t(stream);  // back to the host's sample index
            const auto per =
                Check(got, stream == 0 ? inA : inB, c.channels, true, std::string(c.stem) + " smux");
            const int cycle = (dunmore ? 24 : 8) * 2;
            for (int k = 0; k < c.channels; ++k)
                EXPECT_GE(per[size_t(k)], int(kFrames) / cycle - 3)
                    << c.stem << " stream " << stream << " " << k;
        }
        // Without "SMUX Proof" half the bytes are lost and values cannot be rebuilt reliably.
        auto plain = BR::Test::MakeDriver(c.stem);
        plain->SetParameterByName("Input Thru", 0.0f);
        RouteLastTwo(*plain, c.channels);
        const auto p = BR::Test::RenderFrames(*plain, kFrames, 64, inA);
        std::vector<float> l, r;
        for (uint32_t i = 0; i < kFrames; i += 2) {
            l.push_back(p[0][i]);
            r.push_back(p[1][i]);
        }
        const auto bytes = BR::Test::LaneBytes(l, r, false, 0);
        const auto got = dunmore ? BR::Test::ReceiveDunmore(bytes) : BR::Test::ReceiveCinder(bytes);
        EXPECT_LT(got.size(), size_t(kFrames / 20)) << c.stem;
    }
}
