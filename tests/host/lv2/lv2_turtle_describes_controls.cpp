// The Turtle of a plug-in: ranges, defaults, units, integer/enumeration/toggle properties, scale points
// from the value strings, escaped names, Enabled on lv2:enabled, the MIDI port and the port groups.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/lv2/Lv2Bundle.h"
#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/support/RunCommand.h"

namespace {

std::string ProbeTurtle() {
    auto module = std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());
    const BR::Lv2BundleInfo bundle = BrelCorvaneHostProbe::ProbeBundleInfo();
    return BR::Lv2PluginTurtle(bundle, BrelCorvaneHostProbe::Entry(),
                               BR::BuildLv2PortLayout(BrelCorvaneHostProbe::Entry(), *module),
                               module->GetModuleName());
}

// The text of the port whose lv2:index is `index`.
std::string PortText(const std::string& turtle, uint32_t index) {
    const size_t at = turtle.find("lv2:index " + std::to_string(index) + " ;");
    if (at == std::string::npos) return "";
    const size_t begin = turtle.rfind('[', at);
    size_t end = turtle.find("    ]", at);
    return turtle.substr(begin, end - begin);
}

}  // namespace

TEST(Lv2Turtle, ControlsCarryTheirTableProperties) {
    using namespace BrelCorvaneHostProbe;
    const std::string ttl = ProbeTurtle();
    const std::string enabled = PortText(ttl, 0);
    EXPECT_NE(enabled.find("lv2:designation lv2:enabled"), std::string::npos);
    EXPECT_NE(enabled.find("lv2:toggled"), std::string::npos);
    EXPECT_NE(enabled.find("lv2:default 1.0"), std::string::npos);

    const std::string mode = PortText(ttl, 1 + kMode);
    EXPECT_NE(mode.find("lv2:portProperty lv2:integer , lv2:enumeration"), std::string::npos);
    EXPECT_NE(mode.find("lv2:scalePoint [ rdfs:label \"Gate\" ; rdf:value 0.0 ]"), std::string::npos);
    EXPECT_NE(mode.find("lv2:scalePoint [ rdfs:label \"Velocity\" ; rdf:value 1.0 ]"), std::string::npos);
    EXPECT_NE(mode.find("lv2:scalePoint [ rdfs:label \"Note\" ; rdf:value 2.0 ]"), std::string::npos);
    EXPECT_NE(mode.find("lv2:maximum 2.0"), std::string::npos);

    const std::string osc = PortText(ttl, 1 + kOSCPortOffset);
    EXPECT_NE(osc.find("lv2:portProperty lv2:integer ;"), std::string::npos);
    EXPECT_EQ(osc.find("scalePoint"), std::string::npos);

    EXPECT_NE(PortText(ttl, 1 + kHold).find("lv2:portProperty lv2:toggled"), std::string::npos);
    const std::string rate = PortText(ttl, 1 + kRate);
    EXPECT_NE(rate.find("pprops:logarithmic"), std::string::npos);
    EXPECT_NE(rate.find("units:unit units:hz"), std::string::npos);
    EXPECT_NE(rate.find("lv2:minimum 0.1 ;"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kSmoothingL).find("units:unit units:ms"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kMixPercent).find("units:unit units:pc"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kMixPercent).find("lv2:default 50.0"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kDetune).find("units:unit units:cent"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kTranspose).find("units:unit units:semitone12TET"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kRootNote).find("units:unit units:midiNote"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kGain).find("units:unit units:db"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kTempo).find("units:unit units:bpm"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kLength).find("units:unit units:beat"), std::string::npos);
    EXPECT_EQ(PortText(ttl, 1 + kLevel).find("units:unit"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kLevel).find("lv2:minimum -2.0 ;"), std::string::npos);
    EXPECT_NE(PortText(ttl, 1 + kSwing).find("lv2:name \"Swing \\\"Q\\\" \\\\ Amount\""), std::string::npos);
}

TEST(Lv2Turtle, AudioMidiAndGroups) {
    const std::string ttl = ProbeTurtle();
    const uint32_t firstIn = 1 + BrelCorvaneHostProbe::kNumParameters;
    EXPECT_EQ(PortText(ttl, firstIn).find("isSideChain"), std::string::npos);
    EXPECT_NE(PortText(ttl, firstIn + 2).find("lv2:portProperty lv2:isSideChain"), std::string::npos);
    EXPECT_NE(PortText(ttl, firstIn + 3).find("lv2:portProperty lv2:isSideChain"), std::string::npos);
    const std::string out3 = PortText(ttl, firstIn + 4 + 2);
    EXPECT_NE(out3.find("pg:group <urn:brelmont:corvane-test:hostprobe#aux_3_4>"), std::string::npos);
    EXPECT_NE(out3.find("lv2:designation pg:left"), std::string::npos);
    EXPECT_NE(PortText(ttl, firstIn + 4 + 5).find("lv2:designation pg:right"), std::string::npos);
    EXPECT_NE(
        ttl.find("<urn:brelmont:corvane-test:hostprobe#aux_5_6>\n    a pg:OutputGroup , pg:StereoGroup ;\n"
                 "    lv2:symbol \"aux_5_6\" ;\n    rdfs:label \"5/6\" ."),
        std::string::npos);
    const std::string midi = PortText(ttl, firstIn + 10);
    EXPECT_NE(midi.find("atom:bufferType atom:Sequence"), std::string::npos);
    EXPECT_NE(midi.find("atom:supports midi:MidiEvent , time:Position"), std::string::npos);
    EXPECT_NE(ttl.find("lv2:extensionData state:interface , work:interface"), std::string::npos);
    EXPECT_NE(ttl.find("opts:supportedOption bufsz:maxBlockLength"), std::string::npos);
}

TEST(Lv2Turtle, InterfaceCategoryDefaultIgnoresThePreference) {
    // The preference would make a new instance's default 1; the description keeps the preference's own 0.
    const std::string folder = BR::Test::MakeTempFolder();
    std::filesystem::create_directories(folder + "/Brelmont");
    std::ofstream(folder + "/Brelmont/com.brelmont.Corvane2.conf") << "Default interface category=1\n";
    const char* old = std::getenv("XDG_CONFIG_HOME");
    const std::string saved = old ? old : "";
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    const std::string ttl = ProbeTurtle();
    auto module = std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());
    const float tableDefault =
        module->ParameterTable()[BrelCorvaneHostProbe::kInterfaceCategory].defaultValue;
    if (old)
        setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
    else
        unsetenv("XDG_CONFIG_HOME");
    std::unique_ptr<BrelCorvaneBase>(BrelCorvaneHostProbe::Create());  // the shared table as it was
    EXPECT_EQ(tableDefault, 1.0f);
    EXPECT_NE(PortText(ttl, 1 + BrelCorvaneHostProbe::kInterfaceCategory).find("lv2:default 0.0"),
              std::string::npos);
}

TEST(Lv2Turtle, NumbersReadBackExactly) {
    for (float v : {0.0f, 1.0f, -2.0f, 0.1f, 1e-5f, 12345.678f, -0.0005f, 3.4e38f}) {
        const std::string text = BR::TurtleNumber(v);
        EXPECT_EQ(std::stof(text), v) << text;
        EXPECT_NE(text.find_first_of(".e"), std::string::npos) << text;
    }
    EXPECT_EQ(BR::TurtleNumber(0.5f), "0.5");
    EXPECT_EQ(BR::TurtleNumber(-2.0f), "-2.0");
}
