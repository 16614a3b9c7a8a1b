// Rendering the Quantizer allocates nothing: both modes, a scale, smoothing, and the table builds that
// follow grid writes and key changes between blocks all run on preallocated storage.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/AllocationCounter.h"

TEST(QuantizerRealtime, RenderAllocatesNothing) {
    auto driver = BR::Test::MakeQuantizer();
    auto& quantizer = BR::Test::Quantizer(*driver);
    driver->Module().SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0);
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 24);
    driver->SetParameterByName("Smoothing L", 5);
    driver->SetParameterByName("Enable R", 1);
    driver->SetParameterByName("Mode R", 1);
    driver->SetParameterByName("Enable Scale R", 1);
    driver->SetParameterByName("Scale R", float(BR::Test::ScaleIndex(quantizer, "Major")));
    driver->SetParameterByName("Smoothing R", -3);
    const uint32_t block = 256;
    std::vector<float> in(block), outL(block), outR(block);
    for (uint32_t i = 0; i < block; ++i)
        in[i] = float(i) / float(block) * 2.0f - 1.0f;
    const float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    const uint8_t cc[3] = {0xB0, 1, 64};
    const BR::TimedMidi midi[1] = {{100, 3, cc}};
    driver->Process(inputs, outputs, block, midi, 1);

    uint64_t allocations = 0;
    const uint32_t buildsBefore = quantizer.TableBuilds();
    for (int b = 0; b < 40; ++b) {
        if (b % 10 == 5) driver->Module().SetProperty(BR::kPropertyMakeCinderTable, nullptr, 0);
        if (b % 10 == 7) driver->SetParameterByName("Key R", float(b % 12));
        BR::Test::AllocationScope scope;
        driver->Process(inputs, outputs, block, midi, 1);
        allocations += scope.Count();
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_GT(quantizer.TableBuilds(), buildsBefore);  // the builds did run inside the counted blocks
    EXPECT_NE(outR[block - 1], in[block - 1]);
}
