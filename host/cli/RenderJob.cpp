// The render subcommand: options, then one module rendered block by block into a WAV.
#include "RenderJob.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "CalibrationOptions.h"
#include "CommandLine.h"
#include "InputLimits.h"
#include "MidiFile.h"
#include "MidiFileOut.h"
#include "Progress.h"
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

// A position in quarter notes, within the range every transport accepts.
double Quarters(const std::string& text, const std::string& what) {
    const double value = ParseNumber(text, what);
    if (std::fabs(value) > kMaxPositionQuarters)
        throw UsageError(what + ": " + text + " is outside -1e9..1e9 quarter notes");
    return value;
}

// The value of an option that names a file: never empty.
std::string PathValue(ArgumentCursor& cursor, const std::string& option) {
    std::string path = cursor.Value(option);
    if (path.empty()) throw UsageError(option + ": must name a file");
    return path;
}

// Fails before anything is rendered when a file to write cannot be: a folder, or in no folder.
void CheckWritable(const std::string& path, const std::string& what) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec))
        throw UsageError(what + ": \"" + path + "\" is a folder, not a file to write");
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder, ec))
        throw UsageError(what + ": there is no folder \"" + folder.string() + "\" to write \"" + path +
                         "\" in");
}

// Options that shape the transport; false when `option` is none of them.
bool ParseTransportOption(const std::string& option, ArgumentCursor& cursor, TransportSettings& transport) {
    if (option == "--tempo") {
        transport.tempo = ParseNumber(cursor.Value(option), "--tempo");
        if (transport.tempo < kMinTempo || transport.tempo > kMaxTempo)
            throw UsageError("--tempo: must lie from 1 to 999 BPM");
    } else if (option == "--position") {
        transport.position = Quarters(cursor.Value(option), "--position");
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
        transport.loopStart = Quarters(text.substr(0, colon), "--loop start");
        transport.loopEnd = Quarters(text.substr(colon + 1), "--loop end");
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
            job.inputPath = PathValue(cursor, option);
        } else if (option == "--event") {
            job.events.push_back(ParseEvent(cursor.Value(option), "--event"));
        } else if (option == "--midi") {
            job.midiPath = PathValue(cursor, option);
        } else if (option == "--state-in") {
            job.stateIn = PathValue(cursor, option);
        } else if (option == "--state-out") {
            job.stateOut = PathValue(cursor, option);
        } else if (option == "--property") {
            job.properties.push_back(ParsePropertySetting(cursor.Value(option), "--property"));
        } else if (option == "--calibration-in") {
            job.calibrationIn = PathValue(cursor, option);
        } else if (option == "--calibration-out") {
            job.calibrationOut = PathValue(cursor, option);
        } else if (option == "--out") {
            job.outputPath = PathValue(cursor, option);
        } else if (option == "--midi-out") {
            job.midiOutPath = PathValue(cursor, option);
        } else if (option == "--script") {
            job.scripts.push_back(PathValue(cursor, option));
        } else if (!ParseTransportOption(option, cursor, job.transport) &&
                   !ParseRemoteOption(option, cursor, job.remote) &&
                   !ParsePlotOption(option, cursor, job.plot)) {
            throw UsageError("render: unknown option \"" + option + "\"");
        }
    }
    if (job.outputPath.empty()) job.outputPath = job.stem + ".wav";
    return job;
}

std::unique_ptr<HostDriver> MakeJobDriver(const RenderJob& job) {
    const CatalogueEntry* entry = FindCatalogueEntry(job.stem);
    if (!entry) throw UsageError("unknown module \"" + job.stem + "\"; \"corvane list\" shows the modules");
    ApplyRemoteSettings(job.remote);
    CheckScripts(job.scripts, "");
    std::unique_ptr<BrelCorvaneBase> module =
        CreateScriptedModule([&] { return CreateModule(job.stem); }, job.scripts, job.stem);
    if (!module) throw UsageError("module \"" + job.stem + "\" is not available in this build");
    return std::make_unique<HostDriver>(std::move(module), *entry, float(job.sampleRate),
                                        std::min<uint32_t>(job.blockSize, kDefaultMaxBlockSize));
}

int64_t RunRenderJob(const RenderJob& job) {
    return RenderWithDriver(*MakeJobDriver(job), job);
}

int64_t RenderWithDriver(HostDriver& driver, const RenderJob& job) {
    CheckWritable(job.outputPath, "--out");
    // Offline: the capture may grow, as the whole render's messages are kept for the file.
    ModuleMidiCapture midiOut(4096, true);
    std::vector<SentMidi> sent;
    if (!job.midiOutPath.empty()) {
        CheckWritable(job.midiOutPath, "--midi-out");
        if (!midiOut.Attach(driver))
            throw UsageError("--midi-out: " + std::string(driver.Module().GetModuleName()) +
                             " sends no MIDI (CV To MIDI does)");
    }
    const uint64_t firstFrame = driver.RenderedFrames();
    CheckPlotSettings(job.plot);
    if (!job.stateOut.empty()) CheckWritable(job.stateOut, "--state-out");
    if (!job.calibrationOut.empty()) {
        CheckWritable(job.calibrationOut, "--calibration-out");
        RequireTable(driver, "--calibration-out");
    }
    AudioData input;
    if (!job.inputPath.empty()) {
        try {
            input = ReadWav(job.inputPath);
        } catch (const std::runtime_error& e) {
            throw InputError(std::string("--in: ") + e.what());
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
    std::vector<PlotMidi> marks;
    if (!job.plot.path.empty())
        for (const MidiEventSpec& event : events)
            marks.push_back({int64_t(event.frame), event.bytes});
    MidiSchedule midi(std::move(events));

    int64_t frames = job.frames;
    if (frames < 0 && job.seconds >= 0) frames = int64_t(std::llround(job.seconds * job.sampleRate));
    if (frames < 0) frames = input.sampleRate ? int64_t(input.Frames()) : int64_t(job.sampleRate);
    // The outputs are held in memory until the end.
    const uint64_t outputChannels = uint64_t(std::max(driver.NumHostOutputs(), 1));
    if (uint64_t(frames) * outputChannels > kMaxRenderSamples)
        throw InputError(std::to_string(frames) + " frames of " + std::to_string(outputChannels) +
                         " output channels exceed the limit of " + std::to_string(kMaxRenderSamples) +
                         " samples held in memory");

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
    const RealTimePacer pacer(job.remote.realtime, job.sampleRate);
    std::optional<RenderProgress> progress(std::in_place, frames, job.sampleRate);
    for (int64_t done = 0; done < frames;) {
        const uint32_t n = clock.NextBlock(done, uint32_t(std::min<int64_t>(job.blockSize, frames - done)));
        for (size_t c = 0; c < numIn; ++c)
            in[c] = c < input.channels.size() ? ChannelWindow(input.channels[c], done, n, pads[c]) : nullptr;
        for (size_t c = 0; c < numOut; ++c)
            out[c] = output.channels[c].data() + done;
        const std::vector<TimedMidi>& blockMidi = midi.Block(done, n);
        driver.Process(in.data(), out.data(), n, blockMidi.data(), uint32_t(blockMidi.size()));
        if (midiOut.Count() > 0) {
            // Blocks come in order, so sorting each block's messages sorts them all.
            const SentMidi* block = midiOut.Sorted();
            for (size_t m = 0; m < midiOut.Count(); ++m)
                sent.push_back(
                    {block[m].frame - firstFrame, {block[m].bytes[0], block[m].bytes[1], block[m].bytes[2]}});
            midiOut.Clear();
        }
        done += n;
        pacer.Wait(done);
        progress->Update(done);
    }
    progress.reset();
    driver.SetTransport(nullptr);
    midiOut.Detach();
    WriteWav(job.outputPath, output);
    if (!job.midiOutPath.empty())
        WriteMidiFile(job.midiOutPath, sent, int64_t(job.sampleRate), uint64_t(frames));
    if (!job.plot.path.empty()) {
        PlotData plot;
        plot.title =
            std::string(driver.Module().GetModuleName()) + ", " + std::to_string(int(job.sampleRate)) + " Hz";
        plot.sampleRate = job.sampleRate;
        plot.names = OutputChannelNames(driver.Entry(), int32_t(numOut));
        for (const std::vector<float>& channel : output.channels)
            plot.channels.push_back(&channel);
        plot.midi = std::move(marks);
        WritePlot(plot, job.plot, job.plot.path);
    }
    if (!job.stateOut.empty()) WriteStateFile(job.stateOut, driver);
    if (!job.calibrationOut.empty()) SaveCalibrationOption(driver, job.calibrationOut, "--calibration-out");
    return frames;
}

}  // namespace BR
