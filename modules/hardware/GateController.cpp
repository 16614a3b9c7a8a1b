// Gate controller core: the Don't Panic property, lifecycle, and the settings read in the first
// slice and before the MIDI of a block whose rows changed.
#include "GateController.h"

#include <algorithm>
#include <cmath>

namespace {

int32_t Whole(float value) {
    return int32_t(value);
}

}  // namespace

BrelGateControllerBase::BrelGateControllerBase(const BR::ModuleConfig& config,
                                               const BrelGateControllerRows& rows_)
    : BrelCorvaneBase(config), rows(rows_) {
    status.Emplace<BrelGateControllerStatus>();
}

std::vector<std::string> BrelGateControllerBase::GateNames(int32_t numGroups) {
    std::vector<std::string> names;
    for (int32_t g = 1; g <= numGroups; ++g)
        for (int32_t b = 1; b <= 8; ++b)
            names.push_back("Gates " + std::to_string(g) + "/" + std::to_string(b));
    return names;
}

std::vector<std::string> BrelGateControllerBase::Numbered(std::vector<std::string> first, int32_t from,
                                                          int32_t to) {
    for (int32_t k = from; k <= to; ++k)
        first.push_back(std::to_string(k));
    return first;
}

int32_t BrelGateControllerBase::OffAtZero(BR::DisplayStringRequest& request, bool flagged) {
    if (flagged && DisplayRequestValue(request) == 0.0f) return SetDisplayText(request, "Off");
    return BR::kErrInvalidParameter;
}

int32_t BrelGateControllerBase::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    if (id == kPropertyDontPanic) {
        if (size) *size = 1;
        if (writable) *writable = true;
        return BR::kNoErr;
    }
    return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
}

int32_t BrelGateControllerBase::GetProperty(uint32_t id, void* data) {
    if (id == kPropertyDontPanic) return BR::kErrInvalidProperty;  // write only
    return BrelCorvaneBase::GetProperty(id, data);
}

int32_t BrelGateControllerBase::SetProperty(uint32_t id, const void* data, uint32_t size) {
    if (id == kPropertyDontPanic) {
        // Only a post to the audio thread; the gates drop in its next block.
        toAudioQueue.Write(uint32_t(kPropertyDontPanic));
        return BR::kNoErr;
    }
    return BrelCorvaneBase::SetProperty(id, data, size);
}

void BrelGateControllerBase::InitModule() {
    midiOutGate = polyphony = rateClass = 0;
    symbolTable = BR::SymbolTable{nullptr, 0};
    std::fill(std::begin(portGateBit), std::end(portGateBit), 0);
    thruPair = -1;
    std::fill(std::begin(inputToGate), std::end(inputToGate), 0);
    interfaceCategory = 0;
    testCounter = 0;
    for (BR::SerialPort& port : ports)
        port.Reset();
    for (NoteChannel& ch : channels)
        ch = NoteChannel{};
    for (GateGroup& group : groups)
        group = GateGroup{};
    midiOutChannel = channelise = 0;
    matchNoteOffs = false;
    std::fill(&trackedNote[0][0], &trackedNote[0][0] + 16 * 128, uint8_t(0));
    std::fill(std::begin(trackedCount), std::end(trackedCount), 0);
    sustainDown = 0;
    std::fill(std::begin(notePort), std::end(notePort), uint8_t(0));
    activeNotes = 0;
    nextPort = 1;
    std::fill(std::begin(portNote), std::end(portNote), -1);
    clockOn = sppOn = swingOn = false;
    swingAmount = 0.5f;
    swingPeriod = 12.0;
    clockOffset = 0.0f;
    tempo = beatPosition = 0.0;
    playing = delaySerial = 0;
    startPending = stopPending = tickPending = 0;
    lastTick = firstTick = sppBeats = 0;
    sendPressed = 0;
    sliceSettingsRead = midiSettingsRead = false;
    next = 0;
    nextSample = kNever;
    clockNow = perClock = 0.0;
    BrelCorvaneBase::InitModule();
}

bool BrelGateControllerBase::PortSend(int32_t port, const uint8_t* bytes, int32_t count) {
    if (port < 0 || port >= BR::kNumSerialPorts) return false;
    return ports[port].Send(bytes, count);
}

void BrelGateControllerBase::BroadcastSend(const uint8_t* bytes, int32_t count) {
    for (int32_t p = 0; p <= polyphony; ++p)
        ports[p].Send(bytes, count);
}

void BrelGateControllerBase::BeginSlice(uint32_t, uint32_t) {
    // "Send": a rising edge queues the manual bytes on port 0, whole or not at all.
    const uint8_t pressed = BlockValue(rows.send) != 0.0f ? 1 : 0;
    if (pressed && !sendPressed) {
        const int32_t n = std::clamp(Whole(BlockValue(rows.bytes)), 1, 3);
        uint8_t bytes[3];
        for (int32_t k = 0; k < 3; ++k)
            bytes[k] = uint8_t(std::clamp(Whole(BlockValue(rows.byte1 + k)), 0, 255));
        if (ports[0].CanTake(n)) ports[0].Send(bytes, n);
    }
    sendPressed = pressed;

    // Read again only after a block whose rows changed (BeginBlock clears the flag; a new rate
    // counts as a change of every row).
    if (sliceSettingsRead) return;
    sliceSettingsRead = true;
    for (int32_t c = 0; c < rows.numNoteChannels; ++c) {
        channels[c].gateOutput = Whole(BlockValue(rows.noteChannel[c] + 3));
        channels[c].velOutput = Whole(BlockValue(rows.noteChannel[c] + 4));
    }
    midiOutGate = Whole(BlockValue(rows.midiOutOutput));
    ReadClockSettings();
    rateClass = BR::RateClassOf(sampleRate);
    symbolTable = BR::GetSymbolTable(rows.timing, rateClass);
    const int32_t lastBit = rows.numBytes * 8 - 1;
    for (int32_t p = 0; p < BR::kNumSerialPorts; ++p)
        portGateBit[p] = std::clamp(midiOutGate + p, 0, lastBit);
    ReadEncoderSettings();
    ReadModuleSliceSettings();
}

void BrelGateControllerBase::ReadClockSettings() {
    clockOn = BlockValue(rows.midiOutClock) != 0.0f;
    if (clockOn) sppOn = BlockValue(rows.useSPP) != 0.0f;
    clockOffset = BlockValue(rows.clockOffset) * 0.001f;
    const float s = BlockValue(rows.swing);
    swingOn = std::fabs(s - 50.0f) > 0.1f;
    if (swingOn) {
        swingAmount = std::clamp(s * 0.01f, 0.05f, 0.95f);
        swingPeriod = BlockValue(rows.swingType) == 1.0f ? 24.0 : 12.0;
    }
}

void BrelGateControllerBase::ReadEncoderSettings() {
    thruPair = Whole(BlockValue(rows.inputThru)) - 1;
    for (int32_t j = 0; j < 8; ++j)
        inputToGate[j] = Whole(BlockValue(rows.inputToGate + j));
    interfaceCategory = Whole(BlockValue(rows.interfaceCategory));
}

void BrelGateControllerBase::RefreshMidiSettings() {
    if (midiSettingsRead) return;
    midiSettingsRead = true;
    for (int32_t c = 0; c < rows.numNoteChannels; ++c) {
        NoteChannel& ch = channels[c];
        const int32_t row = rows.noteChannel[c];
        const int32_t midiChannel = Whole(BlockValue(row));
        if (midiChannel != ch.midiChannel) ReleaseAllNotes(ch);
        ch.midiChannel = midiChannel;
        if (midiChannel > 0) {
            ch.rangeMin = Whole(BlockValue(row + 1));
            ch.rangeMax = Whole(BlockValue(row + 2));
        }
    }
    const double rate = double(sampleRate);
    for (int32_t g = 0; g < rows.numGroups; ++g) {
        GateGroup& group = groups[g];
        const int32_t midiChannel = Whole(BlockValue(rows.groupChannel + 2 * g));
        if (midiChannel != group.midiChannel)
            std::fill(std::begin(group.gate), std::end(group.gate), uint8_t(0));
        group.midiChannel = midiChannel;
        if (midiChannel <= 0) continue;
        group.baseNote = Whole(BlockValue(rows.groupChannel + 2 * g + 1));
        for (int32_t i = 0; i < 8; ++i) {
            const double ms = double(BlockValue(rows.triggerLength + 8 * g + i));
            if (ms == 0.0) {
                group.triggerSamples[i] = -1;
            } else {
                // Lengths are limited by their rows; the clamp only keeps a strange rate finite.
                const double samples = std::min(ms * rate * 0.001, 1.0e9);
                group.triggerSamples[i] = std::max(samples > 0.0 ? int32_t(samples) : 0, 1);
            }
        }
        for (int32_t a = 0; a < 4; ++a)
            group.accent[a] = BlockValue(rows.accent + 4 * g + a) != 0.0f ? 1 : 0;
    }
    midiOutChannel = Whole(BlockValue(rows.midiOutChannel));
    if (midiOutChannel != 0) matchNoteOffs = BlockValue(rows.matchNoteOffs) != 0.0f;
    channelise = Whole(BlockValue(rows.channelise));
    polyphony = std::clamp(Whole(BlockValue(rows.polyphony)), 0, kMaxPolyphony);
}

void BrelGateControllerBase::HandleQueuedMessage(BR::MessageQueueItem* item) {
    if (item->kind != BR::kMessageCommand || item->Command() != kPropertyDontPanic) return;
    // All Sound Off on each channel, through the same path as a host's message: gates drop, and a
    // MIDI out that passes the channel sends the controller on.
    BR::MessageQueueItem allOff;
    allOff.kind = BR::kMessageShortMIDI;
    allOff.status = 0xB0;
    allOff.dataByte1 = 120;
    allOff.dataByte2 = 0;
    for (uint8_t c = 0; c < 16; ++c) {
        allOff.channel = c;
        HandleMidiItem(allOff);
    }
}
