// libsmf loading: the library merges the tracks in time order and applies the tempo map. It stops
// the process on some damaged files, so each file's structure is checked here first, strictly.
#include "MidiFile.h"

#include <smf.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace BR {

namespace {

struct Reader {
    const std::vector<uint8_t>& bytes;
    size_t at;
    size_t end;

    bool Has(size_t n) const { return end - at >= n; }
    uint32_t Big(int n) {
        uint32_t value = 0;
        for (int i = 0; i < n; ++i)
            value = (value << 8) | bytes[at++];
        return value;
    }
    // A variable-length quantity of at most four bytes.
    bool Quantity(uint32_t& value) {
        value = 0;
        for (int i = 0; i < 4; ++i) {
            if (!Has(1)) return false;
            const uint8_t b = bytes[at++];
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80)) return true;
        }
        return false;
    }
};

// Why a track's events are not well formed, or empty when they are.
std::string CheckTrack(Reader track) {
    uint8_t runningStatus = 0;
    bool ended = false;
    while (track.at < track.end) {
        if (ended) return "events follow the end of track";
        uint32_t delta = 0, length = 0;
        if (!track.Quantity(delta)) return "a delta time runs past the track";
        if (!track.Has(1)) return "an event is missing after its delta time";
        uint8_t status = track.bytes[track.at];
        if (status & 0x80) {
            ++track.at;
        } else if (runningStatus) {
            status = runningStatus;
        } else {
            return "a data byte stands where a status byte belongs";
        }
        if (status < 0xF0) {
            const size_t dataBytes = (status & 0xF0) == 0xC0 || (status & 0xF0) == 0xD0 ? 1 : 2;
            if (!track.Has(dataBytes)) return "a channel message runs past the track";
            for (size_t i = 0; i < dataBytes; ++i)
                if (track.bytes[track.at++] & 0x80) return "a channel message is cut short";
            runningStatus = status;
        } else if (status == 0xFF) {
            if (!track.Has(1)) return "a meta event runs past the track";
            const uint8_t type = track.bytes[track.at++];
            if (!track.Quantity(length) || !track.Has(length)) return "a meta event runs past the track";
            track.at += length;
            ended = type == 0x2F;
            runningStatus = 0;
        } else if (status == 0xF0 || status == 0xF7) {
            if (!track.Quantity(length) || !track.Has(length))
                return "a system exclusive event runs past the track";
            if (status == 0xF7 || length == 0) return "a system exclusive event is not of the form F0 ... F7";
            if (track.bytes[track.at + length - 1] != 0xF7)
                return "a system exclusive event is not of the form F0 ... F7";
            for (uint32_t i = 0; i + 1 < length; ++i)
                if (track.bytes[track.at + i] & 0x80) return "a system exclusive event holds a status byte";
            track.at += length;
            runningStatus = 0;
        } else {
            return "a system message stands inside a track";
        }
    }
    return ended ? "" : "a track lacks its end";
}

std::string CheckStructure(const std::vector<uint8_t>& bytes) {
    Reader file{bytes, 0, bytes.size()};
    if (!file.Has(14) || std::string(bytes.begin(), bytes.begin() + 4) != "MThd") return "no MThd header";
    file.at = 4;
    const uint32_t headerLength = file.Big(4);
    if (headerLength < 6 || !file.Has(headerLength)) return "the header is damaged";
    const uint32_t format = file.Big(2), tracks = file.Big(2), division = file.Big(2);
    file.at += headerLength - 6;
    if (format > 2) return "format " + std::to_string(format) + " is unknown";
    if (division & 0x8000) return "time code divisions are not supported, only pulses per quarter note";
    if (division == 0) return "the division is 0";
    uint32_t found = 0;
    while (file.at < file.end) {
        if (!file.Has(8)) return "the last chunk is cut short";
        const std::string type(bytes.begin() + std::ptrdiff_t(file.at),
                               bytes.begin() + std::ptrdiff_t(file.at + 4));
        file.at += 4;
        const uint32_t length = file.Big(4);
        if (!file.Has(length)) return "track " + std::to_string(found + 1) + " is cut short";
        if (type == "MTrk") {
            const std::string fault = CheckTrack(Reader{bytes, file.at, file.at + length});
            if (!fault.empty()) return "track " + std::to_string(found + 1) + ": " + fault;
            ++found;
        }
        file.at += length;
    }
    if (found != tracks || tracks == 0)
        return "the header announces " + std::to_string(tracks) + " tracks, the file holds " +
               std::to_string(found);
    return "";
}

}  // namespace

std::vector<MidiEventSpec> ReadMidiFile(const std::string& path, double sampleRate) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read \"" + path + "\": no such file");
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string fault = CheckStructure(bytes);
    if (!fault.empty())
        throw std::runtime_error("cannot read \"" + path + "\": not a Standard MIDI File, or damaged (" +
                                 fault + ")");

    // What the library still dislikes it reports through the log of its own domain: that text goes
    // into our message rather than onto the terminal.
    std::string complaint;
    const guint handler = g_log_set_handler(
        "libsmf", GLogLevelFlags(G_LOG_LEVEL_MASK),
        [](const gchar*, GLogLevelFlags, const gchar* message, gpointer text) {
            *static_cast<std::string*>(text) = message;
        },
        &complaint);
    std::unique_ptr<smf_t, void (*)(smf_t*)> smf(smf_load(path.c_str()), smf_delete);
    g_log_remove_handler("libsmf", handler);
    if (!smf)
        throw std::runtime_error("cannot read \"" + path + "\": not a Standard MIDI File, or damaged" +
                                 (complaint.empty() ? "" : " (" + complaint + ")"));

    std::vector<MidiEventSpec> events;
    while (smf_event_t* event = smf_get_next_event(smf.get())) {
        if (smf_event_is_metadata(event) || event->midi_buffer_length < 1) continue;
        const long long frame = std::llround(event->time_seconds * sampleRate);
        MidiEventSpec spec;
        spec.frame = frame > 0 ? uint64_t(frame) : 0;
        spec.bytes.assign(event->midi_buffer, event->midi_buffer + event->midi_buffer_length);
        events.push_back(std::move(spec));
    }
    return events;
}

}  // namespace BR
