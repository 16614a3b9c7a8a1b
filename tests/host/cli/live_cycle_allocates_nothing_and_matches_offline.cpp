// The live host's period, everything the JACK process callback does besides fetching port buffers:
// it allocates nothing while an LFO, a Voice Controller and a Sync run (also when outside MIDI
// arrives), and it renders sample for sample what `corvane patch` renders offline with the same
// block size, outside MIDI landing on the frame it was given.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/LiveHost.h"
#include "host/cli/WavFile.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/RunCommand.h"

namespace {

const char* kPatch = R"({
  "rate": 48000, "block": 256, "frames": 24576,
  "instances": [
    {"name": "lfo", "module": "lfo", "out": "lfo.wav", "set": {"Sine L": 1, "Triangle R": 0.8, "Speed R": 3.7}},
    {"name": "vc", "module": "voicecontroller", "out": "vc.wav" EVENTS},
    {"name": "sync", "module": "sync", "inputs": ["lfo:0"], "out": "sync.wav"}
  ], "midi_in": ["vc"]
})";

std::string PatchText(bool events) {
    std::string text = kPatch;
    const size_t at = text.find(" EVENTS");
    text.replace(at, 7, events ? R"(, "events": ["5000:903C64", "9000:803C00"])" : "");
    return text;
}

}  // namespace

TEST(LiveCycle, AllocatesNothingAndMatchesTheOfflineRender) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/offline.json") << PatchText(true);
    std::ofstream(f + "/live.json") << PatchText(false);
    const auto result = BR::Test::RunCorvane("patch " + f + "/offline.json");
    ASSERT_EQ(result.status, 0) << result.err;

    const BR::Patch patch = BR::ParsePatch(f + "/live.json");
    ASSERT_EQ(patch.midiIn, std::vector<size_t>{1});
    BR::LiveHost host(patch);
    const uint32_t period = 256;
    const int64_t total = 24576;
    std::vector<std::vector<std::vector<float>>> rendered(3);
    std::vector<std::vector<float>> buffers;
    for (size_t i = 0; i < 3; ++i) {
        rendered[i].assign(size_t(host.Engine().Driver(i).NumHostOutputs()),
                           std::vector<float>(size_t(total)));
        for (size_t c = 0; c < rendered[i].size(); ++c)
            buffers.emplace_back(period);
    }
    const uint8_t noteOn[3] = {0x90, 0x3C, 0x64}, noteOff[3] = {0x80, 0x3C, 0x00};
    uint64_t allocations = 0;
    for (int64_t done = 0; done < total; done += period) {
        size_t b = 0;
        for (size_t i = 0; i < 3; ++i)
            for (size_t c = 0; c < rendered[i].size(); ++c)
                host.Output(i, c) = buffers[b++].data();
        uint32_t count = 0;
        // Outside MIDI at the frames the offline patch schedules its events.
        for (const auto& [frame, bytes] : {std::pair<int64_t, const uint8_t*>{5000, noteOn}, {9000, noteOff}})
            if (frame >= done && frame < done + period)
                host.MidiSlots()[count++] = BR::TimedMidi{uint32_t(frame - done), 3, bytes};
        {
            BR::Test::AllocationScope scope;
            host.Cycle(period, count);
            allocations += scope.Count();
        }
        b = 0;
        for (size_t i = 0; i < 3; ++i)
            for (size_t c = 0; c < rendered[i].size(); ++c, ++b)
                std::copy(buffers[b].begin(), buffers[b].end(), rendered[i][c].begin() + done);
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(host.FramesDone(), total);

    const char* names[3] = {"lfo", "vc", "sync"};
    for (size_t i = 0; i < 3; ++i) {
        const BR::AudioData offline = BR::ReadWav(f + "/" + names[i] + ".wav");
        ASSERT_EQ(offline.channels.size(), rendered[i].size()) << names[i];
        for (size_t c = 0; c < rendered[i].size(); ++c)
            for (int64_t k = 0; k < total; ++k)
                ASSERT_EQ(rendered[i][c][size_t(k)], offline.channels[c][size_t(k)])
                    << names[i] << " channel " << c << " frame " << k;
    }
    // The voice's gate opens on the frame of the note and closes on the frame of its release.
    const std::vector<float>& gate = rendered[1][1];
    EXPECT_LE(gate[4999], 0.5f);
    EXPECT_GT(gate[5000], 0.5f);
    EXPECT_GT(gate[8999], 0.5f);
    EXPECT_LE(gate[9000], 0.5f);
    std::filesystem::remove_all(f);
}

TEST(LiveCycle, MidiGoesOnlyToTheInstancesNamed) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({"instances": [
      {"name": "a", "module": "voicecontroller"}, {"name": "b", "module": "voicecontroller"}],
      "midi_in": ["b"]})";
    const BR::Patch patch = BR::ParsePatch(f + "/p.json");
    BR::LiveHost host(patch);
    std::vector<std::vector<float>> buffers(12, std::vector<float>(256));
    for (size_t i = 0; i < 2; ++i)
        for (size_t c = 0; c < 6; ++c)
            host.Output(i, c) = buffers[i * 6 + c].data();
    const uint8_t noteOn[3] = {0x90, 0x40, 0x64};
    host.MidiSlots()[0] = BR::TimedMidi{100, 3, noteOn};
    host.Cycle(256, 1);
    EXPECT_EQ(buffers[1][200], 0.0f);  // a's gate
    EXPECT_GT(buffers[7][200], 0.5f);  // b's gate
    EXPECT_LE(buffers[7][99], 0.5f);
    std::filesystem::remove_all(f);
}
