// The render subcommand: options, then one module rendered block by block into a WAV.
#include "RenderJob.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "CalibrationOptions.h"
#include "CommandLine.h"
#include "MidiFile.h"
#include "StateFile.h"
#include "WavFile.h"
#include "modules/ModuleFactory.h"

namespace BR {

namespace {

std::pair<std::string, std::string> SplitSetting(const std::string& text) {
    const size_t eq = text.find('=');
    if (eq == std::string::npos || eq == 0)
        throw UsageError("--set \"" + text + "\": expected \"NAME=VALUE\"");
    return {text.substr(0, eq), text.substr(eq + 1)};
}

// Options that shape the transport; false when `option` is none of them.
bool ParseTransportOption(const std::string& option, ArgumentCursor& cursor, TransportSettings& transport) {
    if (option == "--tempo") {
        transport.tempo = ParseNumber(cursor.Value(option), "--tempo");
        if (transport.tempo <= 0 || transport.tempo > 999)
            throw UsageError("--tempo: must lie above 0 and up to 999 BPM");
    } else if (option == "--position") {
        transport.position = ParseNumber(cursor.Value(option), "--position");
    } else if (option == "--meter") {
        const std::string text = cursor.Value(option);
        const size_t slash = text.find('/');
        if (slash == std::string::npos) throw UsageError("--meter \"" + text + "\": expected N/D, e.g. 6/8");
        transport.meterNumerator = int32_t(ParseInteger(text.substr(0, slash), "--meter numerator", 1, 64));
        transport.meterDenominator =
            int32_t(ParseInteger(text.substr(slash + 1), "--meter denominator", 1, 64));
    } else if (option == "--stopped") {
        transport.playing = false;
    } else if (option == "--no-transport") {
        transport.present = false;
    } else if (option == "--transport") {
        const std::string text = cursor.Value(option);
        const size_t colon = text.find(':');
        const std::string state = colon == std::string::npos ? "" : text.substr(colon + 1);
        if (state != "play" && state != "stop")
            throw UsageError("--transport \"" + text + "\": expected FRAME:play or FRAME:stop");
        transport.changes.push_back(
            {uint64_t(ParseInteger(text.substr(0, colon), "--transport frame", 0, INT64_MAX)),
             state == "play"});
    } else if (option == "--loop") {
        const std::string text = cursor.Value(option);
        const size_t colon = text.find(':');
        if (colon == std::string::npos)
            throw UsageError("--loop \"" + text + "\": expected START:END in quarter notes");
        transport.loopStart = ParseNumber(text.substr(0, colon), "--loop start");
        transport.loopEnd = ParseNumber(text.substr(colon + 1), "--loop end");
        if (transport.loopEnd <= transport.loopStart)
            throw UsageError("--loop: the end must lie after the start");
        transport.looping = true;
    } else {
        return false;
    }
    return true;
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
            job.events.push_back(ParseEvent(cursor.Value(option), "--event"));
        } else if (option == "--midi") {
            job.midiPath = cursor.Value(option);
        } else if (option == "--state-in") {
            job.stateIn = cursor.Value(option);
        } else if (option == "--state-out") {
            job.stateOut = cursor.Value(option);
        } else if (option == "--property") {
            job.properties.push_back(ParsePropertySetting(cursor.Value(option), "--property"));
        } else if (option == "--calibration-in") {
            job.calibrationIn = cursor.Value(option);
        } else if (option == "--calibration-out") {
            job.calibrationOut = cursor.Value(option);
        } else if (option == "--out") {
            job.outputPath = cursor.Value(option);
        } else if (!ParseTransportOption(option, cursor, job.transport)) {
            throw UsageError("render: unknown option \"" + option + "\"");
        }
    }
    if (job.outputPath.empty()) job.outputPath = job.stem + ".wav";
    return job;
}

int64_t RunRenderJob(const RenderJob& job) {
    const CatalogueEntry* entry = FindCatalogueEntry(job.stem);
    if (!entry) throw UsageError("unknown module \"" + job.stem + "\"; \"corvane list\" shows the modules");
    std::unique_ptr<BrelCorvaneBase> module = CreateModule(job.stem);
    if (!module) throw UsageError("module \"" + job.stem + "\" is not available in this build");
    HostDriver driver(std::move(module), *entry, float(job.sampleRate),
                      std::min<uint32_t>(job.blockSize, kDefaultMaxBlockSize));
    return RenderWithDriver(driver, job);
}

int64_t RenderWithDriver(HostDriver& driver, const RenderJob& job) {
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
    std::vector<MidiEventSpec> events;
    if (!job.midiPath.empty()) {
        try {
            events = ReadMidiFile(job.midiPath, job.sampleRate);
        } catch (const std::runtime_error& e) {
            throw InputError(std::string("--midi: ") + e.what());
        }
    }
    events.insert(events.end(), job.events.begin(), job.events.end());
    MidiSchedule midi(std::move(events));

    int64_t frames = job.frames;
    if (frames < 0 && job.seconds >= 0) frames = int64_t(std::llround(job.seconds * job.sampleRate));
    if (frames < 0) frames = input.sampleRate ? int64_t(input.Frames()) : int64_t(job.sampleRate);

    // A host restores the session's chunks first; the settings of the command line come after.
    if (!job.stateIn.empty()) {
        try {
            RestoreStateFile(job.stateIn, driver);
        } catch (const std::runtime_error& e) {
            throw InputError(std::string("--state-in: ") + e.what());
        }
    }
    for (const auto& [name, value] : job.sets)
        ApplySetting(driver, name, value);
    for (const PropertySetting& property : job.properties)
        ApplyPropertySetting(driver, property, "--property \"" + property.source + "\"");
    if (!job.calibrationIn.empty()) LoadCalibrationOption(driver, job.calibrationIn, "--calibration-in");

    const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
    AudioData output;
    output.sampleRate = int(job.sampleRate);
    output.channels.assign(numOut, std::vector<float>(size_t(frames), 0.0f));
    std::vector<std::vector<float>> pads(numIn);
    std::vector<const float*> in(std::max<size_t>(numIn, 1), nullptr);
    std::vector<float*> out(std::max<size_t>(numOut, 1));

    BlockClock clock(job.transport, job.sampleRate);
    driver.SetTransport(clock.Transport());
    for (int64_t done = 0; done < frames;) {
        const uint32_t n = clock.NextBlock(done, uint32_t(std::min<int64_t>(job.blockSize, frames - done)));
        for (size_t c = 0; c < numIn; ++c)
            in[c] = c < input.channels.size() ? ChannelWindow(input.channels[c], done, n, pads[c]) : nullptr;
        for (size_t c = 0; c < numOut; ++c)
            out[c] = output.channels[c].data() + done;
        const std::vector<TimedMidi>& blockMidi = midi.Block(done, n);
        driver.Process(in.data(), out.data(), n, blockMidi.data(), uint32_t(blockMidi.size()));
        done += n;
    }
    driver.SetTransport(nullptr);
    WriteWav(job.outputPath, output);
    if (!job.stateOut.empty()) WriteStateFile(job.stateOut, driver);
    if (!job.calibrationOut.empty()) SaveCalibrationOption(driver, job.calibrationOut, "--calibration-out");
    return frames;
}

}  // namespace BR
