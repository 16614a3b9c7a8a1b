// Reference renders of every built module: a fixed list of settings, MIDI, transport and parameter
// changes, rendered at several host block sizes and reduced to one 64-bit hash per case and size. The
// recorded hashes guard the render path against any change of output, bit for bit.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Render.h"

namespace BR::Test {

// A row set by name once the render reaches `frame` (applied before the first block starting there).
struct GoldenChange {
    uint32_t frame;
    std::string row;
    float value;
};

struct GoldenCase {
    std::string name;
    std::string stem;
    std::vector<std::pair<std::string, float>> settings;
    std::vector<MidiAt> midi;  // absolute frames
    std::vector<GoldenChange> changes;
    enum class Input { Silence, Sines, Gates } input = Input::Silence;
    bool transport = false;  // a 120 BPM 4/4 transport, playing from `startQuarter`
    double tempo = 120.0;
    double startQuarter = 0.0;
    std::vector<std::pair<uint32_t, bool>> playChanges;  // frame, playing
    int32_t voices = 0;  // > 0: this instance is a master feeding that many voices
    std::vector<std::pair<std::string, float>> voiceSettings;
};

// Frames each case renders; not a multiple of any block size, so that every size ends on a short block.
constexpr uint32_t kGoldenFrames = 9001;
// The host block sizes each case is rendered at.
const std::vector<uint32_t>& GoldenBlockSizes();
const std::vector<GoldenCase>& GoldenCases();

// How a case's parameter changes reach the module between blocks: by default the driver's setter.
using GoldenSetter = std::function<void(HostDriver& driver, const std::string& row, float value)>;

// FNV-1a over the bit patterns of every output sample of every instance of the case. `setter`, when
// given, applies the case's changes between blocks in place of the driver's setter.
uint64_t RenderGoldenHash(const GoldenCase& goldenCase, uint32_t blockSize, const GoldenSetter& setter = {});

// Where the recorded hashes live in the source tree, and their text form: "case block hash" lines.
constexpr const char* kGoldenHashFile = "tests/golden/render_hashes.txt";
// The file's path: below CORVANE_SOURCE_DIR when that is set, else below the tree this was built from.
std::string GoldenHashPath();
std::string GoldenLine(const std::string& caseName, uint32_t blockSize, uint64_t hash);

}  // namespace BR::Test
