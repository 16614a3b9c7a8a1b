// libsmf loading: the library merges the tracks in time order and applies the tempo map.
#include "MidiFile.h"

#include <smf.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace BR {

std::vector<MidiEventSpec> ReadMidiFile(const std::string& path, double sampleRate) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        throw std::runtime_error("cannot read \"" + path + "\": no such file");
    std::unique_ptr<smf_t, void (*)(smf_t*)> smf(smf_load(path.c_str()), smf_delete);
    if (!smf) throw std::runtime_error("cannot read \"" + path + "\": not a Standard MIDI File, or damaged");
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
