// Renders a catalogue module through the shared host driver into whole channel buffers.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/HostDriver.h"

namespace BR::Test {

using Channels = std::vector<std::vector<float>>;

struct MidiAt {
    uint32_t frame;
    std::vector<uint8_t> bytes;
};

// Makes the module of `stem` behind a driver at the rate and maximum block size given.
std::unique_ptr<HostDriver> MakeDriver(const std::string& stem, float sampleRate = 48000.0f,
                                       uint32_t maxBlockSize = kDefaultMaxBlockSize);

// Renders `frames` in host blocks of `blockSize`, with `inputs` (missing channels or frames are
// silence) and MIDI at absolute frames. Returns one buffer per module output.
Channels RenderFrames(HostDriver& driver, uint32_t frames, uint32_t blockSize, const Channels& inputs = {},
                      const std::vector<MidiAt>& midi = {});

}  // namespace BR::Test
