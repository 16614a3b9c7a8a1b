// Port numbers: controls first (port k + 1 is table row k), then audio in channel order with
// sidechains flagged, outputs with the aux stems grouped as "3/4" and "5/6", then MIDI in.
#include <gtest/gtest.h>

#include "host/lv2/Lv2PortLayout.h"
#include "modules/ModuleFactory.h"
#include "tests/host/lv2/probe/HostProbe.h"

TEST(Lv2PortLayout, ProbeWithSidechainsAndAuxStems) {
    auto module = std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());
    const BR::Lv2PortLayout layout = BR::BuildLv2PortLayout(BrelCorvaneHostProbe::Entry(), *module);
    const uint32_t rows = BrelCorvaneHostProbe::kNumParameters;
    ASSERT_EQ(layout.numControls, rows + 1);
    EXPECT_EQ(layout.ports[0].kind, BR::Lv2PortKind::Enabled);
    for (uint32_t k = 0; k < rows; ++k) {
        EXPECT_EQ(layout.ports[k + 1].tableIndex, int32_t(k));
        EXPECT_EQ(layout.ports[k + 1].index, k + 1);
    }
    EXPECT_EQ(layout.firstAudioIn, rows + 1);
    ASSERT_EQ(layout.numAudioIn, 4u);
    const char* inputs[] = {"in_1", "in_2", "sidechain_1", "sidechain_2"};
    for (uint32_t c = 0; c < 4; ++c) {
        const BR::Lv2Port& port = layout.ports[layout.firstAudioIn + c];
        EXPECT_EQ(port.symbol, inputs[c]);
        EXPECT_EQ(port.channel, int32_t(c));
        EXPECT_EQ(port.sideChain, c >= 2);
    }
    ASSERT_EQ(layout.numAudioOut, 6u);
    ASSERT_EQ(layout.groups.size(), 3u);
    EXPECT_EQ(layout.groups[0].label, "Main");
    EXPECT_EQ(layout.groups[1].label, "3/4");
    EXPECT_EQ(layout.groups[2].label, "5/6");
    EXPECT_EQ(layout.groups[1].symbol, "aux_3_4");
    for (uint32_t c = 0; c < 6; ++c) {
        const BR::Lv2Port& port = layout.ports[layout.firstAudioOut + c];
        EXPECT_EQ(port.symbol, "out_" + std::to_string(c + 1));
        EXPECT_EQ(port.group, int32_t(c / 2));
        EXPECT_EQ(port.right, c % 2 == 1);
    }
    EXPECT_EQ(layout.midiIn, layout.firstAudioOut + 6);
    EXPECT_EQ(layout.ports.size(), size_t(layout.midiIn) + 1);
}

TEST(Lv2PortLayout, DCIsStereoWithoutGroups) {
    auto module = BR::CreateModule("dc");
    const BR::Lv2PortLayout layout = BR::BuildLv2PortLayout(*BR::FindCatalogueEntry("dc"), *module);
    EXPECT_EQ(layout.numControls, 14u);
    EXPECT_EQ(layout.numAudioIn, 2u);
    EXPECT_EQ(layout.numAudioOut, 2u);
    EXPECT_TRUE(layout.groups.empty());
    for (const BR::Lv2Port& port : layout.ports)
        EXPECT_FALSE(port.sideChain);
    EXPECT_EQ(layout.ports[1].name, "Output Positive L");
    EXPECT_EQ(layout.ports[11].integer, true);  // "OSC Port Offset" is indexed without value strings
    EXPECT_EQ(layout.ports[11].enumeration, false);
}
