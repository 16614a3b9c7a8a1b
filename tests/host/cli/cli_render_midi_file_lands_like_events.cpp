// --midi FILE.mid: each event of a Standard MIDI File lands at the frame of its time in seconds by
// the file's own tempo map, on the same frames as the same events given with --event. A file that
// cannot be read is refused with status 2.
#include <gtest/gtest.h>
#include <smf.h>

#include <filesystem>
#include <fstream>

#include "host/cli/CommandLine.h"
#include "host/cli/MidiFile.h"
#include "host/cli/RenderJob.h"
#include "tests/support/RunCommand.h"
#include "tests/support/TransportRecorder.h"

namespace {

void Add(smf_track_t* track, int pulses, std::vector<uint8_t> bytes) {
    smf_event_t* event = smf_event_new_from_pointer(bytes.data(), int(bytes.size()));
    ASSERT_NE(event, nullptr);
    smf_track_add_event_pulses(track, event, pulses);
}

// 960 pulses a quarter note; 120 BPM, then 60 BPM from pulse 960. Two tracks.
void WriteMidiFile(const std::string& path) {
    smf_t* smf = smf_new();
    ASSERT_EQ(smf_set_ppqn(smf, 960), 0);
    smf_track_t* first = smf_track_new();
    smf_add_track(smf, first);
    smf_track_t* second = smf_track_new();
    smf_add_track(smf, second);
    Add(first, 0, {0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20});  // 500000 us a quarter note
    Add(first, 0, {0xF0, 0x01, 0x02, 0xF7});
    Add(first, 480, {0x90, 0x3C, 0x64});                    // 0.25 s
    Add(first, 960, {0xFF, 0x51, 0x03, 0x0F, 0x42, 0x40});  // 1000000 us from 0.5 s on
    Add(first, 1440, {0x80, 0x3C, 0x40});                   // 0.5 + 0.5 = 1.0 s
    Add(first, 1920, {0xB3, 0x07, 0x55});                   // 1.5 s
    Add(second, 720, {0x91, 0x40, 0x70});                   // 0.375 s
    Add(second, 2400, {0xE1, 0x00, 0x50});                  // 2.0 s
    ASSERT_EQ(smf_save(smf, path.c_str()), 0);
    smf_delete(smf);
}

const char* kSameEvents[] = {"0:F00102F7",   "12000:903C64", "18000:914070",
                             "48000:803C40", "72000:B30755", "96000:E10050"};

std::vector<BR::Test::ProbeModule::Call> Render(const BR::RenderJob& job) {
    auto owned = std::make_unique<BR::Test::TransportRecorder>();
    BR::Test::TransportRecorder& module = *owned;
    BR::HostDriver driver(std::move(owned), BR::Test::ProbeEntry(), float(job.sampleRate), 1024);
    BR::RenderWithDriver(driver, job);
    std::vector<BR::Test::ProbeModule::Call> handled;
    uint32_t blockStart = 0;
    for (const auto& call : module.calls) {
        if (call.what == "EndBlock") {
            blockStart += call.frames;
        } else if (call.what != "BeginBlock" && call.what != "Slice") {
            handled.push_back(call);
            handled.back().position += blockStart;  // absolute frame
        }
    }
    return handled;
}

}  // namespace

TEST(CliRenderMidi, FileFramesFollowItsTempoMap) {
    const std::string folder = BR::Test::MakeTempFolder();
    WriteMidiFile(folder + "/in.mid");
    const auto events = BR::ReadMidiFile(folder + "/in.mid", 48000);
    ASSERT_EQ(events.size(), 6u);  // the tempo changes are left out
    const std::vector<uint64_t> frames = {0, 12000, 18000, 48000, 72000, 96000};
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(events[i].frame, frames[i]) << i;
        EXPECT_EQ(events[i].bytes, BR::ParseEvent(kSameEvents[i], "--event").bytes) << i;
    }
    const auto at44 = BR::ReadMidiFile(folder + "/in.mid", 44100);
    EXPECT_EQ(at44[1].frame, 11025u);
    EXPECT_EQ(at44[2].frame, 16538u);  // 0.375 * 44100 = 16537.5, to the nearest
    std::filesystem::remove_all(folder);
}

TEST(CliRenderMidi, SameFramesAsEvents) {
    const std::string folder = BR::Test::MakeTempFolder();
    WriteMidiFile(folder + "/in.mid");
    for (uint32_t block : {1024u, 100u}) {
        BR::RenderJob fromFile;
        fromFile.frames = 100000;
        fromFile.blockSize = block;
        fromFile.midiPath = folder + "/in.mid";
        fromFile.outputPath = folder + "/a.wav";
        BR::RenderJob fromEvents = fromFile;
        fromEvents.midiPath.clear();
        for (const char* text : kSameEvents)
            fromEvents.events.push_back(BR::ParseEvent(text, "--event"));

        const auto a = Render(fromFile);
        const auto b = Render(fromEvents);
        ASSERT_EQ(a.size(), 5u);  // the system exclusive message reaches no handler
        ASSERT_EQ(b.size(), a.size());
        for (size_t i = 0; i < a.size(); ++i) {
            EXPECT_EQ(a[i].what, b[i].what) << i;
            EXPECT_EQ(a[i].position, b[i].position) << i;
            EXPECT_EQ(std::tie(a[i].a, a[i].b, a[i].c), std::tie(b[i].a, b[i].b, b[i].c)) << i;
        }
        EXPECT_EQ(a[0].what, "NoteOn");
        EXPECT_EQ(a[0].position, 12000u);
        EXPECT_EQ(a[1].position, 18000u);
        EXPECT_EQ(a[2].what, "NoteOff");
        EXPECT_EQ(a[2].position, 48000u);
        EXPECT_EQ(a[3].what, "CC");
        EXPECT_EQ(a[3].position, 72000u);
        EXPECT_EQ(a[4].what, "Bend");
        EXPECT_EQ(a[4].position, 96000u);
    }
    std::filesystem::remove_all(folder);
}

TEST(CliRenderMidi, UnreadableFilesAreRefused) {
    const std::string folder = BR::Test::MakeTempFolder();
    WriteMidiFile(folder + "/in.mid");
    auto result = BR::Test::RunCorvane("render dc --frames 100 --midi " + folder + "/in.mid --out " + folder +
                                       "/ok.wav");
    EXPECT_EQ(result.status, 0) << result.err;

    result = BR::Test::RunCorvane("render dc --frames 100 --midi " + folder + "/none.mid --out " + folder +
                                  "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--midi: cannot read \"" + folder + "/none.mid\": no such file"),
              std::string::npos)
        << result.err;

    std::ofstream(folder + "/text.mid") << "this is not a MIDI file\n";
    result = BR::Test::RunCorvane("render dc --frames 100 --midi " + folder + "/text.mid --out " + folder +
                                  "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("not a Standard MIDI File"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder + "/x.wav"));
    std::filesystem::remove_all(folder);
}
