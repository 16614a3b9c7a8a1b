// bufsz:maxBlockLength reaches SetMaxBlockSize; longer host blocks are cut for the module.
#include <gtest/gtest.h>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2BlockLength, OptionSetsTheModulesMaximum) {
    BR::Test::HostOptions options;
    options.maxBlockLength = 2048;
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    EXPECT_EQ(host.Instance().MaxBlock(), 2048u);
    EXPECT_EQ(host.Module().SilenceFrames(), 2048u);
    host.Run(2048);
    EXPECT_EQ(host.outputs[4][0], 2048.0f / 8192.0f);  // a block longer than 1024, whole
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    EXPECT_EQ(probe.blocksSeen, 1u);
}

TEST(Lv2BlockLength, WithoutTheOptionBlocksAreCutAt1024) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    EXPECT_EQ(host.Module().SilenceFrames(), 1024u);
    host.Run(3000);
    EXPECT_EQ(host.outputs[4][0], 1024.0f / 8192.0f);
    EXPECT_EQ(host.outputs[4][2047], 1024.0f / 8192.0f);
    EXPECT_EQ(host.outputs[4][2048], 952.0f / 8192.0f);
}

TEST(Lv2BlockLength, HugeOptionsAreCappedAndBadOnesIgnored) {
    BR::Test::HostOptions options;
    options.maxBlockLength = 1 << 20;
    BR::Test::Lv2TestHost big(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    EXPECT_EQ(big.Instance().MaxBlock(), 8192u);
    options.maxBlockLength = -5;
    BR::Test::Lv2TestHost bad(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    EXPECT_EQ(bad.Instance().MaxBlock(), 1024u);
}
