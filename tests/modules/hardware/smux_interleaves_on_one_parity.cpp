// SMUX: a block of 3 frames from phase 0 gives first, second, first, and the next block starts with
// the second source; a flip swaps the roles at once without resetting the parity; a block of 0
// frames changes nothing; inputs 3 and 4 weave into output 2 the same way.
#include <gtest/gtest.h>

#include "modules/hardware/SMUX.h"
#include "tests/support/Render.h"

namespace {
// Input k carries 10 * (k + 1) + the frame number, so each sample names its source and index.
BR::Test::Channels Inputs(uint32_t frames) {
    BR::Test::Channels in(4, std::vector<float>(frames));
    for (size_t k = 0; k < 4; ++k)
        for (uint32_t i = 0; i < frames; ++i)
            in[k][i] = float(100 * (k + 1) + i);
    return in;
}
}  // namespace

TEST(SMUX, OddBlocksCarryTheParity) {
    auto driver = BR::Test::MakeDriver("smux");
    auto& smux = static_cast<BrelCorvaneSMUX::BrelCorvane&>(driver->Module());
    EXPECT_EQ(smux.OddPhase(), 0);
    auto out = BR::Test::RenderFrames(*driver, 3, 3, Inputs(3));
    EXPECT_EQ(out[0], (std::vector<float>{100, 201, 102}));
    EXPECT_EQ(out[1], (std::vector<float>{300, 401, 302}));
    EXPECT_EQ(smux.OddPhase(), 1);
    out = BR::Test::RenderFrames(*driver, 4, 4, Inputs(4));
    EXPECT_EQ(out[0], (std::vector<float>{200, 101, 202, 103}));
    EXPECT_EQ(smux.OddPhase(), 1);
}

TEST(SMUX, FlipSwapsAtOnceWithoutReset) {
    auto driver = BR::Test::MakeDriver("smux");
    BR::Test::RenderFrames(*driver, 1, 1, Inputs(1));  // phase now 1
    driver->SetParameterByName("Flip L", 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 4, 4, Inputs(4));
    EXPECT_EQ(out[0], (std::vector<float>{100, 201, 102, 203}));  // second (now input 1) first
    EXPECT_EQ(out[1], (std::vector<float>{400, 301, 402, 303}));  // output 2 keeps its order
}

TEST(SMUX, ZeroFrameBlockChangesNothing) {
    auto driver = BR::Test::MakeDriver("smux");
    auto& smux = static_cast<BrelCorvaneSMUX::BrelCorvane&>(driver->Module());
    BR::Test::RenderFrames(*driver, 1, 1, Inputs(1));
    std::vector<const float*> in(4, nullptr);
    std::vector<float> l(1, -7.0f), r(1, -7.0f);
    float* out[2] = {l.data(), r.data()};
    driver->Process(in.data(), out, 0, nullptr, 0);
    EXPECT_EQ(smux.OddPhase(), 1);
    EXPECT_EQ(l[0], -7.0f);
}

TEST(SMUX, ParityRunsAcrossAnyBlockSizes) {
    for (uint32_t block : {1u, 3u, 7u, 256u}) {
        auto driver = BR::Test::MakeDriver("smux");
        const auto out = BR::Test::RenderFrames(*driver, 1000, block, Inputs(1000));
        for (uint32_t i = 0; i < 1000; ++i)
            ASSERT_EQ(out[0][i], float((i & 1 ? 200 : 100) + i)) << block << " " << i;
    }
}

TEST(SMUX, IdentityAndTexts) {
    auto driver = BR::Test::MakeDriver("smux");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane SMUX");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_smux.lua");
    EXPECT_EQ(m.NumInputs(), 4);
    EXPECT_EQ(m.NumSidechains(), 2);
    EXPECT_EQ(m.NumTableParameters(), 3);
    char text[32];
    m.GetParameterValueText(2, text);
    EXPECT_STREQ(text, "Off");
    m.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
}
