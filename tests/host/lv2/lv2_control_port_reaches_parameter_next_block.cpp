// A changed control port is written through the parameter object at the start of the next block;
// the host is one more source, and the last writer wins.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/host/lv2/support/Lv2TestHost.h"
#include "tests/support/RunCommand.h"

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

TEST(Lv2Controls, InterfaceCategoryKeepsThePreferenceWhileThePortStaysAtItsDefault) {
    const std::string folder = BR::Test::MakeTempFolder();
    std::filesystem::create_directories(folder + "/Brelmont");
    std::ofstream(folder + "/Brelmont/com.brelmont.Corvane2.conf") << "Default interface category=1\n";
    const char* old = std::getenv("XDG_CONFIG_HOME");
    const std::string saved = old ? old : "";
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    float value = -1, afterMove = -1;
    {
        BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
        EXPECT_EQ(host.Control("interface_category"), 0.0f);  // the described default
        host.Run(16);
        value = host.Module().GetTableValue(BrelCorvaneHostProbe::kInterfaceCategory);
        host.Control("interface_category") = 1.0f;
        host.Run(16);
        host.Control("interface_category") = 0.0f;
        host.Run(16);
        afterMove = host.Module().GetTableValue(BrelCorvaneHostProbe::kInterfaceCategory);
    }
    if (old) {
        setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
    } else {
        unsetenv("XDG_CONFIG_HOME");
    }
    std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());  // the shared table as it was
    EXPECT_EQ(value, 1.0f);      // the new instance's default, from the preference
    EXPECT_EQ(afterMove, 0.0f);  // once the host moves the port, the port is the last writer
}
