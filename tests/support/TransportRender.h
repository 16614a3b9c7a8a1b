// Renders a module through the driver with a running transport, cutting blocks where a host does:
// at the loop end and where the transport starts or stops. Records what each block started with.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/DriverTransport.h"
#include "tests/support/Render.h"

namespace BR::Test {

struct TransportChangeAt {
    uint32_t frame;
    bool play;
};

struct BlockStart {
    uint32_t frame;   // first frame of the block in the render
    uint32_t frames;  // its length
    double quarter;   // the transport's position at its start
    bool playing;
};

// Places the transport at a position in quarter notes, with the timeline location that goes with it.
inline void PlaceTransport(DriverTransport& transport, double quarter) {
    transport.blockQuarter = quarter;
    transport.blockSampleLocation =
        transport.tempo > 0 ? int64_t(std::llround(quarter * 60.0 * transport.sampleRate / transport.tempo))
                            : 0;
}

// A playing 4/4 transport at a tempo and sample rate, placed at a position in quarter notes.
inline DriverTransport MakeTransport(double sampleRate, double tempo, double quarter) {
    DriverTransport transport;
    transport.sampleRate = sampleRate;
    transport.tempo = tempo;
    PlaceTransport(transport, quarter);
    return transport;
}

// Renders `frames` with block lengths taken in turn from `blockSizes`, each block also ending at the
// loop end and at the next transport change. MIDI frames are absolute.
inline Channels RenderWithTransport(HostDriver& driver, DriverTransport& transport, uint32_t frames,
                                    const std::vector<uint32_t>& blockSizes,
                                    const std::vector<TransportChangeAt>& changes = {},
                                    const std::vector<MidiAt>& midi = {},
                                    std::vector<BlockStart>* blocks = nullptr, const Channels& inputs = {}) {
    driver.SetTransport(&transport);
    const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
    Channels in(numIn, std::vector<float>(frames, 0.0f));
    for (size_t c = 0; c < numIn && c < inputs.size(); ++c)
        std::copy_n(inputs[c].begin(), std::min<size_t>(frames, inputs[c].size()), in[c].begin());
    Channels out(numOut, std::vector<float>(frames, 0.0f));
    std::vector<const float*> inPointers(std::max<size_t>(numIn, 1));
    std::vector<float*> outPointers(std::max<size_t>(numOut, 1));
    std::vector<TimedMidi> blockMidi;
    size_t nextChange = 0, nextSize = 0;
    for (uint32_t done = 0; done < frames;) {
        while (nextChange < changes.size() && changes[nextChange].frame <= done)
            transport.playing = changes[nextChange++].play;
        uint32_t n = std::min(blockSizes[nextSize++ % blockSizes.size()], frames - done);
        if (nextChange < changes.size()) n = std::min(n, changes[nextChange].frame - done);
        const int64_t untilLoopEnd = transport.FramesUntilLoopEnd();
        if (untilLoopEnd > 0) n = uint32_t(std::min<int64_t>(n, untilLoopEnd));
        if (blocks) blocks->push_back(BlockStart{done, n, transport.blockQuarter, transport.playing});
        for (size_t c = 0; c < numIn; ++c)
            inPointers[c] = in[c].data() + done;
        for (size_t c = 0; c < numOut; ++c)
            outPointers[c] = out[c].data() + done;
        blockMidi.clear();
        for (const MidiAt& m : midi)
            if (m.frame >= done && m.frame < done + n)
                blockMidi.push_back(TimedMidi{m.frame - done, uint32_t(m.bytes.size()), m.bytes.data()});
        driver.Process(inPointers.data(), outPointers.data(), n, blockMidi.data(),
                       uint32_t(blockMidi.size()));
        done += n;
    }
    return out;
}

// Frames where a signal crosses `threshold` upwards (the first frame at or above it).
inline std::vector<uint32_t> RisingEdges(const std::vector<float>& signal, float threshold = 0.5f) {
    std::vector<uint32_t> edges;
    for (size_t i = 0; i < signal.size(); ++i)
        if (signal[i] >= threshold && (i == 0 || signal[i - 1] < threshold)) edges.push_back(uint32_t(i));
    return edges;
}

}  // namespace BR::Test
