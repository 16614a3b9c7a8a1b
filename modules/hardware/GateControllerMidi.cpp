// Gate controller MIDI: what one queued item does to the serial MIDI out, the port allocator, the
// note tracker for matched note offs, the note channels and the gate groups.
#include <algorithm>

#include "GateController.h"

namespace {
constexpr float kVelocityScale = 0.007874016f;  // 1 / 127

bool IsNoteOff(uint8_t status, uint8_t data2) {
    return status == 0x80 || (status == 0x90 && data2 == 0);
}
}  // namespace

void BrelGateControllerBase::HandleMidiItem(const BR::MessageQueueItem& item) {
    RefreshMidiSettings();
    if (item.kind == BR::kMessageByteBlock) {
        // System exclusive goes out whole on port 0 alone, whatever the MIDI out channel says.
        const int32_t n = int32_t(std::min<size_t>(item.bytes.size(), size_t(BR::kPortMaxBytes)));
        if (ports[0].CanTake(n + 1)) {
            ports[0].Send(0xF0);
            ports[0].Send(item.bytes.data(), n);
        }
        return;
    }
    if (item.kind != BR::kMessageShortMIDI) return;
    const uint8_t status = item.status, channel = item.channel & 15;
    const uint8_t data1 = item.dataByte1, data2 = item.dataByte2;

    if (status == 0xF0) {
        // System common and real-time messages by their low nibble; the rest are dropped.
        const uint8_t bytes[3] = {uint8_t(0xF0 | channel), data1, data2};
        switch (channel) {
            case 1:
            case 3:
                BroadcastSend(bytes, 2);
                break;
            case 2:
                BroadcastSend(bytes, 3);
                break;
            case 6:
            case 8:
            case 10:
            case 11:
            case 12:
            case 14:
            case 15:
                BroadcastSend(bytes, 1);
                break;
            default:
                break;
        }
        return;
    }

    if (midiOutChannel == 17 || midiOutChannel == channel + 1) {
        const uint8_t out = uint8_t(channelise > 0 ? channelise - 1 : channel);
        const uint8_t bytes[3] = {uint8_t(status | out), data1, data2};
        if (status == 0xC0 || status == 0xD0) {
            BroadcastSend(bytes, 2);
        } else if (polyphony == 0 || !Allocate(status, out, data1, data2)) {
            BroadcastSend(bytes, 3);
            Track(status, channel, data1, data2);
        }
    }
    NoteLogic(item);
}

void BrelGateControllerBase::Track(uint8_t status, int32_t channel, uint8_t data1, uint8_t data2) {
    // Every three-byte message that went out marks its first data byte as if it were a note, so that a
    // controller or pitch wheel gets a note off at a stop under "Match Note Offs". Required as it is.
    uint8_t& mark = trackedNote[channel][data1 & 127];
    if (status == 0x80 || data2 == 0) {
        if (mark) --trackedCount[channel];
        mark = 0;
    } else {
        if (!mark) ++trackedCount[channel];
        mark = 1;
    }
}

bool BrelGateControllerBase::Allocate(uint8_t status, uint8_t out, uint8_t data1, uint8_t data2) {
    const int32_t numPorts = polyphony + 1;
    if (status == 0xB0) {
        if (data1 == 64) {
            const uint8_t down = data2 >= 64 ? 1 : 0;
            if (down == sustainDown || down) {
                sustainDown = down;
                return true;
            }
            sustainDown = 0;
            // Pedal up: ports still sounding a note that was released meanwhile let it go now.
            for (int32_t p = 1; p <= numPorts; ++p) {
                const int32_t n = portNote[p];
                if (n < 0 || notePort[n] == p) continue;
                portNote[p] = -1;
                ports[p - 1].Send(uint8_t(0x80 | out), uint8_t(n), 127);
            }
            return true;
        }
        if (data1 == 120 || data1 == 123) {
            sustainDown = 0;
            std::fill(std::begin(notePort), std::end(notePort), uint8_t(0));
            activeNotes = 0;
            nextPort = 1;
            std::fill(std::begin(portNote), std::end(portNote), -1);
        }
        return false;
    }
    if (status != 0x80 && status != 0x90) return false;
    const int32_t note = std::clamp(int32_t(data1), 0, 127);
    if (IsNoteOff(status, data2)) {
        const int32_t p = notePort[note];
        if (p == 0) return true;
        notePort[note] = 0;
        --activeNotes;
        if (sustainDown) return true;  // the port keeps the note until the pedal is up
        portNote[p] = -1;
        ports[p - 1].Send(uint8_t(status | out), uint8_t(note), data2);
        return true;
    }
    if (notePort[note] != 0) {
        ports[notePort[note] - 1].Send(uint8_t(0x80 | out), uint8_t(note), 127);
    } else {
        ++activeNotes;
    }
    int32_t p = std::clamp(nextPort, 1, numPorts);
    for (int32_t step = 0; step < numPorts && portNote[p] >= 0; ++step)
        p = p % numPorts + 1;
    nextPort = p % numPorts + 1;
    // With no port free the search ends where it began, and that port's note is cut; its entry in
    // notePort stays, so its own note off later still goes out there.
    if (portNote[p] >= 0) ports[p - 1].Send(uint8_t(0x80 | out), uint8_t(portNote[p]), 127);
    notePort[note] = uint8_t(p);
    portNote[p] = note;
    ports[p - 1].Send(uint8_t(0x90 | out), uint8_t(note), data2);
    return true;
}

void BrelGateControllerBase::NoteLogic(const BR::MessageQueueItem& item) {
    const uint8_t status = item.status, data1 = item.dataByte1, data2 = item.dataByte2;
    const int32_t midiChannel = (item.channel & 15) + 1;
    const int32_t note = data1;
    if (status == 0x90 && data2 > 0) {
        const float v = float(data2) * kVelocityScale;
        for (int32_t c = 0; c < rows.numNoteChannels; ++c) {
            const NoteChannel& ch = channels[c];
            if (ch.midiChannel == midiChannel && note >= ch.rangeMin && note <= ch.rangeMax)
                ChannelNoteOn(c, note, v);
        }
        for (int32_t g = 0; g < rows.numGroups; ++g) {
            GateGroup& group = groups[g];
            if (group.midiChannel != midiChannel || note < group.baseNote || note > group.baseNote + 7)
                continue;
            const int32_t i = note - group.baseNote;
            group.gate[i] = 1;
            group.countdown[i] = uint32_t(group.triggerSamples[i]);
            // Gates 2, 4, 6 and 8 can be accent outputs of gates 1, 3, 5 and 7.
            if ((i & 1) == 0 && group.accent[i / 2] && data2 >= 64) {
                group.gate[i + 1] = 1;
                group.countdown[i + 1] = uint32_t(group.triggerSamples[i + 1]);
            }
        }
        return;
    }
    if (IsNoteOff(status, data2)) {
        const float v = float(data2) * kVelocityScale;
        for (int32_t c = 0; c < rows.numNoteChannels; ++c) {
            const NoteChannel& ch = channels[c];
            if (ch.midiChannel == midiChannel && note >= ch.rangeMin && note <= ch.rangeMax)
                ChannelNoteOff(c, note, v);
        }
        for (int32_t g = 0; g < rows.numGroups; ++g) {
            GateGroup& group = groups[g];
            if (group.midiChannel != midiChannel || note < group.baseNote || note > group.baseNote + 7)
                continue;
            const int32_t i = note - group.baseNote;
            group.gate[i] = 0;  // a note off ends a trigger early
            if ((i & 1) == 0 && group.accent[i / 2]) group.gate[i + 1] = 0;
        }
        return;
    }
    if (status != 0xB0) return;
    if (data1 != 64 && data1 != 120 && data1 != 123) return;
    for (int32_t c = 0; c < rows.numNoteChannels; ++c) {
        NoteChannel& ch = channels[c];
        if (ch.midiChannel != midiChannel) continue;
        if (data1 == 64) {
            ch.sustain = data2 >= 64 ? 1 : 0;
        } else if (data1 == 120) {
            ch.gate = ch.sustain = 0;
            std::fill(std::begin(ch.order), std::end(ch.order), uint8_t(0));
            ch.heldCount = 0;
            ch.note = 0.0f;
        } else {
            ReleaseAllNotes(ch);
        }
    }
    if (data1 == 64) return;
    for (int32_t g = 0; g < rows.numGroups; ++g)
        if (groups[g].midiChannel == midiChannel)
            std::fill(std::begin(groups[g].gate), std::end(groups[g].gate), uint8_t(0));
}

int32_t BrelGateControllerBase::Priority(int32_t c) const {
    return int32_t(BlockValue(rows.noteChannel[c] + 5));
}

void BrelGateControllerBase::ReleaseAllNotes(NoteChannel& ch) {
    const int32_t c = int32_t(&ch - channels);
    for (int32_t n = 0; n < 128; ++n)
        if (ch.order[n]) ChannelNoteOff(c, n, 1.0f);
    ch.heldCount = 0;
    ch.gate = 0;
}

void BrelGateControllerBase::ChannelNoteOn(int32_t c, int32_t note, float v) {
    NoteChannel& ch = channels[c];
    note = std::clamp(note, 0, 127);
    if (ch.order[note] == 0) {
        ++ch.heldCount;
        ch.order[note] = uint8_t(ch.heldCount & 0xFF);
    }
    int32_t chosen = note;
    if (ch.heldCount >= 2) {
        const int32_t priority = Priority(c);
        if (priority == kLowest || priority == kHighest) {
            for (int32_t n = 0; n < 128; ++n) {
                const int32_t k = priority == kLowest ? n : 127 - n;
                if (ch.order[k]) {
                    chosen = k;
                    break;
                }
            }
        }
    }
    ch.velocity = v;
    ch.note = float(chosen);
    // The retrigger mode only decides whether the unread timer is set again: nothing audible.
    if (!ch.gate || BlockValue(rows.noteChannel[c] + 6) != 1.0f) {
        ch.gate = 1;
        ch.retrigTimer = 10;
    }
}

int32_t BrelGateControllerBase::ChooseNote(int32_t c, bool* found) const {
    const NoteChannel& ch = channels[c];
    const int32_t priority = Priority(c);
    *found = false;
    if (priority == kLowest || priority == kHighest) {
        for (int32_t n = 0; n < 128; ++n) {
            const int32_t k = priority == kLowest ? n : 127 - n;
            if (ch.order[k]) {
                *found = true;
                return k;
            }
        }
        return 0;
    }
    // "Newest" looks for the largest order number but returns the last held note it meets, so it
    // falls back to the highest held note. An order number of 128 or more reads as negative and is
    // passed over. Kept as the hardware's users know it.
    int32_t chosen = 0, largest = 0;
    for (int32_t n = 0; n < 128; ++n) {
        const int32_t order = int8_t(ch.order[n]);
        if (order <= 0) continue;
        largest = std::max(largest, order);
        chosen = n;
        *found = true;
    }
    (void)largest;
    return chosen;
}

void BrelGateControllerBase::ChannelNoteOff(int32_t c, int32_t note, float v) {
    NoteChannel& ch = channels[c];
    note = std::clamp(note, 0, 127);
    if (ch.order[note]) {
        ch.order[note] = 0;
        --ch.heldCount;
    }
    bool found = false;
    const int32_t chosen = ch.heldCount == 0 ? 0 : ChooseNote(c, &found);
    if (!found) {
        ch.releaseVelocity = v;
        ch.gate = 0;  // the note stays, so the level holds
        return;
    }
    if (chosen != int32_t(ch.note)) ChannelNoteOn(c, chosen, ch.velocity);
}
