// One offline render of one module: what the command line asked for, and the run itself.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/HostDriver.h"

namespace BR {

struct MidiEventSpec {
    uint64_t frame;
    std::vector<uint8_t> bytes;
};

struct TransportChange {
    uint64_t frame;
    bool play;
};

struct RenderJob {
    std::string stem;
    double sampleRate = 48000;
    uint32_t blockSize = 256;
    int64_t frames = -1;  // -1: from --seconds, the input's length, or one second
    double seconds = -1;
    std::vector<std::pair<std::string, std::string>> sets;  // row name, value text
    std::string inputPath;
    std::vector<MidiEventSpec> events;
    std::string outputPath;
    // Transport: a playing 4/4 at 120 BPM from quarter note 0 unless told otherwise.
    bool transport = true;
    double tempo = 120;
    double position = 0;  // quarter notes
    int32_t meterNumerator = 4, meterDenominator = 4;
    bool playing = true;
    std::vector<TransportChange> transportChanges;
    bool looping = false;
    double loopStart = 0, loopEnd = 0;  // quarter notes
};

// Parses "render STEM [options]" from argv[first] on; throws UsageError.
RenderJob ParseRenderJob(int argc, char** argv, int first);
// Applies one "NAME=VALUE" to a driver's module; throws UsageError naming the row or value.
void ApplySetting(HostDriver& driver, const std::string& name, const std::string& valueText);
// Renders and writes the WAV; returns the number of frames written. Throws UsageError or runtime_error.
int64_t RunRenderJob(const RenderJob& job);

}  // namespace BR
