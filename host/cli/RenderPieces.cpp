// Block cutting, MIDI scheduling, settings and input windows of the offline jobs.
#include "RenderPieces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "CommandLine.h"

namespace BR {

BlockClock::BlockClock(const TransportSettings& settings, double sampleRate)
    : present(settings.present), changes(settings.changes) {
    transport.sampleRate = sampleRate;
    transport.tempo = settings.tempo;
    transport.playing = settings.playing;
    transport.meterNumerator = settings.meterNumerator;
    transport.meterDenominator = settings.meterDenominator;
    transport.looping = settings.looping;
    transport.loopStart = settings.loopStart;
    transport.loopEnd = settings.loopEnd;
    transport.blockQuarter = settings.position;
    // The timeline's sample location that the start position stands for, at the starting tempo.
    transport.blockSampleLocation =
        int64_t(std::llround(settings.position * 60.0 * sampleRate / settings.tempo));
    std::stable_sort(changes.begin(), changes.end(),
                     [](const TransportChange& a, const TransportChange& b) { return a.frame < b.frame; });
}

uint32_t BlockClock::NextBlock(int64_t done, uint32_t limit) {
    if (!present) return limit;
    while (nextChange < changes.size() && changes[nextChange].frame <= uint64_t(done))
        transport.playing = changes[nextChange++].play;
    int64_t length = limit;
    if (nextChange < changes.size())
        length = std::min<int64_t>(length, int64_t(changes[nextChange].frame) - done);
    const int64_t untilLoopEnd = transport.FramesUntilLoopEnd();
    if (untilLoopEnd > 0) length = std::min(length, untilLoopEnd);
    return uint32_t(std::max<int64_t>(length, 1));
}

MidiSchedule::MidiSchedule(std::vector<MidiEventSpec> events_) : events(std::move(events_)) {
    std::stable_sort(events.begin(), events.end(),
                     [](const MidiEventSpec& a, const MidiEventSpec& b) { return a.frame < b.frame; });
    block.reserve(events.size());
}

const std::vector<TimedMidi>& MidiSchedule::Block(int64_t done, uint32_t frames) {
    block.clear();
    while (next < events.size() && events[next].frame < uint64_t(done) + frames) {
        const MidiEventSpec& e = events[next++];
        const uint32_t at = e.frame < uint64_t(done) ? 0 : uint32_t(e.frame - uint64_t(done));
        block.push_back(TimedMidi{at, uint32_t(e.bytes.size()), e.bytes.data()});
    }
    return block;
}

MidiEventSpec ParseEvent(const std::string& text, const std::string& what) {
    const size_t colon = text.find(':');
    if (colon == std::string::npos) throw UsageError(what + " \"" + text + "\": expected FRAME:HEXBYTES");
    MidiEventSpec event;
    event.frame = uint64_t(ParseInteger(text.substr(0, colon), what + " frame", 0, INT64_MAX));
    event.bytes = ParseHexBytes(text.substr(colon + 1), what + " bytes");
    return event;
}

void ApplySetting(HostDriver& driver, const std::string& name, const std::string& valueText,
                  const std::string& what) {
    const std::string lead = what.empty() ? "--set \"" + name + "\"" : what;
    const int32_t index = driver.ParameterIndexByName(name);
    if (index < 0)
        throw UsageError((what.empty() ? "" : what + ": ") + "module \"" + driver.Entry().stem +
                         "\" has no parameter \"" + name + "\"; \"corvane params " + driver.Entry().stem +
                         "\" lists them");
    const Parameter* parameter = driver.Module().GetParameter(index);
    double value = 0;
    bool named = false;
    if (index > 0) {
        // Indexed rows also take the name of one of their values.
        CountedTextList* list = nullptr;
        if (driver.Module().GetParameterValueStrings(index - 1, &list) == kNoErr && list) {
            const auto& names = list->Get();
            auto it = std::find(names.begin(), names.end(), valueText);
            if (it != names.end()) {
                value = double(it - names.begin());
                named = true;
            }
            list->Release();
        }
    }
    if (!named) {
        if (valueText == "on" || valueText == "On") {
            value = 1;
        } else if (valueText == "off" || valueText == "Off") {
            value = 0;
        } else {
            value = ParseNumber(valueText, lead);
        }
    }
    if (value < parameter->Minimum() || value > parameter->Maximum()) {
        char range[96];
        std::snprintf(range, sizeof range, "%g..%g", double(parameter->Minimum()),
                      double(parameter->Maximum()));
        throw UsageError(lead + ": " + valueText + " is outside " + range);
    }
    driver.Module().SetParameterValue(index, float(value));
}

const float* ChannelWindow(const std::vector<float>& channel, int64_t done, uint32_t frames,
                           std::vector<float>& pad) {
    const size_t start = size_t(done);
    if (start >= channel.size()) return nullptr;
    if (start + frames <= channel.size()) return channel.data() + start;
    pad.assign(frames, 0.0f);
    std::copy(channel.begin() + std::ptrdiff_t(start), channel.end(), pad.begin());
    return pad.data();
}

}  // namespace BR
