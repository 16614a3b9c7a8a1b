// --property ID and --property ID=VALUE set a property before the render with no payload, a 32-bit
// integer or a text, in the order given; "properties" does the same per patch instance. A property the
// module refuses, or a malformed one, ends the command with status 2.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/CommandLine.h"
#include "host/cli/PropertyOptions.h"
#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {

std::string FileText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(CliProperty, PayloadKinds) {
    using Payload = BR::PropertySetting::Payload;
    BR::PropertySetting p = BR::ParsePropertySetting("64090", "--property");
    EXPECT_EQ(p.id, 64090u);
    EXPECT_EQ(p.payload, Payload::None);
    EXPECT_TRUE(BR::PropertyPayload(p).empty());

    p = BR::ParsePropertySetting("64050=-2", "--property");
    EXPECT_EQ(p.payload, Payload::Integer);
    EXPECT_EQ(BR::PropertyPayload(p), (std::vector<uint8_t>{0xFE, 0xFF, 0xFF, 0xFF}));
    p = BR::ParsePropertySetting("64050=2147483647", "--property");
    EXPECT_EQ(BR::PropertyPayload(p), (std::vector<uint8_t>{0xFF, 0xFF, 0xFF, 0x7F}));

    // Past 32 bits, with a point, or with letters: a text with its terminator.
    for (const char* text : {"2147483648", "1.5", "My grid", "", "12a"}) {
        p = BR::ParsePropertySetting(std::string("64121=") + text, "--property");
        EXPECT_EQ(p.payload, Payload::Text) << text;
        std::vector<uint8_t> expected(text, text + std::strlen(text) + 1);
        EXPECT_EQ(BR::PropertyPayload(p), expected) << text;
    }
    EXPECT_THROW(BR::ParsePropertySetting("=3", "--property"), BR::UsageError);
    EXPECT_THROW(BR::ParsePropertySetting("abc", "--property"), BR::UsageError);
    EXPECT_THROW(BR::ParsePropertySetting("4294967296", "--property"), BR::UsageError);
}

TEST(CliProperty, ArdentGridAndNameBeforeTheRender) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::AudioData in;
    in.sampleRate = 48000;
    in.channels = {{0.2f, 0.0f, 0.5f}, {0.2f, 0.0f, 0.5f}};
    BR::WriteWav(f + "/in.wav", in);
    // 64090 names the grid "<Ardent Calibration>", and the text given after it renames it.
    auto result = BR::Test::RunCorvane("render quantizer --in " + f +
                                       "/in.wav --set \"Enable L=1\" --set \"Mode L=Calibrated\" "
                                       "--property 64090 --property \"64121=My grid\" --state-out " +
                                       f + "/q.state --out " + f + "/q.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData out = BR::ReadWav(f + "/q.wav");
    EXPECT_EQ(out.channels[0], (std::vector<float>{12.0f * 0.015686275f, 0.0f, 31.0f * 0.015686275f}));
    EXPECT_EQ(out.channels[1], in.channels[1]);
    const std::string state = FileText(f + "/q.state");
    EXPECT_NE(state.find(std::string("My grid") + '\0'), std::string::npos);
    EXPECT_EQ(state.find("<Ardent Calibration>"), std::string::npos);

    result = BR::Test::RunCorvane("render quantizer --frames 8 --property 64091 --state-out " + f +
                                  "/c.state --out " + f + "/c.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(FileText(f + "/c.state").find(std::string("<Cinder Calibration>") + '\0'), std::string::npos);
    std::filesystem::remove_all(f);
}

TEST(CliProperty, RefusedAndMalformed) {
    const std::string f = BR::Test::MakeTempFolder();
    auto result = BR::Test::RunCorvane("render dc --frames 8 --property 64090 --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--property \"64090\": module \"dc\" refuses property 64090 (error -10879)"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(result.err.find("usage:"), std::string::npos) << result.err;
    result = BR::Test::RunCorvane("render quantizer --frames 8 --property x=1 --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--property \"x=1\": the id: \"x\" is not a whole number"), std::string::npos)
        << result.err;
    result = BR::Test::RunCorvane("render quantizer --frames 8 --property 64120=short --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("refuses property 64120"), std::string::npos) << result.err;
    std::filesystem::remove_all(f);
}

TEST(CliProperty, PatchProperties) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({
  "frames": 4,
  "instances": [
    {"name": "src", "module": "dc", "set": {"Output Positive L": 0.2}},
    {"name": "q", "module": "quantizer", "inputs": ["src:0"], "properties": [64090, "64121=Patched"],
     "set": {"Enable L": true, "Mode L": "Calibrated"}}
  ]
})";
    auto result = BR::Test::RunCorvane("patch " + f + "/p.json");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData out = BR::ReadWav(f + "/q.wav");
    EXPECT_EQ(out.channels[0][3], 12.0f * 0.015686275f);

    std::ofstream(f + "/bad.json")
        << R"({"instances": [{"name": "d", "module": "dc", "properties": [64090]}]})";
    result = BR::Test::RunCorvane("patch " + f + "/bad.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(
        result.err.find(f + "/bad.json: instances[0].properties[0]: module \"dc\" refuses property 64090"),
        std::string::npos)
        << result.err;
    std::ofstream(f + "/worse.json")
        << R"({"instances": [{"name": "d", "module": "dc", "properties": [true]}]})";
    result = BR::Test::RunCorvane("patch " + f + "/worse.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("instances[0].properties[0]: expected an ID number or an \"ID=VALUE\" text"),
              std::string::npos)
        << result.err;
    std::filesystem::remove_all(f);
}
