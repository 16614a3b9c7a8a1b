// A changed control port is written through the parameter object at the start of the next block;
// the host is one more source, and the last writer wins.
#include <gtest/gtest.h>

#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2Controls, ChangedPortReachesTheParameterAtTheNextBlock) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    BrelCorvaneBase& dc = host.Module();
    host.Run(64);
    EXPECT_EQ(dc.GetTableValue(0), 0.0f);
    host.Control("output_positive_l") = 0.75f;
    EXPECT_EQ(dc.GetTableValue(0), 0.0f);  // not before the block
    host.Run(64);
    EXPECT_EQ(dc.GetTableValue(0), 0.75f);
    EXPECT_EQ(host.outputs[0][0], 0.75f);  // and that block already renders with it
}

TEST(Lv2Controls, LastWriterWins) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    BrelCorvaneBase& dc = host.Module();
    host.Control("output_positive_l") = 0.5f;
    host.Run(64);
    // Another source (OSC, Lua, the editor) writes later: an unchanged port leaves it alone.
    dc.SetTableValue(0, 0.125f);
    host.Run(64);
    host.Run(64);
    EXPECT_EQ(dc.GetTableValue(0), 0.125f);
    EXPECT_EQ(host.outputs[0][63], 0.125f);
    // The host moves its port again: now the host was last.
    host.Control("output_positive_l") = 0.625f;
    host.Run(64);
    EXPECT_EQ(dc.GetTableValue(0), 0.625f);
}

TEST(Lv2Controls, PortsAtTheirDescribedDefaultChangeNothing) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    BrelCorvaneBase& dc = host.Module();
    dc.SetTableValue(2, -1.5f);  // "Multiplier L", set before the first block by another source
    host.Run(64);
    EXPECT_EQ(dc.GetTableValue(2), -1.5f);
}

TEST(Lv2Controls, NonFiniteValuesAreIgnoredAndRangesClamped) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    BrelCorvaneBase& dc = host.Module();
    host.Control("multiplier_l") = std::numeric_limits<float>::quiet_NaN();
    host.Run(16);
    EXPECT_EQ(dc.GetTableValue(2), 1.0f);
    host.Control("multiplier_l") = 7.0f;
    host.Run(16);
    EXPECT_EQ(dc.GetTableValue(2), 2.0f);
}

TEST(Lv2Controls, LongRowNamesReachTheirCutIdentifier) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.Control("a_parameter_whose_name_runs_past_thirty_one_characters") = 0.75f;
    host.Run(16);
    EXPECT_EQ(host.Module().GetTableValue(17), 0.75f);
}
