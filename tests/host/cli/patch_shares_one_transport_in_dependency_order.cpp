// In a patch every instance renders each block in dependency order, and all of them read the one
// transport at the same position: it moves on once a block, loops and stands for all alike.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/PatchJob.h"
#include "tests/support/RunCommand.h"
#include "tests/support/TransportRecorder.h"

namespace {
struct Seen {
    std::string name;
    uint32_t frames;
    BR::TransportReading reading;
    bool present;
};
std::vector<Seen> seen;

class Named : public BR::Test::TransportRecorder {
public:
    bool BeginBlock(uint32_t frames) override {
        if (!TransportRecorder::BeginBlock(frames)) return false;
        const BR::Test::TransportSeen& last = TransportRecorder::seen.back();
        int32_t port = 0;
        GetProperty(64009, &port);
        ::seen.push_back({std::string(1, char('a' + port)), frames, last.reading, last.present});
        return true;
    }
};

// "probe" instances, told apart by their "OSC Port Offset": 0 is a, 1 is b, 2 is c.
const BR::ModuleSource kProbes{
    [](const std::string& stem) { return stem == "probe" ? &BR::Test::ProbeEntry() : nullptr; },
    [](const BR::CatalogueEntry&) { return std::unique_ptr<BrelCorvaneBase>(new Named); }};

BR::Patch Write(const std::string& folder, const std::string& json) {
    std::ofstream(folder + "/p.json") << json;
    return BR::ParsePatch(folder + "/p.json", kProbes);
}
}  // namespace

TEST(PatchTransport, OneTransportDependencyOrder) {
    const std::string f = BR::Test::MakeTempFolder();
    // c feeds b, b feeds a; listed a, b, c.
    const BR::Patch patch = Write(f, R"({"rate": 48000, "block": 2000, "frames": 5000,
      "transport": {"tempo": 120, "position": 4},
      "instances": [{"name": "a", "module": "probe", "inputs": ["b:0"]},
                    {"name": "b", "module": "probe", "set": {"OSC Port Offset": 1}, "inputs": [null, "c:1"]},
                    {"name": "c", "module": "probe", "set": {"OSC Port Offset": 2}}]})");
    EXPECT_EQ(patch.order, (std::vector<size_t>{2, 1, 0}));
    seen.clear();
    EXPECT_EQ(BR::RunPatch(patch, kProbes), 5000);
    // Blocks of 1024 at most (the driver's longest), so 1024 x 4 and 904; each c, b, a.
    ASSERT_EQ(seen.size(), 15u);
    for (size_t block = 0; block < 5; ++block) {
        const double beats = 4.0 + double(block * 1024) / 24000.0;
        for (size_t k = 0; k < 3; ++k) {
            const Seen& s = seen[block * 3 + k];
            EXPECT_EQ(s.name, std::string(1, "cba"[k])) << block;
            EXPECT_EQ(s.frames, block < 4 ? 1024u : 904u);
            EXPECT_TRUE(s.present);
            EXPECT_DOUBLE_EQ(s.reading.beats, beats) << block << " " << k;
            EXPECT_EQ(s.reading.tempo, 120.0);
        }
    }
    for (const char* name : {"a", "b", "c"})
        EXPECT_TRUE(std::filesystem::exists(f + "/" + name + ".wav"));
    std::filesystem::remove_all(f);
}

TEST(PatchTransport, LoopStoppedAndAbsent) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::Patch patch = Write(f, R"({"frames": 30000, "block": 1024,
      "transport": {"tempo": 60, "position": 0.5, "loop": [0, 0.75], "meter": "6/8"},
      "instances": [{"name": "a", "module": "probe"}, {"name": "b", "module": "probe", "set": {"OSC Port Offset": 1}}]})");
    seen.clear();
    BR::RunPatch(patch, kProbes);
    // 48000 frames a quarter note: the loop end is 12000 frames away; a cut block there, then 0.
    double previous = 0.5;
    bool wrapped = false;
    for (size_t i = 0; i < seen.size(); i += 2) {
        EXPECT_EQ(seen[i].reading.beats, seen[i + 1].reading.beats);
        if (seen[i].reading.beats < previous) {
            wrapped = true;
            EXPECT_DOUBLE_EQ(seen[i].reading.beats, 0.0);
            EXPECT_EQ(i / 2, 12u);  // 11 blocks of 1024 and one of 736 reach the end
            EXPECT_EQ(seen[i - 2].frames, 736u);
        }
        previous = seen[i].reading.beats;
    }
    EXPECT_TRUE(wrapped);

    patch = Write(f, R"({"frames": 3000, "transport": {"playing": false, "position": 2},
      "instances": [{"name": "a", "module": "probe"}]})");
    seen.clear();
    BR::RunPatch(patch, kProbes);
    ASSERT_EQ(seen.size(), 12u);  // blocks of the default 256
    for (const Seen& s : seen) {
        EXPECT_FALSE(s.reading.playing);
        EXPECT_EQ(s.reading.beats, 2.0);
    }

    patch =
        Write(f, R"({"frames": 100, "transport": null, "instances": [{"name": "a", "module": "probe"}]})");
    seen.clear();
    BR::RunPatch(patch, kProbes);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_FALSE(seen[0].present);
    EXPECT_TRUE(seen[0].reading.playing);
    EXPECT_EQ(seen[0].reading.tempo, 0.0);
    std::filesystem::remove_all(f);
}
