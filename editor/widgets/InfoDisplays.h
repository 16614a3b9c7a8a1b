// Text and history displays read from a module's status block: hardware frame bytes, the Quantizer's
// last note, the Follower's frequency, level and pitch, and the Learner's captions and touched parameter.
#pragma once

#include <array>
#include <string>

#include "ModuleDisplay.h"
#include "editor/StaticText.h"

namespace BR {

// `count` bytes of the status block from its start, each shown with "%3d" in grey 0.1.
class InfoDisplay : public ModuleDisplay {
public:
    InfoDisplay(Manager* manager, int32_t count);
    void Draw() override;
    int32_t count;
    float cellWidth = 0;  // measured once from "000 "
    std::array<int32_t, 16> shownBytes;
    std::array<StaticText, 16> texts;
};

// The note the Quantizer's channel `index` output last: its name and number over a row of seven cells.
class QuantizerInfoDisplay : public ModuleDisplay {
public:
    QuantizerInfoDisplay(Manager* manager, int32_t index);
    void Draw() override;
    // "C#4  61" for note 61; "" for a negative note.
    static std::string NoteText(int32_t note);
    int32_t index;
    int32_t shownNote = -1000;
    StaticText text;
};

// Two lines: the frequency with its note name, and the volts with the ratio.
class FollowerInfoDisplay : public ModuleDisplay {
public:
    explicit FollowerInfoDisplay(Manager* manager);
    void Draw() override;
    // "A4+0" for 440 Hz: the note name, its octave and the deviation in cents.
    static std::string NoteName(float frequency);
    float shownFrequency = -1, shownVolts = -1e9f;
    StaticText lines[2];
};

// A rolling history of the input level (filled), the envelope and a falling peak.
class FollowerEnvDisplay : public ModuleDisplay {
public:
    explicit FollowerEnvDisplay(Manager* manager);
    void Animate() override;
    void DrawContent() override;
    static constexpr int kLength = 128;
    int32_t position = 0;
    float peak = 0;
    std::array<float, kLength> levelRing{}, envelopeRing{}, peakRing{};
    std::vector<float> strip;
};

// A rolling history of the detected pitch on a logarithmic axis from 50 Hz up.
class FollowerPitchDisplay : public ModuleDisplay {
public:
    explicit FollowerPitchDisplay(Manager* manager);
    void Animate() override;
    void DrawContent() override;
    // The height on the axis, 0 to 1; no pitch (0 or less) stands at the bottom.
    static float AxisPosition(float frequency);
    // The ring as a unit-space strip, oldest entry at the left, into `strip`.
    const std::vector<float>& BuildStrip();
    static constexpr int kLength = 128;
    int32_t position = 0;
    std::array<float, kLength> ring{};
    std::vector<float> strip;
};

// What the Learner's display shows beside and below its captions.
struct LearnerLines {
    static constexpr int kRows = 5;
    std::string paths[3];     // short, compact and long OSC path of the parameter last touched
    std::string active;       // "Corvane DC 1 (2) Output +": its module, numbers and name
    std::string midi[kRows];  // the learn hub's last MIDI messages, oldest first
    std::string osc[kRows];   // `learner`'s OSC server's last messages, oldest first
};

// The Learner's captions, drawn once into the panel, and the parameter last touched in any instance
// with its three paths, the last MIDI messages any instance gave the learn hub and the last OSC
// messages of the Learner's own server.
class LearnerInfoDisplay : public ModuleDisplay {
public:
    explicit LearnerInfoDisplay(Manager* manager);
    void DrawIntoPanel(GuiFont* font) override;
    void Draw() override;
    // The texts of one frame. Each is cut at kMaxText bytes: rings rewritten by other threads are read
    // with a bounded length.
    static LearnerLines BuildLines(BrelCorvaneBase* learner);
    static constexpr size_t kMaxText = 120;
    // The texts are rebuilt ten times a second, not every frame: the touched parameter and the learn
    // hub's ring are read under the instance registry's lock, which the audio threads' MIDI takes too.
    static constexpr int64_t kRebuildMilliseconds = 100;
    int64_t lastBuildMilliseconds = -1;
    LearnerLines lines;
    StaticText paths[3], active, midi[LearnerLines::kRows], osc[LearnerLines::kRows];
};

}  // namespace BR
