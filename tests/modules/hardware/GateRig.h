// Renders a gate controller through the host driver and reads back its gates and serial MIDI lines
// with the independent decoder.
#pragma once

#include <string>
#include <vector>

#include "modules/hardware/GateController.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/TransportRender.h"

namespace BR::Test {

struct GateRender {
    Channels out;
    std::vector<std::array<uint8_t, 6>> frames;
    double rate;

    std::vector<bool> Line(int gate) const { return GateLine(frames, gate); }
    std::vector<ReceivedByte> Serial(int gate) const { return ReceiveSerial(Line(gate), rate); }
    std::vector<uint8_t> SerialBytes(int gate) const {
        std::vector<uint8_t> bytes;
        for (const ReceivedByte& b : Serial(gate))
            bytes.push_back(b.value);
        return bytes;
    }
    // Frames where a gate goes on, and where it goes off.
    std::vector<uint32_t> Rises(int gate) const {
        std::vector<uint32_t> edges;
        const auto line = Line(gate);
        for (size_t i = 0; i < line.size(); ++i)
            if (line[i] && (i == 0 || !line[i - 1])) edges.push_back(uint32_t(i));
        return edges;
    }
    std::vector<uint32_t> Falls(int gate) const {
        std::vector<uint32_t> edges;
        const auto line = Line(gate);
        for (size_t i = 1; i < line.size(); ++i)
            if (!line[i] && line[i - 1]) edges.push_back(uint32_t(i));
        return edges;
    }
};

// A controller with its note channel 1 off, so that no resting pitch shows in byte 1.
inline std::unique_ptr<HostDriver> MakeGateDriver(const std::string& stem, float rate = 48000.0f) {
    auto driver = MakeDriver(stem, rate);
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    return driver;
}

inline BrelGateControllerBase& Controller(HostDriver& driver) {
    return static_cast<BrelGateControllerBase&>(driver.Module());
}

inline GateRender RenderGates(HostDriver& driver, uint32_t frames, uint32_t block,
                              const std::vector<MidiAt>& midi = {}, const Channels& inputs = {}) {
    GateRender r;
    r.out = RenderFrames(driver, frames, block, inputs, midi);
    r.rate = driver.Controller().sampleRate;
    r.frames = Frames(r.out[0], r.out[1], driver.Entry().stem == std::string("basaltcontroller"));
    return r;
}

inline GateRender RenderGatesWithTransport(HostDriver& driver, DriverTransport& transport, uint32_t frames,
                                           const std::vector<uint32_t>& blocks,
                                           const std::vector<TransportChangeAt>& changes = {},
                                           const std::vector<MidiAt>& midi = {}) {
    GateRender r;
    r.out = RenderWithTransport(driver, transport, frames, blocks, changes, midi);
    r.rate = driver.Controller().sampleRate;
    r.frames = Frames(r.out[0], r.out[1], driver.Entry().stem == std::string("basaltcontroller"));
    return r;
}

}  // namespace BR::Test
