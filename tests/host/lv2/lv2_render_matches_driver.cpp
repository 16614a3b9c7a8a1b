// A plug-in renders what the shared driver renders for the same settings, whatever the host's block.
#include <gtest/gtest.h>

#include "tests/host/lv2/support/Lv2TestHost.h"
#include "tests/support/Render.h"

TEST(Lv2Render, DCMatchesTheDriverInHostBlocksOf3000) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    ASSERT_TRUE(host.Valid());
    EXPECT_EQ(host.Instance().MaxBlock(), 1024u);  // no bufsz:maxBlockLength offered
    host.Control("output_positive_l") = 0.25f;
    host.Control("output_symmetric_r") = -0.5f;
    host.Control("input_add_r") = 0.5f;
    host.Control("smoothing_l") = 20.0f;

    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 0.25f);
    driver->SetParameterByName("Output Symmetric R", -0.5f);
    driver->SetParameterByName("Input Add R", 0.5f);
    driver->SetParameterByName("Smoothing L", 20.0f);
    BR::Test::Channels input(2, std::vector<float>(9000));
    for (size_t i = 0; i < 9000; ++i)
        input[1][i] = float(i % 100) * 0.01f;
    const BR::Test::Channels expected = BR::Test::RenderFrames(*driver, 9000, 1024, input);

    for (uint32_t block = 0; block < 3; ++block) {
        std::copy_n(input[1].begin() + block * 3000, 3000, host.inputs[1].begin());
        host.Run(3000);
        for (size_t c = 0; c < 2; ++c)
            for (size_t i = 0; i < 3000; ++i)
                ASSERT_EQ(host.outputs[c][i], expected[c][block * 3000 + i])
                    << "channel " << c << " frame " << i;
    }
    EXPECT_EQ(host.outputs[0][2999], 0.25f);
}

TEST(Lv2Render, EveryBuiltModuleRendersLikeTheDriver) {
    for (const BR::Lv2ModuleSource& source : BR::CorvaneBundleInfo().modules) {
        SCOPED_TRACE(source.entry->stem);
        BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(),
                                   std::string("urn:brelmont:corvane:") + source.entry->stem);
        ASSERT_TRUE(host.Valid());
        auto driver = BR::Test::MakeDriver(source.entry->stem);
        BR::Test::Channels input(size_t(driver->NumHostInputs()), std::vector<float>(4096));
        for (size_t c = 0; c < input.size(); ++c)
            for (size_t i = 0; i < 4096; ++i)
                input[c][i] = float((i * (c + 3)) % 200) * 0.005f - 0.5f;
        const BR::Test::Channels expected = BR::Test::RenderFrames(*driver, 4096, 512, input);
        for (uint32_t block = 0; block < 8; ++block) {
            for (size_t c = 0; c < input.size(); ++c)
                std::copy_n(input[c].begin() + block * 512, 512, host.inputs[c].begin());
            host.Run(512);
            for (size_t c = 0; c < expected.size(); ++c)
                for (size_t i = 0; i < 512; ++i)
                    ASSERT_EQ(host.outputs[c][i], expected[c][block * 512 + i]) << "channel " << c;
        }
    }
}
