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
};

// Parses "render STEM [options]" from argv[first] on; throws UsageError.
RenderJob ParseRenderJob(int argc, char** argv, int first);
// Applies one "NAME=VALUE" to a driver's module; throws UsageError naming the row or value.
void ApplySetting(HostDriver& driver, const std::string& name, const std::string& valueText);
// Renders and writes the WAV; returns the number of frames written. Throws UsageError or runtime_error.
int64_t RunRenderJob(const RenderJob& job);

}  // namespace BR
