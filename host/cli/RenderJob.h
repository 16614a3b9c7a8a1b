// One offline render of one module: what the command line asked for, and the run itself.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Plot.h"
#include "PropertyOptions.h"
#include "RemoteOptions.h"
#include "RenderPieces.h"
#include "host/HostDriver.h"

namespace BR {

struct RenderJob {
    std::string stem;
    double sampleRate = 48000;
    uint32_t blockSize = 256;
    int64_t frames = -1;  // -1: from --seconds, the input's length, or one second
    double seconds = -1;
    std::vector<std::pair<std::string, std::string>> sets;  // row name, value text
    std::string inputPath;
    std::vector<MidiEventSpec> events;
    std::string midiPath;                     // a Standard MIDI File, merged with the events
    std::string stateIn;                      // restored before the settings apply
    std::string stateOut;                     // written after the render
    std::vector<PropertySetting> properties;  // set after the settings, in order
    std::string calibrationIn;   // a calibration file loaded after the state, settings and properties
    std::string calibrationOut;  // the calibration table saved after the render
    std::string outputPath;
    std::string midiOutPath;  // the MIDI the module sends, as a Standard MIDI File; empty for none
    TransportSettings transport;
    std::vector<std::string> scripts;  // user scripts run after the per-user folder's
    RemoteSettings remote;
    PlotSettings plot;
};

// Parses "render STEM [options]" from argv[first] on; throws UsageError.
RenderJob ParseRenderJob(int argc, char** argv, int first);
// The job's module (its remote settings applied, its scripts checked and run) behind a driver at the
// job's rate and block size. Throws UsageError for an unknown or unavailable module.
std::unique_ptr<HostDriver> MakeJobDriver(const RenderJob& job);
// Renders and writes the WAV; returns the number of frames written. Throws UsageError or runtime_error.
int64_t RunRenderJob(const RenderJob& job);
// The same with a driver already made (the job's stem is not looked at): for RunRenderJob, and for
// tests that render modules of their own.
int64_t RenderWithDriver(HostDriver& driver, const RenderJob& job);

}  // namespace BR
