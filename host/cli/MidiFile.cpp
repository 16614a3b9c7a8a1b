// Reading Standard MIDI Files: the chunks and events are checked strictly, times are summed in 64 bits
// and turned into seconds by the tempo map of all tracks, so that no file can overflow a count.
#include "MidiFile.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace BR {

namespace {

constexpr uint32_t kDefaultMicrosPerQuarter = 500000;  // 120 BPM until a tempo event says otherwise
// Frames at and past this lie beyond any render (renders stop far below 2^40 frames).
constexpr double kNeverFrame = 9007199254740992.0;  // 2^53

struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct TimedBytes {
    uint64_t tick;
    std::vector<uint8_t> bytes;
};

struct TempoChange {
    uint64_t tick;
    uint32_t microsPerQuarter;
    double seconds = 0;  // at `tick`
};

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
    // A variable-length quantity of at most four bytes (28 bits).
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

class TrackReader {
public:
    TrackReader(Reader track_, std::vector<TimedBytes>& events_, std::vector<TempoChange>& tempi_)
        : track(track_), events(events_), tempi(tempi_) {}

    // Throws Fault saying why and at which byte of the file.
    void Read() {
        uint8_t runningStatus = 0;
        bool ended = false;
        while (track.at < track.end) {
            start = track.at;
            if (ended) Refuse("events follow the end of track");
            uint32_t delta = 0, length = 0;
            if (!track.Quantity(delta)) Refuse("a delta time runs past the track or exceeds four bytes");
            tick += delta;  // at most 2^28 per byte pair of a 16 MiB file: 64 bits cannot overflow
            if (!track.Has(1)) Refuse("an event is missing after its delta time");
            uint8_t status = track.bytes[track.at];
            if (status & 0x80) {
                ++track.at;
            } else if (runningStatus) {
                status = runningStatus;
            } else {
                Refuse("a data byte stands where a status byte belongs");
            }
            if (status < 0xF0) {
                const size_t dataBytes = (status & 0xF0) == 0xC0 || (status & 0xF0) == 0xD0 ? 1 : 2;
                if (!track.Has(dataBytes)) Refuse("a channel message runs past the track");
                std::vector<uint8_t> message{status};
                for (size_t i = 0; i < dataBytes; ++i) {
                    if (track.bytes[track.at] & 0x80) Refuse("a channel message is cut short");
                    message.push_back(track.bytes[track.at++]);
                }
                Add(std::move(message));
                runningStatus = status;
            } else if (status == 0xFF) {
                if (!track.Has(1)) Refuse("a meta event runs past the track");
                const uint8_t type = track.bytes[track.at++];
                if (!track.Quantity(length) || !track.Has(length)) Refuse("a meta event runs past the track");
                if (type == 0x51) {
                    if (length != 3)
                        Refuse("a tempo event holds " + std::to_string(length) + " bytes, not 3");
                    tempi.push_back({tick, uint32_t(track.bytes[track.at]) << 16 |
                                               uint32_t(track.bytes[track.at + 1]) << 8 |
                                               uint32_t(track.bytes[track.at + 2])});
                }
                track.at += length;
                ended = type == 0x2F;
                runningStatus = 0;
            } else if (status == 0xF0 || status == 0xF7) {
                if (!track.Quantity(length) || !track.Has(length))
                    Refuse("a system exclusive event runs past the track");
                if (status == 0xF7 || length == 0 || track.bytes[track.at + length - 1] != 0xF7)
                    Refuse("a system exclusive event is not of the form F0 ... F7");
                for (uint32_t i = 0; i + 1 < length; ++i)
                    if (track.bytes[track.at + i] & 0x80)
                        Refuse("a system exclusive event holds a status byte");
                std::vector<uint8_t> message{0xF0};
                message.insert(message.end(), track.bytes.begin() + std::ptrdiff_t(track.at),
                               track.bytes.begin() + std::ptrdiff_t(track.at + length));
                Add(std::move(message));
                track.at += length;
                runningStatus = 0;
            } else {
                Refuse("a system message stands inside a track");
            }
        }
        if (!ended) Refuse("the track lacks its end");
    }

private:
    void Add(std::vector<uint8_t> message) {
        if (events.size() >= kMaxMidiEvents)
            Refuse("the file holds more than " + std::to_string(kMaxMidiEvents) + " events, the limit");
        events.push_back({tick, std::move(message)});
    }
    [[noreturn]] void Refuse(const std::string& why) const {
        throw Fault(why + " (at byte " + std::to_string(start) + " of the file)");
    }

    Reader track;
    std::vector<TimedBytes>& events;
    std::vector<TempoChange>& tempi;
    uint64_t tick = 0;
    size_t start = 0;  // the event being read
};

std::vector<uint8_t> ReadBounded(const std::string& path) {
    CheckFileSize(path, kMaxMidiFileBytes, "MIDI files");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read \"" + path + "\": it cannot be opened");
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The file's events in time order (equal times keep track order) and its ticks per quarter note.
std::vector<TimedBytes> ReadEvents(const std::vector<uint8_t>& bytes, std::vector<TempoChange>& tempi,
                                   uint32_t& division) {
    Reader file{bytes, 0, bytes.size()};
    if (!file.Has(14) || std::string(bytes.begin(), bytes.begin() + 4) != "MThd")
        throw Fault("no MThd header");
    file.at = 4;
    const uint32_t headerLength = file.Big(4);
    if (headerLength < 6 || !file.Has(headerLength)) throw Fault("the header is damaged");
    const uint32_t format = file.Big(2), tracks = file.Big(2);
    division = file.Big(2);
    file.at += headerLength - 6;  // longer headers of later revisions: the rest is skipped
    if (format == 2) throw Fault("format 2 (independent sequences) is not supported, only formats 0 and 1");
    if (format > 2) throw Fault("format " + std::to_string(format) + " is unknown");
    if (division & 0x8000) throw Fault("time code divisions are not supported, only pulses per quarter note");
    if (division == 0) throw Fault("the division is 0");
    std::vector<TimedBytes> events;
    uint32_t found = 0;
    while (file.at < file.end) {
        if (!file.Has(8))
            throw Fault("the last chunk is cut short (at byte " + std::to_string(file.at) + " of the file)");
        const std::string type(bytes.begin() + std::ptrdiff_t(file.at),
                               bytes.begin() + std::ptrdiff_t(file.at + 4));
        file.at += 4;
        const uint32_t length = file.Big(4);
        if (!file.Has(length))
            throw Fault("chunk " + std::to_string(found + 1) + " at byte " + std::to_string(file.at - 8) +
                        " claims " + std::to_string(length) + " bytes, past the end of the file");
        if (type == "MTrk") {
            try {
                TrackReader(Reader{bytes, file.at, file.at + length}, events, tempi).Read();
            } catch (const Fault& fault) {
                throw Fault("track " + std::to_string(found + 1) + ": " + fault.what());
            }
            ++found;
        }
        file.at += length;  // chunks of other types are skipped
    }
    if (found != tracks || tracks == 0)
        throw Fault("the header announces " + std::to_string(tracks) + " tracks, the file holds " +
                    std::to_string(found));
    std::stable_sort(events.begin(), events.end(),
                     [](const TimedBytes& a, const TimedBytes& b) { return a.tick < b.tick; });
    return events;
}

}  // namespace

std::vector<MidiEventSpec> ReadMidiFile(const std::string& path, double sampleRate) {
    const std::vector<uint8_t> bytes = ReadBounded(path);
    std::vector<TempoChange> tempi;
    uint32_t division = 0;
    std::vector<TimedBytes> events;
    try {
        events = ReadEvents(bytes, tempi, division);
    } catch (const Fault& fault) {
        throw std::runtime_error("cannot read \"" + path + "\": not a Standard MIDI File, or damaged (" +
                                 fault.what() + ")");
    }

    // The tempo map of all tracks: a change at the same tick as an earlier one replaces it.
    std::stable_sort(tempi.begin(), tempi.end(),
                     [](const TempoChange& a, const TempoChange& b) { return a.tick < b.tick; });
    std::vector<TempoChange> map{{0, kDefaultMicrosPerQuarter, 0.0}};
    // Seconds per tick at a tempo: microseconds per quarter note over microsecond ticks per quarter.
    const double microTicksPerQuarter = double(division) * 1000000.0;
    for (const TempoChange& change : tempi) {
        const TempoChange& last = map.back();
        const double seconds = last.seconds + double(change.tick - last.tick) *
                                                  (double(last.microsPerQuarter) / microTicksPerQuarter);
        if (change.tick == last.tick) map.pop_back();
        map.push_back({change.tick, change.microsPerQuarter, seconds});
    }

    std::vector<MidiEventSpec> specs;
    specs.reserve(events.size());
    size_t tempo = 0;
    for (TimedBytes& event : events) {
        while (tempo + 1 < map.size() && map[tempo + 1].tick <= event.tick)
            ++tempo;
        const TempoChange& at = map[tempo];
        const double seconds =
            at.seconds + double(event.tick - at.tick) * (double(at.microsPerQuarter) / microTicksPerQuarter);
        const double frame = std::min(std::round(seconds * sampleRate), kNeverFrame);
        specs.push_back({frame > 0 ? uint64_t(frame) : 0, std::move(event.bytes)});
    }
    return specs;
}

}  // namespace BR
