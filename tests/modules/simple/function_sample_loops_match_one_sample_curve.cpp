// Every curve's sample loops give, bit for bit, what TransferSample (the one-sample form the display
// draws with) gives: at every slice length from 1 to 9 and at 64 and 255 frames (the loops run four
// samples at a time with a scalar tail), on inputs with infinities, not-a-numbers, subnormals, signed
// zeros, the logarithm's 1e-10 floor and the exponential's hold, into separate buffers and in place.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "modules/simple/Function.h"
#include "tests/support/Render.h"

namespace {

std::vector<float> Inputs() {
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<float> x = {std::nanf(""), inf,      -inf,      3.0e38f,  -3.0e38f, 1e-10f, 1.0000001e-10f,
                            9.999999e-11f, 1.4e-45f, -1.4e-45f, 0.0f,     -0.0f,    1e-38f, 57.0f,
                            79.7f,         80.0f,    1000.0f,   -1000.0f, 0.5f,     -0.5f,  1.0f};
    for (int k = 0; x.size() < 255; ++k)
        x.push_back(-2.5f + 0.02173f * float(k));
    return x;
}

uint32_t Bits(float v) {
    return std::bit_cast<uint32_t>(v);
}

// Same bits, or both not-a-number (whose payload the library may choose).
::testing::AssertionResult SameSample(float got, float want) {
    if (std::isnan(got) && std::isnan(want)) return ::testing::AssertionSuccess();
    if (Bits(got) == Bits(want)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << got << " (" << std::hex << Bits(got) << ") against " << want << " (" << Bits(want) << ")";
}

struct Setting {
    int32_t function;
    float s, o, g, h;
};

}  // namespace

TEST(FunctionCurves, SampleLoopsMatchTheOneSampleCurve) {
    const Setting settings[] = {
        {0, -1.75f, 0.3f, -1.5f, 0.25f}, {1, 1.0f, 0.6f, 1.0f, 0.0f},   {1, -1.25f, 0.2f, 1.75f, -0.5f},
        {2, 1.0f, 0.0f, 1.0f, 0.0f},     {2, 2.0f, -0.4f, -2.0f, 0.5f}, {3, -1.5f, 0.35f, 0.75f, -1.0f},
        {1, 0.0f, -1.0f, 1.0f, 1.0f},    {2, 0.0f, 1.0f, 0.5f, 0.0f},
    };
    const std::vector<float> x = Inputs();
    for (const Setting& st : settings) {
        auto driver = BR::Test::MakeDriver("Function");
        driver->SetParameterByName("Enable L", 1.0f);
        driver->SetParameterByName("Function L", float(st.function));
        driver->SetParameterByName("Input Scale L", st.s);
        driver->SetParameterByName("Input Offset L", st.o);
        driver->SetParameterByName("Output Scale L", st.g);
        driver->SetParameterByName("Output Offset L", st.h);
        driver->SetParameterByName("Enable R", 1.0f);
        driver->SetParameterByName("Function R", float(st.function));
        driver->SetParameterByName("Input Scale R", st.s);
        driver->SetParameterByName("Input Offset R", st.o);
        driver->SetParameterByName("Output Scale R", st.g);
        driver->SetParameterByName("Output Offset R", st.h);
        BR::Test::RenderFrames(*driver, 1, 1);  // the block in which the module takes its rows
        auto& module = driver->Module();

        for (uint32_t frames : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 64u, 255u}) {
            for (uint32_t start = 0; start + frames <= x.size(); start += frames) {
                // Left into its own buffer; right in place, the host's input buffer written over.
                std::vector<float> left(x.begin() + start, x.begin() + start + frames), outL(frames);
                std::vector<float> right = left;
                float* inputs[2] = {left.data(), right.data()};
                float* outputs[2] = {outL.data(), right.data()};
                module.ProcessSlice(inputs, outputs, frames);
                for (uint32_t i = 0; i < frames; ++i) {
                    const float want = BrelCorvaneFunction::TransferSample(st.function, x[start + i], st.s,
                                                                           st.o, st.g, st.h);
                    EXPECT_TRUE(SameSample(outL[i], want))
                        << "curve " << st.function << ", " << frames << " frames, input " << x[start + i];
                    EXPECT_TRUE(SameSample(right[i], want)) << "curve " << st.function << " in place, "
                                                            << frames << " frames, input " << x[start + i];
                }
            }
        }
    }
}
