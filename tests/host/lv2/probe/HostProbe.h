// A module made for host tests: its outputs show what reached it from the host (MIDI at its sample,
// transport, block length, sidechain routing), and its table exercises every kind of LV2 control.
#pragma once

#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/ModuleCatalogue.h"
#include "host/lv2/Lv2Bundle.h"

namespace BrelCorvaneHostProbe {

enum TableIndex : int32_t {
    kLevel = 0,
    kMode,
    kHold,
    kRate,
    kSmoothingL,
    kOSCPortOffset,
    kInterfaceCategory,
    kEnabledLookalike,
    kLevelLookalike,
    kMixPercent,
    kSwing,
    kDetune,
    kTranspose,
    kRootNote,
    kGain,
    kTempo,
    kLength,
    kLongName,
    kNumParameters,
};

// Outputs, per sample:
//  1  note gate: while a note is held, Level times 1 ("Gate"), velocity / 127 ("Velocity") or
//     note / 127 ("Note"); 0 otherwise. "Hold" on ignores note offs.
//  2  fractional part of the transport's quarter-note position at the sample (0 without transport)
//  3  tempo / 1000, of the block
//  4  1 playing, 0 stopped, -1 no transport
//  5  frames of the module block / 8192
//  6  in 1 + 2 * sidechain 1 + 4 * sidechain 2
class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) override;
    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(BR::DisplayStringRequest&) override { return BR::kErrInvalidParameter; }
    const char* GetModuleName() const override { return "Corvane Host Probe"; }
    const char* GetGuiScriptName() const override { return "gui_hostprobe.lua"; }

    // What the last BeginBlock saw of the transport's loop.
    bool lastLooping = false;
    double lastLoopStart = 0, lastLoopEnd = 0, lastBeat = 0;
    uint32_t blocksSeen = 0;

private:
    float level = 1, tempo = 0, playState = -1, blockValue = 0;
    int32_t mode = 0;
    bool hold = false;
    double beat = 0, beatStep = 0;  // quarter notes at the next sample, and per sample
    int32_t heldNote = -1, heldVelocity = 0;
};

BrelCorvaneBase* Create();

// The probe's catalogue row, and the bundle corvane-probe.lv2 made of it.
const BR::CatalogueEntry& Entry();
BR::Lv2BundleInfo ProbeBundleInfo();

}  // namespace BrelCorvaneHostProbe
