// Rendering the CV combiners (filters, adaptive skipping, "SMUX Proof", test signals, thru), the AC
// Encoder, CV Input in each mode (with designs run again on changed rows), the Voice Controller in
// each hardware mode and Sync in both frame modes allocates nothing.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "tests/support/AllocationCounter.h"
#include "tests/support/Render.h"
#include "tests/support/TransportRender.h"

namespace {

struct Setting {
    const char* name;
    float value;
};

uint64_t CountRendering(const char* stem, const std::vector<Setting>& settings, int inputs,
                        const std::vector<Setting>& duringRender = {}) {
    auto driver = BR::Test::MakeDriver(stem, 48000.0f);
    for (const Setting& s : settings)
        EXPECT_TRUE(driver->SetParameterByName(s.name, s.value)) << stem << " " << s.name;
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 128.0, 0.0);
    driver->SetTransport(&transport);
    const uint32_t block = 256;
    std::vector<float> in(block), outs[6];
    for (uint32_t i = 0; i < block; ++i)
        in[i] = 0.6f * std::sin(float(i) * 2.25f) + ((i / 40) & 1 ? 0.2f : -0.2f);
    std::vector<const float*> ins(size_t(inputs), in.data());
    float* outputs[6];
    for (int o = 0; o < 6; ++o) {
        outs[o].assign(block, 0.0f);
        outputs[o] = outs[o].data();
    }
    std::array<uint8_t, 3> on = {0x90, 60, 100}, off = {0x80, 60, 0};
    std::vector<BR::TimedMidi> midi = {{10, 3, on.data()}, {200, 3, off.data()}};
    driver->Process(ins.data(), outputs, block, midi.data(), 2);  // first block: designs, buffers
    // Names are made before counting: a long one would allocate as a string, not in the render.
    std::vector<std::string> names;
    for (const Setting& s : duringRender)
        names.emplace_back(s.name);
    BR::Test::AllocationScope scope;
    for (int b = 0; b < 400; ++b) {
        if (b == 200)
            for (size_t k = 0; k < names.size(); ++k)
                driver->SetParameterByName(names[k], duringRender[k].value);
        driver->Process(ins.data(), outputs, b % 3 == 0 ? 255 : block, midi.data(), 2);
    }
    return scope.Count();
}

}  // namespace

TEST(LinksRealtime, RenderingAllocatesNothing) {
    EXPECT_EQ(CountRendering("cindercombiner", {{"Filter 1", 1}, {"Filter 3", 1}, {"Offset 2", 1.5f}}, 6,
                             {{"SMUX Proof", 1}, {"Target Hardware", 1}, {"Filter 2", 1}}),
              0u);
    EXPECT_EQ(CountRendering("cindercombiner", {{"Test Signal", 3}}, 6), 0u);
    EXPECT_EQ(CountRendering("dunmorecombiner", {{"Filter 1", 1}, {"Filter 8", 1}, {"Input 7", 1}}, 10,
                             {{"SMUX Proof", 1}, {"Adaptive Mode", 0}}),
              0u);
    EXPECT_EQ(CountRendering("dunmorecombiner", {{"Test Signal", 2}, {"Target Hardware", 1}}, 10), 0u);
    EXPECT_EQ(CountRendering("acencoder", {{"Enable L", 1}, {"Enable R", 1}, {"Input Polarity R", 1}}, 2),
              0u);
    EXPECT_EQ(CountRendering("cvinput", {{"Mode L", 2}, {"Mode R", 0}, {"Bipolar R", 1}, {"Smoothing R", 2}},
                             2, {{"Elkhorn Filter Freq", 0.2f}, {"Elkhorn Centre", 16500}, {"Mode R", 1}}),
              0u);
    for (float mode : {1.0f, 2.0f, 3.0f})
        EXPECT_EQ(CountRendering("voicecontroller", {{"Hardware Mode", mode}, {"Target Hardware", 1}}, 1,
                                 {{"Target Channel", 3}}),
                  0u)
            << mode;
    for (float mode : {1.0f, 2.0f})
        EXPECT_EQ(
            CountRendering(
                "sync",
                {{"BR Hardware Mode", mode}, {"DINsync Type", 1}, {"Enable FSK", 1}, {"Clock Output", 9}}, 2,
                {{"Enable FSK", 0}}),
            0u)
            << mode;
}
