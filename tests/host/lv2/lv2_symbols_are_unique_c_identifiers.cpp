// Port symbols: derived from row names, valid C identifiers, unique per plug-in, clear of the fixed ports.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "host/lv2/Lv2PortLayout.h"
#include "tests/host/lv2/probe/HostProbe.h"

namespace {

void ExpectValidUniqueSymbols(const BR::Lv2PortLayout& layout) {
    const std::regex identifier("[_a-zA-Z][_a-zA-Z0-9]*");
    std::set<std::string> seen;
    for (const BR::Lv2Port& port : layout.ports) {
        EXPECT_TRUE(std::regex_match(port.symbol, identifier)) << port.symbol;
        EXPECT_TRUE(seen.insert(port.symbol).second) << "repeated symbol " << port.symbol;
    }
}

}  // namespace

TEST(Lv2Symbols, DerivedFromRowNames) {
    EXPECT_EQ(BR::Lv2SymbolFromName("Output Positive L"), "output_positive_l");
    EXPECT_EQ(BR::Lv2SymbolFromName("OSC Port Offset"), "osc_port_offset");
    EXPECT_EQ(BR::Lv2SymbolFromName("3/4 Mix (%)"), "_3_4_mix");
    EXPECT_EQ(BR::Lv2SymbolFromName("  --Sync L--  "), "sync_l");
    EXPECT_EQ(BR::Lv2SymbolFromName("?!"), "parameter");
}

TEST(Lv2Symbols, ProbeCollisionsGetNumberedAndFixedPortsKeepTheirs) {
    auto module = std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());
    const BR::Lv2PortLayout layout = BR::BuildLv2PortLayout(BrelCorvaneHostProbe::Entry(), *module);
    ExpectValidUniqueSymbols(layout);
    EXPECT_EQ(layout.ports[0].symbol, "enabled");
    EXPECT_EQ(layout.ports[1 + BrelCorvaneHostProbe::kLevel].symbol, "level");
    EXPECT_EQ(layout.ports[1 + BrelCorvaneHostProbe::kLevelLookalike].symbol, "level_2");
    EXPECT_EQ(layout.ports[1 + BrelCorvaneHostProbe::kEnabledLookalike].symbol, "enabled_2");
    EXPECT_EQ(layout.ports[1 + BrelCorvaneHostProbe::kMixPercent].symbol, "_3_4_mix");
}

TEST(Lv2Symbols, EveryBuiltModuleHasValidUniqueSymbols) {
    const BR::Lv2BundleInfo bundle = BR::CorvaneBundleInfo();
    ASSERT_FALSE(bundle.modules.empty());
    for (const BR::Lv2ModuleSource& source : bundle.modules) {
        SCOPED_TRACE(source.entry->stem);
        std::unique_ptr<BrelCorvaneBase> module(source.factory());
        ExpectValidUniqueSymbols(BR::BuildLv2PortLayout(*source.entry, *module));
    }
}
