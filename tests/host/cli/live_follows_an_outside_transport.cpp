// The live host following an outside transport (JACK's): its play state and frame each period; the
// patch's tempo and meter, its position at frame 0, when the outside gives no beats; the outside's
// bar-derived position, tempo and meter when it does. While the outside rolls on as expected the
// transport advances on its own (so that it stays what an offline render computes); a relocation,
// a stop or a tempo change takes the outside values at once.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/LiveHost.h"
#include "tests/support/RunCommand.h"

namespace {

struct Rig {
    explicit Rig(const std::string& folder) {
        std::ofstream(folder + "/p.json") << R"({"rate": 48000, "block": 256,
          "transport": {"tempo": 90, "position": 2, "meter": "6/8"},
          "instances": [{"name": "d", "module": "dc"}]})";
        patch = BR::ParsePatch(folder + "/p.json");
        host = std::make_unique<BR::LiveHost>(patch);
        host->Output(0, 0) = left.data();
        host->Output(0, 1) = right.data();
    }
    BR::Patch patch;
    std::unique_ptr<BR::LiveHost> host;
    std::vector<float> left = std::vector<float>(512), right = std::vector<float>(512);
};

}  // namespace

TEST(LiveFollow, PlayStateFrameAndThePatchTempoWithoutBeats) {
    const std::string f = BR::Test::MakeTempFolder();
    Rig rig(f);
    BR::DriverTransport& t = *rig.host->Engine().Transport();
    BR::OutsideTransport outside;  // stopped at frame 0
    rig.host->Follow(outside);
    EXPECT_FALSE(t.playing);
    EXPECT_EQ(t.blockSampleLocation, 0);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 2.0);
    EXPECT_DOUBLE_EQ(t.tempo, 90.0);
    EXPECT_EQ(t.meterNumerator, 6);
    rig.host->Cycle(256, 0);
    EXPECT_EQ(t.blockSampleLocation, 0);  // a stopped transport stands

    outside.rolling = true;
    outside.frame = 48000;  // located one second in, then started
    rig.host->Follow(outside);
    EXPECT_TRUE(t.playing);
    EXPECT_EQ(t.blockSampleLocation, 48000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 2.0 + 1.5);  // 90 quarters a minute
    rig.host->Cycle(512, 0);
    EXPECT_EQ(t.blockSampleLocation, 48512);
    const double advanced = t.blockQuarter;
    EXPECT_NEAR(advanced, 3.5 + 512 * 1.5 / 48000, 1e-12);

    // Rolling on from where the period left it: the transport is not touched.
    t.blockQuarter = advanced + 1e-9;  // a mark that a rewrite would remove
    outside.frame = 48512;
    rig.host->Follow(outside);
    EXPECT_EQ(t.blockQuarter, advanced + 1e-9);

    // Elsewhere: relocated.
    outside.frame = 96000;
    rig.host->Follow(outside);
    EXPECT_EQ(t.blockSampleLocation, 96000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 5.0);

    // Stopped where it stands.
    outside.rolling = false;
    rig.host->Follow(outside);
    EXPECT_FALSE(t.playing);
    std::filesystem::remove_all(f);
}

TEST(LiveFollow, BeatsTempoAndMeterOfATimebaseMaster) {
    const std::string f = BR::Test::MakeTempFolder();
    Rig rig(f);
    BR::DriverTransport& t = *rig.host->Engine().Transport();
    BR::OutsideTransport outside;
    outside.rolling = true;
    outside.frame = 1000;
    outside.hasBeats = true;
    outside.quarters = 17.25;
    outside.tempo = 150;
    outside.meterNumerator = 3;
    outside.meterDenominator = 4;
    rig.host->Follow(outside);
    EXPECT_TRUE(t.playing);
    EXPECT_EQ(t.blockSampleLocation, 1000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 17.25);
    EXPECT_DOUBLE_EQ(t.tempo, 150.0);
    EXPECT_EQ(t.meterNumerator, 3);
    EXPECT_EQ(t.meterDenominator, 4);
    rig.host->Cycle(256, 0);
    EXPECT_NEAR(t.blockQuarter, 17.25 + 256 * 2.5 / 48000, 1e-12);

    // A tempo change while rolling on takes the master's position and tempo.
    outside.frame = 1256;
    outside.quarters = 17.5;
    outside.tempo = 100;
    rig.host->Follow(outside);
    EXPECT_DOUBLE_EQ(t.tempo, 100.0);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 17.5);
    std::filesystem::remove_all(f);
}

TEST(LiveFollow, APatchWithoutTransportStaysWithout) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({"transport": null, "instances": [{"name": "d", "module": "dc"}]})";
    const BR::Patch patch = BR::ParsePatch(f + "/p.json");
    BR::LiveHost host(patch);
    EXPECT_EQ(host.Engine().Transport(), nullptr);
    BR::OutsideTransport outside;
    outside.rolling = true;
    host.Follow(outside);  // nothing to follow into, and no crash
    EXPECT_EQ(host.Engine().Driver(0).Transport(), nullptr);
    std::filesystem::remove_all(f);
}

TEST(LiveFollow, TheModeIsAPatchKey) {
    const std::string f = BR::Test::MakeTempFolder();
    const char* modes[] = {"follow", "master", "own"};
    for (int k = 0; k < 3; ++k) {
        std::ofstream(f + "/p.json") << "{\"jack_transport\": \"" << modes[k]
                                     << "\", \"instances\": [{\"name\": \"d\", \"module\": \"dc\"}]}";
        EXPECT_EQ(int(BR::ParsePatch(f + "/p.json").jackTransport), k) << modes[k];
    }
    std::ofstream(f + "/bad.json")
        << R"({"jack_transport": "slave", "instances": [{"name": "d", "module": "dc"}]})";
    const auto result = BR::Test::RunCorvane("live " + f + "/bad.json --driver clock --seconds 1");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "corvane: " + f +
                  "/bad.json: jack_transport: \"slave\": expected \"follow\", \"master\" or \"own\"\n");
    std::filesystem::remove_all(f);
}
