// The render subcommand: options, parameter settings, timed MIDI and the block loop.
#include "RenderJob.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "CommandLine.h"
#include "WavFile.h"
#include "host/DriverTransport.h"
#include "modules/ModuleFactory.h"

namespace BR {

namespace {

std::pair<std::string, std::string> SplitSetting(const std::string& text) {
    const size_t eq = text.find('=');
    if (eq == std::string::npos || eq == 0)
        throw UsageError("--set \"" + text + "\": expected \"NAME=VALUE\"");
    return {text.substr(0, eq), text.substr(eq + 1)};
}

MidiEventSpec ParseEvent(const std::string& text) {
    const size_t colon = text.find(':');
    if (colon == std::string::npos) throw UsageError("--event \"" + text + "\": expected FRAME:HEXBYTES");
    MidiEventSpec event;
    event.frame = uint64_t(ParseInteger(text.substr(0, colon), "--event frame", 0, INT64_MAX));
    event.bytes = ParseHexBytes(text.substr(colon + 1), "--event bytes");
    return event;
}

}  // namespace

RenderJob ParseRenderJob(int argc, char** argv, int first) {
    RenderJob job;
    if (first >= argc) throw UsageError("render needs a module stem; \"corvane list\" shows them");
    job.stem = argv[first];
    ArgumentCursor cursor(argc, argv, first + 1);
    std::string option;
    while (cursor.Next(option)) {
        if (option == "--rate") {
            job.sampleRate = double(ParseInteger(cursor.Value(option), "--rate", 1000, 768000));
        } else if (option == "--block") {
            job.blockSize = uint32_t(ParseInteger(cursor.Value(option), "--block", 1, 1 << 20));
        } else if (option == "--frames") {
            job.frames = ParseInteger(cursor.Value(option), "--frames", 0, int64_t(1) << 34);
        } else if (option == "--seconds") {
            job.seconds = ParseNumber(cursor.Value(option), "--seconds");
            if (job.seconds < 0 || job.seconds > 86400)
                throw UsageError("--seconds: must lie from 0 to 86400");
        } else if (option == "--set") {
            job.sets.push_back(SplitSetting(cursor.Value(option)));
        } else if (option == "--in") {
            job.inputPath = cursor.Value(option);
        } else if (option == "--event") {
            job.events.push_back(ParseEvent(cursor.Value(option)));
        } else if (option == "--tempo") {
            job.tempo = ParseNumber(cursor.Value(option), "--tempo");
            if (job.tempo <= 0 || job.tempo > 999)
                throw UsageError("--tempo: must lie above 0 and up to 999 BPM");
        } else if (option == "--position") {
            job.position = ParseNumber(cursor.Value(option), "--position");
        } else if (option == "--meter") {
            const std::string text = cursor.Value(option);
            const size_t slash = text.find('/');
            if (slash == std::string::npos)
                throw UsageError("--meter \"" + text + "\": expected N/D, e.g. 6/8");
            job.meterNumerator = int32_t(ParseInteger(text.substr(0, slash), "--meter numerator", 1, 64));
            job.meterDenominator =
                int32_t(ParseInteger(text.substr(slash + 1), "--meter denominator", 1, 64));
        } else if (option == "--stopped") {
            job.playing = false;
        } else if (option == "--no-transport") {
            job.transport = false;
        } else if (option == "--transport") {
            const std::string text = cursor.Value(option);
            const size_t colon = text.find(':');
            const std::string state = colon == std::string::npos ? "" : text.substr(colon + 1);
            if (state != "play" && state != "stop")
                throw UsageError("--transport \"" + text + "\": expected FRAME:play or FRAME:stop");
            job.transportChanges.push_back(
                {uint64_t(ParseInteger(text.substr(0, colon), "--transport frame", 0, INT64_MAX)),
                 state == "play"});
        } else if (option == "--loop") {
            const std::string text = cursor.Value(option);
            const size_t colon = text.find(':');
            if (colon == std::string::npos)
                throw UsageError("--loop \"" + text + "\": expected START:END in quarter notes");
            job.loopStart = ParseNumber(text.substr(0, colon), "--loop start");
            job.loopEnd = ParseNumber(text.substr(colon + 1), "--loop end");
            if (job.loopEnd <= job.loopStart) throw UsageError("--loop: the end must lie after the start");
            job.looping = true;
        } else if (option == "--out") {
            job.outputPath = cursor.Value(option);
        } else {
            throw UsageError("render: unknown option \"" + option + "\"");
        }
    }
    if (job.outputPath.empty()) job.outputPath = job.stem + ".wav";
    return job;
}

void ApplySetting(HostDriver& driver, const std::string& name, const std::string& valueText) {
    const int32_t index = driver.ParameterIndexByName(name);
    if (index < 0)
        throw UsageError("module \"" + std::string(driver.Entry().stem) + "\" has no parameter \"" + name +
                         "\"; \"corvane params " + driver.Entry().stem + "\" lists them");
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
            value = ParseNumber(valueText, "--set \"" + name + "\"");
        }
    }
    if (value < parameter->Minimum() || value > parameter->Maximum()) {
        char range[96];
        std::snprintf(range, sizeof range, "%g..%g", double(parameter->Minimum()),
                      double(parameter->Maximum()));
        throw UsageError("--set \"" + name + "\": " + valueText + " is outside " + range);
    }
    driver.Module().SetParameterValue(index, float(value));
}

int64_t RunRenderJob(const RenderJob& job) {
    const CatalogueEntry* entry = FindCatalogueEntry(job.stem);
    if (!entry) throw UsageError("unknown module \"" + job.stem + "\"; \"corvane list\" shows the modules");
    std::unique_ptr<BrelCorvaneBase> module = CreateModule(job.stem);
    if (!module) throw UsageError("module \"" + job.stem + "\" is not available in this build");

    AudioData input;
    if (!job.inputPath.empty()) {
        try {
            input = ReadWav(job.inputPath);
        } catch (const std::runtime_error& e) {
            throw UsageError(std::string("--in: ") + e.what());
        }
        if (input.sampleRate != int(job.sampleRate))
            throw UsageError("--in: \"" + job.inputPath + "\" runs at " + std::to_string(input.sampleRate) +
                             " Hz but the render rate is " + std::to_string(int(job.sampleRate)) +
                             " Hz; pass --rate " + std::to_string(input.sampleRate));
    }

    int64_t frames = job.frames;
    if (frames < 0 && job.seconds >= 0) frames = int64_t(std::llround(job.seconds * job.sampleRate));
    if (frames < 0) frames = input.sampleRate ? int64_t(input.Frames()) : int64_t(job.sampleRate);

    HostDriver driver(std::move(module), *entry, float(job.sampleRate),
                      std::min<uint32_t>(job.blockSize, kDefaultMaxBlockSize));
    for (const auto& [name, value] : job.sets)
        ApplySetting(driver, name, value);

    const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
    AudioData output;
    output.sampleRate = int(job.sampleRate);
    output.channels.assign(numOut, std::vector<float>(size_t(frames), 0.0f));
    std::vector<std::vector<float>> padded(numIn, std::vector<float>(job.blockSize, 0.0f));
    std::vector<const float*> in(std::max<size_t>(numIn, 1));
    std::vector<float*> out(std::max<size_t>(numOut, 1));

    std::vector<MidiEventSpec> events = job.events;
    std::stable_sort(events.begin(), events.end(),
                     [](const auto& a, const auto& b) { return a.frame < b.frame; });
    std::vector<TimedMidi> blockMidi;
    size_t nextEvent = 0;

    DriverTransport transport;
    transport.sampleRate = job.sampleRate;
    transport.tempo = job.tempo;
    transport.playing = job.playing;
    transport.meterNumerator = job.meterNumerator;
    transport.meterDenominator = job.meterDenominator;
    transport.looping = job.looping;
    transport.loopStart = job.loopStart;
    transport.loopEnd = job.loopEnd;
    transport.blockQuarter = job.position;
    transport.blockSampleLocation = int64_t(std::llround(job.position * 60.0 * job.sampleRate / job.tempo));
    if (job.transport) driver.SetTransport(&transport);
    std::vector<TransportChange> changes = job.transportChanges;
    std::stable_sort(changes.begin(), changes.end(),
                     [](const auto& a, const auto& b) { return a.frame < b.frame; });
    size_t nextChange = 0;

    for (int64_t done = 0; done < frames;) {
        // A host cuts its blocks where the transport starts, stops or wraps round the loop.
        while (nextChange < changes.size() && changes[nextChange].frame <= uint64_t(done))
            transport.playing = changes[nextChange++].play;
        int64_t limit = std::min<int64_t>(job.blockSize, frames - done);
        if (nextChange < changes.size())
            limit = std::min<int64_t>(limit, int64_t(changes[nextChange].frame) - done);
        const int64_t untilLoopEnd = transport.FramesUntilLoopEnd();
        if (untilLoopEnd > 0) limit = std::min(limit, untilLoopEnd);
        const uint32_t n = uint32_t(limit);
        for (size_t c = 0; c < numIn; ++c) {
            const bool has = c < input.channels.size() && size_t(done) + n <= input.Frames();
            in[c] = has ? input.channels[c].data() + done : nullptr;
            if (!has && c < input.channels.size() && size_t(done) < input.Frames()) {
                // The input ends inside this block: copy what is left and pad with silence.
                std::fill(padded[c].begin(), padded[c].end(), 0.0f);
                std::copy(input.channels[c].begin() + done, input.channels[c].end(), padded[c].begin());
                in[c] = padded[c].data();
            }
        }
        for (size_t c = 0; c < numOut; ++c)
            out[c] = output.channels[c].data() + done;
        blockMidi.clear();
        while (nextEvent < events.size() && events[nextEvent].frame < uint64_t(done) + n) {
            const MidiEventSpec& e = events[nextEvent++];
            const uint32_t at = e.frame < uint64_t(done) ? 0 : uint32_t(e.frame - uint64_t(done));
            blockMidi.push_back(TimedMidi{at, uint32_t(e.bytes.size()), e.bytes.data()});
        }
        driver.Process(in.data(), out.data(), n, blockMidi.data(), uint32_t(blockMidi.size()));
        done += n;
    }
    WriteWav(job.outputPath, output);
    return frames;
}

}  // namespace BR
