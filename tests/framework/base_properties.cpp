// The properties every module answers, their sizes and writability, and -10879 for unknown ids.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(BaseProperties, ReadsGiveTheSpecifiedValues) {
    ProbeModule module;
    ManualHost host(module, BR::kStemFormatStereo, BR::kStemFormatStereo, 44100.0f);

    double rate = 0;
    EXPECT_EQ(module.GetProperty(2, &rate), BR::kNoErr);
    EXPECT_EQ(rate, 44100.0);

    BR::ModuleStatusBlock* status = nullptr;
    EXPECT_EQ(module.GetProperty(64001, &status), BR::kNoErr);
    EXPECT_EQ(status, module.GetStatusBlock());

    const char* text = nullptr;
    module.GetProperty(64002, &text);
    EXPECT_STREQ(text, "Corvane");
    module.GetProperty(64003, &text);
    EXPECT_STREQ(text, "Corvane Probe Module");
    module.GetProperty(64004, &text);
    EXPECT_STREQ(text, "CRProbeModule");
    const char* again = nullptr;
    module.GetProperty(64004, &again);
    EXPECT_EQ(again, text);  // built once
    module.GetProperty(64011, &text);
    EXPECT_STREQ(text, "gui_probe.lua");

    const std::vector<std::string>* paths = nullptr;
    module.GetProperty(64005, &paths);
    ASSERT_NE(paths, nullptr);
    EXPECT_EQ((*paths)[kOSCPort], "OSCPortOffset");
    EXPECT_EQ((*paths)[kSmoothing], "SmoothingL");

    uint32_t count = 0;
    module.GetProperty(64007, &count);
    EXPECT_EQ(count, uint32_t(kNumProbeRows));

    const BR::ParameterDefinition* table = nullptr;
    module.GetProperty(64010, &table);
    EXPECT_EQ(table, module.ParameterTable());

    bool flag = true;
    module.GetProperty(64013, &flag);
    EXPECT_FALSE(flag);
    flag = true;
    module.GetProperty(64140, &flag);
    EXPECT_FALSE(flag);

    void* helper = &flag;
    EXPECT_EQ(module.GetProperty(64006, &helper), BR::kNoErr);
    EXPECT_EQ(helper, nullptr);  // no OSC layer in this test
    EXPECT_EQ(module.GetVersion(), 132609u);
    EXPECT_EQ(module.GetVersion(), 0x20601u);
}

TEST(BaseProperties, ShortNameDropsBlanksFromTheEleventhCharacter) {
    BR::Test::ProbeModule module;
    EXPECT_STREQ(module.ShortName(), "CRProbeModule");
}

TEST(BaseProperties, UnknownIdsAndReadOnlyIds) {
    ProbeModule module;
    ManualHost host(module);
    int32_t value = 0;
    EXPECT_EQ(module.GetProperty(64012, &value), -10879);
    EXPECT_EQ(module.GetProperty(64008, &value), -10879);  // no read
    uint32_t size = 0;
    bool writable = true;
    EXPECT_EQ(module.GetPropertyInfo(64099, &size, &writable), -10879);
    EXPECT_EQ(module.SetProperty(64003, &value, 8), -10879);

    const std::pair<uint32_t, uint32_t> sizes[] = {{33, 24},   {64001, 8}, {64002, 8}, {64003, 8}, {64004, 8},
                                                   {64005, 8}, {64006, 8}, {64007, 4}, {64008, 1}, {64009, 4},
                                                   {64010, 8}, {64011, 8}, {64013, 1}, {64140, 1}};
    for (const auto& [id, bytes] : sizes) {
        ASSERT_EQ(module.GetPropertyInfo(id, &size, &writable), BR::kNoErr) << id;
        EXPECT_EQ(size, bytes) << id;
        EXPECT_EQ(writable, id == 64008) << id;
    }
}

TEST(BaseProperties, DisplayStringThroughProperty33) {
    ProbeModule module;
    ManualHost host(module);
    const float zero = 0.0f, two = 2.0f;
    BR::DisplayStringRequest request{kOSCPort, &zero, nullptr};
    ASSERT_EQ(module.GetProperty(33, &request), BR::kNoErr);
    ASSERT_NE(request.text, nullptr);
    EXPECT_EQ(request.text->Get(), "Off");
    EXPECT_EQ(request.text->RefCount(), 1);  // the caller's reference
    request.text->Release();

    request = {kOSCPort, &two, nullptr};
    EXPECT_EQ(module.GetProperty(33, &request), -10878);
    EXPECT_EQ(request.text, nullptr);

    // No value in the request: the current value is described.
    request = {kSmoothing, nullptr, nullptr};
    ASSERT_EQ(module.GetProperty(33, &request), BR::kNoErr);
    EXPECT_EQ(request.text->Get(), "Off");
    request.text->Release();
    request = {kGain, nullptr, nullptr};
    EXPECT_EQ(module.GetProperty(33, &request), -10878);
}
