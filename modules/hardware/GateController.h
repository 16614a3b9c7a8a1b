// The logic shared by the gate expander controllers above their frame encoders: note channels, gate
// groups with triggers and accents, MIDI out on serial ports with polyphony, the MIDI clock with swing
// and song position, and the slicing that lands every edge and tick on its own sample.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HardwareFrame.h"
#include "SerialPort.h"
#include "framework/BrelCorvaneBase.h"

// Where a controller keeps each row the shared logic reads; -1 for a row it does not have.
struct BrelGateControllerRows {
    int32_t numBytes;         // frame bytes: 5 or 6
    int32_t numGroups;        // gate groups: 5 or 6
    int32_t numNoteChannels;  // 2 or 0
    int32_t noteChannel[2];   // "Ch n MIDI Channel"; range min, max, gate output, vel output, priority and
                              // retrigger mode follow it in that order
    int32_t groupChannel;     // "Gates 1 MIDI Channel"; "Gates 1 Base Note" follows, then group 2 ...
    int32_t byte1, bytes, send;
    int32_t midiOutChannel, midiOutOutput, midiOutClock, swing, swingType;
    int32_t clockOffset;
    int32_t triggerLength;  // "Trigger 1/1 Length", eight per group
    int32_t channelise;
    int32_t accent;  // "Accent 1/2", four per group
    int32_t polyphony, useSPP, matchNoteOffs, delayStart, delayStop;
    int32_t inputThru, inputToGate, interfaceCategory;  // "Input 1 To Gate" to "Input 8 To Gate" in a row
    BR::SerialTiming timing;
};

// What the info display shows: the bytes of the last frame of the last slice.
struct BrelGateControllerStatus {
    uint8_t frameBytes[6];
};

class BrelGateControllerBase : public BrelCorvaneBase {
public:
    static constexpr uint32_t kPropertyDontPanic =
        64094;  // one byte, write only: controller 120 on all channels
    static constexpr uint32_t kNever = 0xFFFFFFFFu;
    static constexpr int32_t kMaxGroups = 6;
    static constexpr int32_t kMaxPolyphony = 7;

    enum NotePriority : int32_t { kNewest = 0, kLowest = 1, kHighest = 2 };

    struct NoteChannel {
        // From the parameters.
        int32_t midiChannel = 0;
        int32_t rangeMin = 0, rangeMax = 0;
        int32_t gateOutput = 0;  // 0 off, 1..5 "Output n", 6.. gate bit (value - 6)
        int32_t velOutput = 0;
        // Live.
        float note = 0.0f;  // kept after release, so a released note holds its level
        float velocity = 0.0f;
        float releaseVelocity = 0.0f;
        uint8_t gate = 0;
        uint8_t sustain = 0;  // recorded, never consulted: the pedal holds nothing here
        uint8_t order[128] = {};
        int32_t heldCount = 0;
        int32_t retrigTimer = 0;  // set at each trigger; nothing reads it
    };

    struct GateGroup {
        int32_t midiChannel = 0;
        int32_t baseNote = 0;
        int32_t triggerSamples[8] = {};  // -1 for no trigger time
        uint8_t accent[4] = {};
        uint8_t gate[8] = {};
        uint32_t countdown[8] = {};  // samples left, kNever without a trigger time
    };

    explicit BrelGateControllerBase(const BR::ModuleConfig& config, const BrelGateControllerRows& rows);

    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void BeginSlice(uint32_t frames, uint32_t reserved) override;
    void ProcessBlock(float** inputs, float** outputs, uint32_t frames) override;
    void HandleQueuedMessage(BR::MessageQueueItem* item) override;
    void SaveExtraChunks(BR::StateChunkStore&) override {}
    void LoadExtraChunks(const BR::StateChunkStore&) override {}

    // Renders `frames` samples from the pointers in `inputs` and `outputs` and advances them.
    virtual void EncodeSlice(float** inputs, float** outputs, uint32_t frames) = 0;

    void RefreshMidiSettings();
    void HandleMidiItem(const BR::MessageQueueItem& item);
    // Appends bytes to one port (false if they do not fit), or to ports 0 to `polyphony`.
    bool PortSend(int32_t port, const uint8_t* bytes, int32_t count);
    void BroadcastSend(const uint8_t* bytes, int32_t count);

    // "Gates 1/1" up to "Gates <groups>/8".
    static std::vector<std::string> GateNames(int32_t groups);
    // "1" to "<count>" after the names given.
    static std::vector<std::string> Numbered(std::vector<std::string> first, int32_t from, int32_t to);
    // Shows "Off" for a flagged row whose value is exactly 0; other values keep the default text.
    int32_t OffAtZero(BR::DisplayStringRequest& request, bool flagged);

    // State, for displays and tests.
    const NoteChannel& Channel(int32_t c) const { return channels[c]; }
    const GateGroup& Group(int32_t g) const { return groups[g]; }
    const BR::SerialPort& Port(int32_t p) const { return ports[p]; }
    int32_t RateClass() const { return rateClass; }
    int32_t Polyphony() const { return polyphony; }
    int32_t LastTick() const { return lastTick; }
    int32_t FirstTick() const { return firstTick; }
    int32_t SppBeats() const { return sppBeats; }
    bool StartPending() const { return startPending != 0; }
    bool TickPending() const { return tickPending != 0; }
    bool DelaySerial() const { return delaySerial != 0; }
    bool SwingOn() const { return swingOn; }
    float SwingAmount() const { return swingAmount; }
    double SwingPeriod() const { return swingPeriod; }
    int32_t TrackedCount(int32_t channel) const { return trackedCount[channel]; }
    int32_t PortNote(int32_t port) const { return portNote[port]; }
    int32_t NotePort(int32_t note) const { return notePort[note]; }
    double SwingForward(double x) const;
    double SwingInverse(double x) const;

protected:
    // Encoder settings that both controllers read in each slice.
    void ReadEncoderSettings();
    // The controller's own slice settings, read with the shared ones.
    virtual void ReadModuleSliceSettings() {}
    // "MIDI Out Clock", "Use MIDI SPP", "MIDI Clock Offset" and the swing.
    void ReadClockSettings();
    // Stores the last frame's bytes for the display.
    void StoreFrameBytes(const uint8_t* bytes) {
        auto& display = status.As<BrelGateControllerStatus>();
        for (int32_t b = 0; b < rows.numBytes; ++b)
            display.frameBytes[b] = bytes[b];
    }
    // Runs the serial step of every active port for one sample on `bytes`.
    void SerialStep(uint8_t* bytes) {
        if (delaySerial) return;
        for (int32_t p = 0; p <= polyphony; ++p)
            if (ports[p].Step(symbolTable)) BR::SetGateBit(bytes, portGateBit[p]);
    }

    const BrelGateControllerRows rows;
    // Encoder state.
    int32_t midiOutGate = 0;
    int32_t polyphony = 0;
    int32_t rateClass = 0;
    BR::SymbolTable symbolTable{nullptr, 0};
    int32_t portGateBit[BR::kNumSerialPorts] = {};
    int32_t thruPair = -1;
    int32_t inputToGate[8] = {};
    int32_t interfaceCategory = 0;
    int32_t testCounter = 0;
    BR::SerialPort ports[BR::kNumSerialPorts];
    NoteChannel channels[2];
    GateGroup groups[kMaxGroups];

private:
    void ReadTransport(double& barStart, bool& looping, double& loopStart, double& loopEnd,
                       int32_t& numerator, int32_t& denominator);
    void ReleaseAllNotes(NoteChannel& ch);
    void ChannelNoteOn(int32_t c, int32_t note, float v);
    void ChannelNoteOff(int32_t c, int32_t note, float v);
    int32_t ChooseNote(int32_t c, bool* found) const;
    void NoteLogic(const BR::MessageQueueItem& item);
    bool Allocate(uint8_t status, uint8_t channelNibble, uint8_t data1, uint8_t data2);
    void Track(uint8_t status, int32_t channel, uint8_t data1, uint8_t data2);
    void Tick();
    // Sample offset of clock `r` from the block start, or kNever.
    uint32_t SampleOfClock(int32_t r) const;
    int32_t Priority(int32_t c) const;

    // MIDI out.
    int32_t midiOutChannel = 0;
    int32_t channelise = 0;
    bool matchNoteOffs = false;
    uint8_t trackedNote[16][128] = {};
    int32_t trackedCount[16] = {};
    // Port allocator.
    uint8_t sustainDown = 0;
    uint8_t notePort[128] = {};
    int32_t activeNotes = 0;
    int32_t nextPort = 1;
    int32_t portNote[BR::kNumSerialPorts + 1] = {};
    // Clock and transport.
    bool clockOn = false, sppOn = false, swingOn = false;
    float swingAmount = 0.5f;
    double swingPeriod = 12.0;
    float clockOffset = 0.0f;
    double tempo = 0.0, beatPosition = 0.0;
    uint8_t playing = 0;
    uint8_t delaySerial = 0;
    uint8_t startPending = 0, stopPending = 0, tickPending = 0;
    int32_t lastTick = 0, firstTick = 0, sppBeats = 0;
    uint8_t sendPressed = 0;
    // The tick due next in this block: its clock number and sample.
    int32_t next = 0;
    uint32_t nextSample = kNever;
    double clockNow = 0.0, perClock = 0.0;
    // Parameter change count and rate that the settings were last read at: the many rows of a
    // refresh are read again only when one of them may have changed. Slices and MIDI items can be a
    // sample apart, so this keeps their cost small; what a change does is the same.
    // Cleared by BeginBlock when rows changed: the settings are due again.
    bool sliceSettingsRead = false, midiSettingsRead = false;
};
