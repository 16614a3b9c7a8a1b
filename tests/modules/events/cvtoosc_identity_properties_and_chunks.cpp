// CV To OSC's names, rows and display texts; properties 64110 to 64112 with their sizes and the cut at
// 255 characters; the three texts saved under their tags and restored into a new instance; a second
// start of the sender warns and changes nothing.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"
#include "framework/StateChunkStore.h"

using namespace BR::Test;
using namespace BrelCorvaneCVToOSC;

TEST(CVToOSCIdentity, NamesRowsAndDisplay) {
    CVToOSCRig rig;
    BrelCorvane& m = rig.Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane CV To OSC");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_cvtoosc.lua");
    EXPECT_EQ(m.NumInputs(), 2);
    EXPECT_EQ(m.NumOutputs(), 2);
    ASSERT_EQ(m.NumTableParameters(), 7);
    const char* names[] = {"OSC Port Offset", "Enable L",    "Threshold L", "Max Rate L",
                           "Enable R",        "Threshold R", "Max Rate R"};
    const float minimum[] = {0, 0, 0, 10, 0, 0, 10}, maximum[] = {100, 1, 1, 1000, 1, 1, 1000};
    const float defaults[] = {0, 0, 0.1f, 1000, 0, 0.1f, 1000};
    for (int k = 0; k < 7; ++k) {
        EXPECT_STREQ(m.ParameterTable()[k].name, names[k]);
        EXPECT_EQ(m.ParameterTable()[k].minimum, minimum[k]) << k;
        EXPECT_EQ(m.ParameterTable()[k].maximum, maximum[k]) << k;
        EXPECT_EQ(m.ParameterTable()[k].defaultValue, defaults[k]) << k;
        EXPECT_EQ(m.GetParameterFlags(k), k == 0 ? BR::kDisplayStringFlag : 0u) << k;
        BR::CountedTextList* list = nullptr;
        EXPECT_EQ(m.GetParameterValueStrings(k, &list), BR::kErrInvalidParameter);
    }
    char text[25];
    m.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
    // Defaults: the threshold of 0.1 percent lets the signal move by 0.001.
    rig.Render(std::vector<float>(16, 0.0f), std::vector<float>(16, 0.0f));
    EXPECT_FLOAT_EQ(m.Settings(0).threshold, 0.001f);
    EXPECT_EQ(m.Settings(0).minInterval, 48);
    EXPECT_FALSE(m.Settings(0).enable);
    EXPECT_EQ(m.Target(), "127.0.0.1:7000");
    EXPECT_EQ(m.Sender().TargetPort(), 7000);
    EXPECT_STREQ(m.Sender().Path(0), "/1/foo");
    EXPECT_STREQ(m.Sender().Path(1), "/2/foo");
}

TEST(CVToOSCIdentity, PropertiesAndTheCutAt255) {
    CVToOSCRig rig;
    BrelCorvane& m = rig.Module();
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(m.GetPropertyInfo(kPropertyTarget, &size, &writable), 0);
    EXPECT_EQ(size, 15u);
    EXPECT_TRUE(writable);
    ASSERT_EQ(m.GetPropertyInfo(kPropertyPathR, &size, &writable), 0);
    EXPECT_EQ(size, 7u);
    EXPECT_TRUE(writable);
    const std::string longPath = "/" + std::string(300, 'p');
    rig.SetText(kPropertyPathL, longPath);
    const char* path = nullptr;
    ASSERT_EQ(m.GetProperty(kPropertyPathL, &path), 0);
    EXPECT_EQ(std::string(path), longPath.substr(0, 255));
    ASSERT_EQ(m.GetPropertyInfo(kPropertyPathL, &size, &writable), 0);
    EXPECT_EQ(size, 256u);
    // A write's size bounds the text: no terminator is needed.
    EXPECT_EQ(m.SetProperty(kPropertyPathR, "/abcdef", 4), 0);
    ASSERT_EQ(m.GetProperty(kPropertyPathR, &path), 0);
    EXPECT_STREQ(path, "/abc");
    EXPECT_EQ(m.SetProperty(kPropertyTarget, nullptr, 0), BR::kErrInvalidProperty);
}

TEST(CVToOSCIdentity, ChunksCarryTargetAndPaths) {
    CVToOSCRig a;
    a.SetText(kPropertyTarget, "osc.udp://localhost:17899");
    a.SetText(kPropertyPathL, "/left/level");
    a.SetText(kPropertyPathR, "/right");
    BR::StateChunkStore saved;
    a.Module().SaveExtraChunks(saved);
    const std::vector<uint8_t> image = saved.Flatten();
    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(0x69706570, blob));
    EXPECT_STREQ(reinterpret_cast<const char*>(blob.data), "osc.udp://localhost:17899");
    ASSERT_TRUE(store.Find(0x6F737030, blob));
    EXPECT_STREQ(reinterpret_cast<const char*>(blob.data), "/left/level");
    ASSERT_TRUE(store.Find(0x6F737031, blob));
    EXPECT_STREQ(reinterpret_cast<const char*>(blob.data), "/right");

    CVToOSCRig b;
    b.Module().LoadExtraChunks(store);
    EXPECT_EQ(b.Module().Target(), "osc.udp://localhost:17899");
    EXPECT_EQ(b.Module().Sender().TargetPort(), 17899);
    EXPECT_EQ(b.Module().Sender().TargetAddress(), 0x7F000001u);
    EXPECT_STREQ(b.Module().Sender().Path(0), "/left/level");
    EXPECT_STREQ(b.Module().Sender().Path(1), "/right");
}

TEST(CVToOSCIdentity, SecondStartWarns) {
    CVToOSCRig rig;
    ASSERT_TRUE(rig.Sender().Running());
    testing::internal::CaptureStderr();
    rig.Sender().Start();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: Attempt to recreate OSC task\n");
    rig.Module().ShutdownModule();
    EXPECT_FALSE(rig.Sender().Running());
}
