// Voice Controller: MIDI to calibrated pitch, gate, three envelopes, trigger and velocity, mixed
// through a 6 by 8 matrix. Several instances make one polyphonic instrument: a master picks a voice
// for each note and hands the events on through a marker sample in its first output.
#pragma once

#include <vector>

#include "Calibration.h"
#include "CalibrationProperties.h"
#include "Envelope.h"
#include "VoiceMix.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/hardware/CombinerStream.h"

namespace BrelCorvaneVoiceController {

enum TableIndex : int32_t {
    kGateClosedVoltage = 0,
    kGateOpenVoltage = 1,
    kTriggerOffVoltage = 2,
    kTriggerOnVoltage = 3,
    kOverridePitch = 4,
    kPitch = 5,
    kOverrideGate = 6,
    kGate = 7,
    kPitchWheelRange = 8,
    kDetune = 9,
    kPitchLFODepth = 10,
    kPitchLFOSpeed = 11,
    kEnv1TimeA1 = 12,  // fourteen rows per envelope, BR::kEnvRowStride apart
    kOSCPortOffset = 54,
    kOutput1Offset = 55,  // eight rows per output: offset, pitch, gate, Env1, Env2, Env3, trigger, velocity
    kVelocityMinVoltage = 103,
    kVelocityMaxVoltage = 104,
    kEnv1VelocityDepth = 105,
    kNotePriority = 108,
    kRetriggerMode = 109,
    kPolyMode = 110,
    kPolyphonyVoice = 111,
    kEnv1ResetToZero = 112,
    kOutput1Smoothing = 115,
    kPortamentoMode = 121,
    kPortamentoTime = 122,
    kPortamentoShape = 123,
    kRandomTuning = 124,
    kEnv1Multiplier = 125,
    kHardwareMode = 128,
    kBipolar3 = 129,
    kTranspose = 132,
    kTriggerLength = 133,
    kInterfaceCategory = 134,
    kTargetHardware = 135,
    kTargetChannel = 136,
    kEnv1TypeA1 = 137,  // five rows per envelope, BR::kEnvTypeRowStride apart
    kNumParameters = 152,
};

constexpr int32_t kNumOutputs = 6;
constexpr int32_t kNumSources = 8;  // matrix columns
constexpr int32_t kNumEnvelopes = 3;
constexpr int32_t kMaxVoices = 16;
constexpr int32_t kRingSize = 64;

enum MatrixSource : int32_t {
    kSourceOffset = 0,
    kSourcePitch = 1,
    kSourceGate = 2,
    kSourceEnv1 = 3,
    kSourceTrigger = 6,
    kSourceVelocity = 7,
};
enum NotePriority : int32_t { kNewest = 0, kLowest = 1, kHighest = 2 };
enum PolyMode : int32_t { kPolyOff = 0, kPolyMaster = 1, kPolyVoice = 2 };
enum Mode : int32_t { kModeNormal = 0, kModeMeasuring = 1, kModeMaster = 2 };
enum PortamentoMode : int32_t { kPortaOff = 0, kPortaAuto, kPortaFingered, kPortaCTAuto, kPortaCTFingered };

// Properties of this module beyond the calibration ones.
enum VoiceProperty : uint32_t {
    kPropertyEnvelopeRows = 64015,  // four int32: "Env 1 Time A1", its stride, "Env 1 Type A1", its stride
    kPropertyPolyPlace = 64019,     // int32: -1 master, 0 not a voice, else the voice number
    kPropertyDontPanic = 64094,
};

// An event handed from the master to its voices; `voice` 0 means every voice.
struct VoiceEvent : BR::MessageQueueItem {
    int32_t voice = 0;
};

// Start in the event ring and number of events of one marker.
struct EventBatch {
    int32_t start = 0;
    int32_t count = 0;
};

// What the editor reads from the status block.
struct VoiceControllerStatus {
    float note;   // the note that sounds, after bend, tuning, vibrato and transpose
    float value;  // its calibrated output value
    BR::EnvDisplayValues envelope[kNumEnvelopes];
    int32_t mode;         // 0 normal, 1 measuring, 2 master
    int32_t measureStep;  // 0..17 while measuring
};

// The marker sample of a batch: the float whose bits are (0x4080 + batch) << 16, 4.0 up to below 6.0.
float MarkerSample(int32_t batch);

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    void SetMaxBlockSize(uint32_t frames) override;
    void PrepareParameterRestore() override;
    bool BeginBlock(uint32_t frames) override;
    void BeginSlice(uint32_t frames, uint32_t reserved) override;
    void ProcessBlock(float** inputs, float** outputs, uint32_t frames) override;
    void HandleQueuedMessage(BR::MessageQueueItem* item) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleControlChange(int32_t channel, int32_t controller, int32_t value) override;
    void HandlePitchBend(int32_t channel, int32_t lsb, int32_t msb) override;
    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    const char* GetModuleName() const override { return "Corvane Voice Controller"; }
    const char* GetGuiScriptName() const override { return "gui_voicecontroller.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    // Read by the voices of a master, and by tests and displays.
    const EventBatch& Batch(int32_t index) const { return batches[index & (kRingSize - 1)]; }
    const VoiceEvent& RingEvent(int32_t index) const { return eventRing[index & (kRingSize - 1)]; }
    const BR::Envelope& GetEnvelope(int32_t e) const { return envelopes[e]; }
    BR::CalibrationTable& Calibration() { return calibration.table; }
    const std::string& CalibrationName() const { return calibration.name; }
    int32_t GetMode() const { return mode; }
    // -1 for a master, the voice number for a voice, else 0: the place as of this instance's last block
    // or sub-block start, as its render path sees it (property 64019).
    int32_t PolyPlace() const { return mode == kModeMaster ? -1 : polyMode == kPolyVoice ? voiceId : 0; }
    int32_t VoiceNote(int32_t voice) const { return voiceNote[voice]; }
    int32_t HeldNote(int32_t note) const { return heldNotes[note]; }
    int32_t HeldCount() const { return heldCount; }
    int32_t NextVoice() const { return nextVoice; }
    int32_t EventWrite() const { return eventWrite; }
    int32_t BatchWrite() const { return batchWrite; }
    bool GateOpen() const { return gateOpen; }
    float CurrentNote() const { return currentNote; }
    float PitchBend() const { return pitchBend; }
    float RandomTuning() const { return randomTuning; }
    float PitchTarget() const { return pitchTarget; }
    float GlidePitch() const { return glidePitch; }
    bool PortamentoActive() const { return portamentoActive; }
    float GateVoltage() const { return gateVoltage; }
    uint32_t TriggerLengthSamples() const { return triggerLengthSamples; }
    float Mix(int32_t output, int32_t source) const { return mix[output][source]; }
    const BR::CalibrationMeasurement& Measurement() const { return measurement; }

private:
    // Parameters read at each block and sub-block start.
    void ReadParameters();
    void ReadRows();
    void SelectMode();
    // Pitch, gate and velocity of the present note with those parameters; a voice runs it again after
    // the events of a marker, so that a note acts from the marker's sample on.
    void UpdateNoteOutputs();

    // Note logic (VoiceAllocation.cpp).
    void MonoEvent(uint8_t status, uint8_t data1, uint8_t data2);
    void NoteOn(int32_t note, float velocity);
    void NoteOnSteps(int32_t note, float velocity);
    void NoteOff(int32_t note, float velocity);
    void StartVoice();
    void ReleaseEnvelopes();
    void AllGatesOff();
    void SustainPedal(bool on);
    void AllNotesOff();
    // Master distribution of the events of one time stamp; true when a marker took the sample.
    bool DistributeGroup(BR::MessageQueueItem* first, BR::MessageQueueItem*& pending, float** outputs,
                         uint32_t position);
    void MasterEvent(const BR::MessageQueueItem& item, int32_t& added);
    void MasterNoteOn(const BR::MessageQueueItem& item, int32_t& added);
    void MasterNoteOff(const BR::MessageQueueItem& item, int32_t& added);
    void MasterSustain(bool on, const BR::MessageQueueItem& item, int32_t& added);
    void MasterAllNotesOff(const BR::MessageQueueItem& item, int32_t& added);
    void AddToRing(const BR::MessageQueueItem& item, int32_t voice, int32_t& added);
    void SendNoteOff(const BR::MessageQueueItem& cause, int32_t note, int32_t voice, int32_t& added);
    void ScanVoiceInput(const float* input, float** outputs, uint32_t frames);
    // True when an event of the batch was meant for this voice.
    bool PlayBatch(const BrelCorvane& master, int32_t batch);
    void RunSubBlock(float** inputs, float** outputs, uint32_t frames);
    void NotifyScripts(BR::MessageQueueItem& item);

    // Signal path (VoiceSignalPath.cpp).
    void Render(float** outputs, uint32_t offset, uint32_t frames);
    void RenderChunk(float** outputs, uint32_t offset, uint32_t frames);
    void RenderPitch(float* slot, uint32_t frames);
    // With `smooth`, each mixed output also passes its smoother in the same loop, as Smooth would.
    void MixOutputs(float** outputs, uint32_t offset, uint32_t frames, int32_t firstOutput, bool smooth);
    void PlanOutputs(int32_t firstOutput, bool smooth);
    void Smooth(float** outputs, uint32_t offset, uint32_t frames);
    // Replaces the first outputs by frame words in a hardware mode.
    void EncodeHardware(float** outputs, uint32_t offset, uint32_t frames);
    void StartGlide();
    void Measure(float** inputs, float** outputs, uint32_t frames);
    void RenderMeasureLevel(float** outputs, uint32_t offset, uint32_t frames, float level);

    // Note state.
    uint8_t heldNotes[128];
    int32_t heldCount;
    bool gateOpen;
    bool sustainPedal;
    float currentNote;
    float noteVelocity, releaseVelocity;
    float pitchBend;
    float randomTuning;
    uint32_t randomState;
    uint32_t triggerSamplesLeft;
    int32_t mode;
    int32_t polyMode;
    // Master state.
    int32_t polyphony;
    int32_t nextVoice;
    int32_t voiceNote[kMaxVoices + 1];
    VoiceEvent eventRing[kRingSize];
    int32_t eventWrite;
    EventBatch batches[kRingSize];
    int32_t batchWrite;
    // Voice state.
    int32_t voiceId;

    // Settings of the present sub-block.
    BR::EnvParameters envParameters[kNumEnvelopes];
    BR::Envelope envelopes[kNumEnvelopes];
    int32_t notePriority, retriggerMode;
    float pitchWheelRange;
    float sine;
    // Block state of the signal path.
    float lfoPhase;
    float pitchTarget, glidePitch;
    bool portamentoActive;
    bool rowsPending = true;  // rows changed since ReadRows last ran
    int32_t portamentoMode;
    float portamentoCoefficient;
    uint32_t glideSamples;
    float glideShape;
    uint32_t glideLeft;
    float glideStart;
    float gateVoltage, gateOpenVoltage;
    struct PitchSettings {
        float randomCents = 0.0f, overrideNote = 0.0f, vibratoCents = 0.0f, detuneCents = 0.0f,
              transpose = 0.0f;
        bool override = false;
    } pitch;
    struct GateSettings {
        float openVoltage = 0.0f, closedVoltage = 0.0f, overrideVoltage = 0.0f;
        bool override = false;
    } gate;
    float velocityLow, velocityRange;
    float portamentoSamplesUsed,
        exponentialCoefficient;  // the exponential coefficient, kept until the time changes
    float smoothingUsed[kNumOutputs], smoothingRate;  // what each smoother was configured with
    float triggerOn, triggerOff;
    float velocityVoltage, releaseVoltage;
    uint32_t triggerLengthSamples;
    float mix[kNumOutputs][kNumSources];
    BR::OutputSmoother smoother[kNumOutputs];  // slewStep, onePoleCoefficient, smoothState per output
    // The output stage's plan and what it was made from; rowsRead counts the runs of ReadRows (and
    // resets), the only places the matrix and the smoothers' settings change.
    MixPlan mixPlan;
    int32_t mixSources[kMaxMoving];  // scratch slot of each planned signal
    uint32_t rowsRead = 0, mixPlanRows = 0;
    bool mixPlanned = false, mixPlanPortamento = false, mixPlanSmooth = false;
    int32_t mixPlanFirstOutput = 0;
    int32_t hardwareMode, targetHardware, targetChannel, interfaceCategory;
    bool bipolar[3];
    // Encoder states of "Cinder" and "Dunmore": phase and latched value run on across blocks; the
    // remembered values start at 0, with no warm-up.
    BR::CinderStream hardwareCinder;
    BR::DunmoreStream hardwareDunmore;
    std::vector<float> scratch;  // kNumSources slots of scratchFrames: pitch 1, Env1..Env3 3..5, trigger 6
    uint32_t scratchFrames = 0;
    uint32_t maxBlockSize = BR::kDefaultMaxBlockSize;

    // Calibration.
    BR::CalibrationProperties calibration{true};  // the table, its name and the time it got it
    BR::CalibrationMeasurement measurement;
    VoiceControllerStatus* display = nullptr;
};

// Under the registry lock: the voice for the next note, by the envelope stages of each present voice.
int32_t pickVoice(int32_t current, int32_t polyphony);

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneVoiceController
